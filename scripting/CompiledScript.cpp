#include "CompiledScript.h"
#include "FileBytes.h"

#include "JsValues.h"
#include "ScriptCoertions.h"
#include "ScriptHost.h"

#include <QJSValueIterator>

namespace {

const QString ErrorNumberKey = QStringLiteral("NSAppleScriptErrorNumber");
const QString ErrorMessageKey = QStringLiteral("NSAppleScriptErrorMessage");
const QString ErrorBriefMessageKey = QStringLiteral("NSAppleScriptErrorBriefMessage");

// Values ready for descriptor conversion: undefined becomes the missing
// value, at any depth.
QVariant descriptorReady(const QJSValue &value)
{
    if (value.isUndefined())
        return QVariant::fromValue(Descriptor::missingValue());
    if (value.isArray()) {
        QVariantList items;
        const quint32 length = value.property(QStringLiteral("length")).toUInt();
        for (quint32 i = 0; i < length; ++i)
            items.append(descriptorReady(value.property(i)));
        return items;
    }
    if (JsValues::isBox(value)) {
        QVariantMap fields;
        for (QJSValueIterator it(value); it.hasNext();) {
            it.next();
            fields.insert(it.name(), descriptorReady(it.value()));
        }
        return fields;
    }
    return JsValues::fromJs(value);
}

} // namespace

Descriptor descriptorFromScriptValue(const QJSValue &value)
{
    return ScriptCoertions::aeDescriptorValue(descriptorReady(value));
}

CompiledScript::CompiledScript(const MethodRegistry &methods, const QString &source, const QString &fileName,
                               QObject *parent)
    : QObject(parent), m_methods(methods), m_source(source), m_fileName(fileName),
      m_host(std::make_unique<ScriptHost>(methods))
{
    setProperty("nomenClassName", QStringLiteral("NSAppleScript"));
    // Compiled as a function body, so nothing runs yet and a syntax error
    // keeps its line number.
    const auto compiled =
        m_host->evaluate(QStringLiteral("(function () {") + source + QStringLiteral("\n})"), fileName);
    if (!compiled.ok())
        m_compileError = errorFrom(compiled.value, compiled.error, ScriptError::Syntax);
}

CompiledScript::~CompiledScript() = default;

CompiledScript *CompiledScript::fromFile(const MethodRegistry &methods, const QString &path, QVariantMap *errorInfo,
                                         QObject *parent)
{
    const auto contents = FileBytes::read(path);
    if (!contents.bytes) {
        if (errorInfo)
            *errorInfo = CompiledScript::errorInfo(ScriptError::FileNotFound, contents.error, contents.reason);
        return nullptr;
    }
    auto script = std::make_unique<CompiledScript>(methods, QString::fromUtf8(*contents.bytes), path, parent);
    if (!script->isCompiled()) {
        if (errorInfo)
            *errorInfo = *script->compileError();
        return nullptr;
    }
    return script.release();
}

QVariantMap CompiledScript::errorInfo(int number, const QString &message, const QString &brief)
{
    return {{ErrorNumberKey, number}, {ErrorMessageKey, message}, {ErrorBriefMessageKey, brief}};
}

// A thrown error's own "number" wins, as script errors carry theirs.
QVariantMap CompiledScript::errorFrom(const QJSValue &thrown, const QString &message, int defaultNumber)
{
    const QJSValue number = thrown.isObject() ? thrown.property(QStringLiteral("number")) : QJSValue();
    const QString brief = thrown.isError() ? thrown.property(QStringLiteral("message")).toString() : thrown.toString();
    return errorInfo(number.isNumber() ? number.toInt() : defaultNumber, message, brief);
}

bool CompiledScript::run(QVariantMap *errorInfo)
{
    const auto outcome = m_host->evaluate(m_source, m_fileName);
    m_hasRun = true;
    if (!outcome.ok()) {
        if (errorInfo)
            *errorInfo = errorFrom(outcome.value, outcome.error, ScriptError::Generic);
        return false;
    }
    m_lastResult = outcome.value;
    return true;
}

std::optional<Descriptor> CompiledScript::executeAndReturnError(QVariantMap *errorInfo)
{
    if (m_compileError) {
        if (errorInfo)
            *errorInfo = *m_compileError;
        return std::nullopt;
    }
    if (!run(errorInfo))
        return std::nullopt;
    return descriptorFromScriptValue(std::exchange(m_lastResult, QJSValue()));
}

std::optional<Descriptor> CompiledScript::executeAppleEvent(const Descriptor &event, QVariantMap *errorInfo)
{
    auto fail = [&](int number, const QString &message) -> std::optional<Descriptor> {
        if (errorInfo)
            *errorInfo = CompiledScript::errorInfo(number, message, message);
        return std::nullopt;
    };
    if (m_compileError) {
        if (errorInfo)
            *errorInfo = *m_compileError;
        return std::nullopt;
    }
    if (event.descriptorType() != DescType::AppleEvent || event.eventClass() != fourCharCode("ascr")
        || event.eventID() != fourCharCode("psbr"))
        return fail(ScriptError::HandlerNotFound, QStringLiteral("The script doesn't understand this event."));
    // Handlers are defined by running the top level once.
    if (!m_hasRun && !run(errorInfo))
        return std::nullopt;
    m_lastResult = QJSValue();

    const QString name = event.descriptorForKeyword(fourCharCode("snam")).value_or(Descriptor()).stringValue();
    QJSEngine &engine = m_host->engine();
    const QJSValue handler = engine.globalObject().property(name);
    if (name.isEmpty() || !handler.isCallable())
        return fail(ScriptError::HandlerNotFound,
                    QStringLiteral("«script» doesn't understand the “%1” message.").arg(name));

    QJSValueList arguments;
    const Descriptor parameters = event.descriptorForKeyword(DescType::DirectObject).value_or(Descriptor::list());
    for (const QVariant &argument : ScriptCoertions::arrayWithAEDesc(parameters).toList())
        arguments.append(JsValues::toJs(engine, argument));
    const auto outcome = m_host->call(handler, arguments, m_fileName);
    if (!outcome.ok()) {
        if (errorInfo)
            *errorInfo = errorFrom(outcome.value, outcome.error, ScriptError::Generic);
        return std::nullopt;
    }
    return descriptorFromScriptValue(outcome.value);
}
