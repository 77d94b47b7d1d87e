#include "ScriptHost.h"

#include "JsonText.h"
#include "LocaleDates.h"

#include <cstdio>

ScriptHost::ScriptHost(const MethodRegistry &registry) : m_bridge(new ScriptBridge(registry, m_engine))
{
    m_bridge->install();
    // Each global is a script function over this object's invokable methods.
    const QJSValue host = m_engine.newQObject(this);
    const auto install = [&](const QString &name, const QString &maker) {
        m_engine.globalObject().setProperty(name, m_engine.evaluate(maker).call({host}));
    };
    install(QStringLiteral("print"), QStringLiteral(R"JS(
        (function (host) {
            return function () { host.printValues(Array.prototype.slice.call(arguments)); };
        })
    )JS"));
    install(QStringLiteral("date"), QStringLiteral(R"JS(
        (function (host) {
            return function date(text) {
                var when = host.parseLocalDate(String(text));
                if (when === undefined || when === null)
                    throw new Error('Invalid date and time date "' + text + '".');
                return when;
            };
        })
    )JS"));
    // A dialog answers the chosen button's title, or "" when it gave up; a
    // cancelled one throws, as a cancelled dialog stops the script.
    install(QStringLiteral("dialog"), QStringLiteral(R"JS(
        (function (host) {
            return function dialog(options) {
                var chosen = callClassMethod("NomenDialog", "display:", [options]);
                if (chosen === null || chosen === undefined) {
                    var cancelled = new Error("User canceled.");
                    cancelled.number = -128;
                    throw cancelled;
                }
                return chosen;
            };
        })
    )JS"));
    QJSEngine::setObjectOwnership(this, QJSEngine::CppOwnership);
    // A function's call reports a thrown value only as its result, so calls
    // go through a guard that tells the two apart.
    m_guard = m_engine.evaluate(QStringLiteral(R"JS(
        (function (f, args) {
            try { return {ok: true, value: f.apply(null, args)}; }
            catch (e) { return {ok: false, error: e}; }
        })
    )JS"));
}

ScriptHost::Outcome ScriptHost::thrown(const QJSValue &value, int line, const QString &fileName) const
{
    if (value.isError())
        line = value.property(QStringLiteral("lineNumber")).toInt();
    return {value, true, line, QStringLiteral("%1:%2: %3").arg(fileName, QString::number(line), value.toString())};
}

ScriptHost::Outcome ScriptHost::evaluate(const QString &program, const QString &fileName)
{
    QStringList stackTrace;
    const QJSValue value = m_engine.evaluate(program, fileName, 1, &stackTrace);
    if (stackTrace.isEmpty() && !value.isError())
        return {value, false, 0, QString()};
    // Frames read "function:line:column:file"; the first is where it was thrown.
    const int line = stackTrace.isEmpty() ? 0 : stackTrace.first().section(u':', 1, 1).toInt();
    return thrown(value, line, fileName);
}

ScriptHost::Outcome ScriptHost::call(const QJSValue &function, const QJSValueList &arguments, const QString &fileName)
{
    QJSValue argumentArray = m_engine.newArray(quint32(arguments.size()));
    for (qsizetype i = 0; i < arguments.size(); ++i)
        argumentArray.setProperty(quint32(i), arguments[i]);
    const QJSValue outcome = QJSValue(m_guard).call({function, argumentArray});
    if (outcome.property(QStringLiteral("ok")).toBool())
        return {outcome.property(QStringLiteral("value")), false, 0, QString()};
    return thrown(outcome.property(QStringLiteral("error")), 0, fileName);
}

std::optional<QString> ScriptHost::printable(const QJSValue &value) const
{
    if (value.isUndefined())
        return std::nullopt;
    if (value.isString())
        return value.toString();
    return JsonText::write(value, [this](const QJSValue &opaque) { return m_bridge->classNameOf(opaque); });
}

void ScriptHost::printValues(const QJSValue &values)
{
    QStringList parts;
    const quint32 count = values.property(QStringLiteral("length")).toUInt();
    for (quint32 i = 0; i < count; ++i)
        parts.append(printable(values.property(i)).value_or(QStringLiteral("undefined")));
    const QByteArray line = (parts.join(u' ') + u'\n').toUtf8();
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fflush(stdout);
}

QVariant ScriptHost::parseLocalDate(const QString &text) const
{
    const auto when = LocaleDates::parse(text);
    return when ? QVariant(*when) : QVariant();
}
