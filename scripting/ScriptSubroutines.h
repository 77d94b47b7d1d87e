#pragma once

#include "CompiledScript.h"

#include <QStringList>
#include <QVariant>

// Calling a compiled script's handlers by name with native values, and
// scanning script files for handler names.
namespace ScriptSubroutines {

inline const QString ASException = QStringLiteral("ROZ_ASException");

// Each answers the handler's result as a value, or the error pair
// (error number, message) in its place.
QVariant runScriptSubroutine(CompiledScript &script, const QString &name);
// Raises NSInvalidArgumentException "Parameter cannot be nil." for nil.
QVariant runScriptSubroutine(CompiledScript &script, const QString &name, const QVariant &parameter);
// The parameters end at the first nil.
QVariant runScriptSubroutineWithParameters(CompiledScript &script, const QString &name,
                                               const QVariantList &nilTerminated);
QVariant runScriptSubroutineWithParametersFromArray(CompiledScript &script, const QString &name,
                                                        const QVariantList &parameters);

// The handler-call event for `name` (lower-cased) with the argument list,
// addressed to this process.
Descriptor handlerCallEvent(const QString &name, const Descriptor &parameters);
std::optional<Descriptor> ExecuteWithoutTranslationSubroutine(CompiledScript &script, const QString &name,
                                                                  std::optional<QVariantMap> *error,
                                                                  const Descriptor &parameters);
// "" for no error, else (number, message).
QVariant HandleASError(const std::optional<QVariantMap> &error);

QVariant subroutinesInScriptFile(const QString &path);
QVariant validSubroutinesFromArray(const QVariantList &names, const QString &path);

} // namespace ScriptSubroutines

// Running script text and script files from the toolkit: the result of the
// last statement as a value, or nil when the script fails.
namespace ScriptRunner {
QVariant runScript(const MethodRegistry &methods, const QString &source);
QVariant runScriptFile(const MethodRegistry &methods, const QString &path);
} // namespace ScriptRunner
