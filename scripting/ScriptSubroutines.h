#pragma once

#include "CompiledScript.h"

#include <QStringList>
#include <QVariant>

// Calling a compiled script's handlers by name with native values, and
// scanning script files for handler names.
namespace ROZ_ScriptSubroutines {

inline const QString ROZ_ASException = QStringLiteral("ROZ_ASException");

// Each answers the handler's result as a value, or the error pair
// (error number, message) in its place.
QVariant ROZ_runScriptSubroutine(CompiledScript &script, const QString &name);
// Raises NSInvalidArgumentException "Parameter cannot be nil." for nil.
QVariant ROZ_runScriptSubroutine(CompiledScript &script, const QString &name, const QVariant &parameter);
// The parameters end at the first nil.
QVariant ROZ_runScriptSubroutineWithParameters(CompiledScript &script, const QString &name,
                                               const QVariantList &nilTerminated);
QVariant ROZ_runScriptSubroutineWithParametersFromArray(CompiledScript &script, const QString &name,
                                                        const QVariantList &parameters);

// The handler-call event for `name` (lower-cased) with the argument list,
// addressed to this process.
Descriptor handlerCallEvent(const QString &name, const Descriptor &parameters);
std::optional<Descriptor> ROZ_ExecuteWithoutTranslationSubroutine(CompiledScript &script, const QString &name,
                                                                  std::optional<QVariantMap> *error,
                                                                  const Descriptor &parameters);
// "" for no error, else (number, message).
QVariant ROZ_HandleASError(const std::optional<QVariantMap> &error);

QVariant ROZ_subroutinesInScriptFile(const QString &path);
QVariant ROZ_validSubroutinesFromArray(const QVariantList &names, const QString &path);

} // namespace ROZ_ScriptSubroutines

// Running script text and script files from the toolkit: the result of the
// last statement as a value, or nil when the script fails.
namespace ScriptRunner {
QVariant runScript(const MethodRegistry &methods, const QString &source);
QVariant runScriptFile(const MethodRegistry &methods, const QString &path);
} // namespace ScriptRunner
