#include "ScriptSubroutines.h"
#include "FileBytes.h"
#include "SystemLog.h"

#include "DataAdditions.h"
#include "ScriptCoertions.h"

#include <unistd.h>

namespace ScriptSubroutines {

QVariant runScriptSubroutine(CompiledScript &script, const QString &name)
{
    return runScriptSubroutineWithParameters(script, name, {});
}

QVariant runScriptSubroutine(CompiledScript &script, const QString &name, const QVariant &parameter)
{
    if (!parameter.isValid())
        throw NamedException(NSInvalidArgumentException, QStringLiteral("Parameter cannot be nil."));
    return runScriptSubroutineWithParameters(script, name, {parameter});
}

QVariant runScriptSubroutineWithParameters(CompiledScript &script, const QString &name,
                                               const QVariantList &nilTerminated)
{
    QVariantList parameters;
    for (const QVariant &parameter : nilTerminated) {
        if (!parameter.isValid())
            break;
        parameters.append(parameter);
    }
    return runScriptSubroutineWithParametersFromArray(script, name, parameters);
}

QVariant runScriptSubroutineWithParametersFromArray(CompiledScript &script, const QString &name,
                                                        const QVariantList &parameters)
{
    std::optional<QVariantMap> error;
    const Descriptor list = ScriptCoertions::aeDescriptorValue(parameters);
    const auto result = ExecuteWithoutTranslationSubroutine(script, name, &error, list);
    if (error)
        return HandleASError(error);
    return ScriptCoertions::objCObjectValue(result.value_or(Descriptor::null()));
}

Descriptor handlerCallEvent(const QString &name, const Descriptor &parameters)
{
    // Handler names are matched in lower case, so callers may spell them in
    // any case.
    const Descriptor target = Descriptor::ofValue<qint32>(DescType::KernelProcessID, qint32(getpid()));
    Descriptor event = Descriptor::appleEvent(fourCharCode("ascr"), fourCharCode("psbr"), target, -1, 0);
    event.setDescriptorForKeyword(Descriptor::string(name.toLower()), fourCharCode("snam"));
    event.setDescriptorForKeyword(parameters, DescType::DirectObject);
    return event;
}

std::optional<Descriptor> ExecuteWithoutTranslationSubroutine(CompiledScript &script, const QString &name,
                                                                  std::optional<QVariantMap> *error,
                                                                  const Descriptor &parameters)
{
    QVariantMap errorInfo;
    const auto result = script.executeAppleEvent(handlerCallEvent(name, parameters), &errorInfo);
    if (error)
        *error = result ? std::nullopt : std::optional(errorInfo);
    return result;
}

QVariant HandleASError(const std::optional<QVariantMap> &error)
{
    if (!error)
        return QString(QLatin1String(""));
    QString message = error->value(QStringLiteral("NSAppleScriptErrorMessage")).toString();
    if (message.isEmpty())
        message = error->value(QStringLiteral("NSAppleScriptErrorBriefMessage")).toString();
    if (message.isEmpty())
        message = QStringLiteral("Unidentified AppleScript error.");
    const QVariant number = error->value(QStringLiteral("NSAppleScriptErrorNumber"));
    return QVariantList{number.isValid() ? number.toInt() : 0, message};
}

namespace {

// The file's bytes; empty when it cannot be read.
struct MappedFile {
    QByteArray bytes;

    explicit MappedFile(const QString &path) : bytes(FileBytes::read(path).bytes.value_or(QByteArray())) {}
};

} // namespace

QVariant subroutinesInScriptFile(const QString &path)
{
    // Never lists handlers: callers only learn whether the file is readable.
    const MappedFile file(path);
    return file.bytes.isEmpty() ? QVariant() : QVariant(QVariantList());
}

QVariant validSubroutinesFromArray(const QVariantList &names, const QString &path)
{
    const MappedFile file(path);
    if (file.bytes.isEmpty())
        return QVariant();
    QVariantList valid;
    for (const QVariant &name : names) {
        // A name that is not ASCII has no bytes to look for; an empty search
        // finds offset 0, so such a name is kept.
        const QString text = name.toString();
        const bool ascii = std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 128; });
        const QByteArray bytes = ascii ? text.toLatin1() : QByteArray();
        if (DataAdditions::offsetOfData(file.bytes, bytes) != DataAdditions::NotFound)
            valid.append(name);
    }
    return valid;
}

} // namespace ScriptSubroutines

namespace ScriptRunner {

namespace {

// A script that runs itself, directly or through others, would exhaust the
// stack one engine at a time; past this depth a run answers nil.
constexpr int MaximumNesting = 24;
int nesting = 0;

struct Nested {
    Nested() { ++nesting; }
    ~Nested() { --nesting; }
    Nested(const Nested &) = delete;
    Nested &operator=(const Nested &) = delete;
    static bool tooDeep()
    {
        if (nesting < MaximumNesting)
            return false;
        SystemLog::write(QStringLiteral("runScript: scripts nested more than %1 deep; the innermost is not run")
                             .arg(MaximumNesting));
        return true;
    }
};

QVariant resultOf(CompiledScript &script)
{
    QVariantMap error;
    const auto result = script.executeAndReturnError(&error);
    return result ? ScriptCoertions::objCObjectValue(*result) : QVariant();
}

} // namespace

QVariant runScript(const MethodRegistry &methods, const QString &source)
{
    if (Nested::tooDeep())
        return QVariant();
    const Nested level;
    CompiledScript script(methods, source);
    return resultOf(script);
}

QVariant runScriptFile(const MethodRegistry &methods, const QString &path)
{
    if (Nested::tooDeep())
        return QVariant();
    const Nested level;
    QVariantMap error;
    std::unique_ptr<CompiledScript> script(CompiledScript::fromFile(methods, path, &error));
    return script ? resultOf(*script) : QVariant();
}

} // namespace ScriptRunner
