#include "ScriptHost.h"

#include "JsonText.h"

#include <cstdio>

ScriptHost::ScriptHost(const MethodRegistry &registry) : m_bridge(new ScriptBridge(registry, m_engine))
{
    m_bridge->install();
    QJSValue installer = m_engine.evaluate(QStringLiteral(R"JS(
        (function (host) {
            return function () { host.printValues(Array.prototype.slice.call(arguments)); };
        })
    )JS"));
    m_engine.globalObject().setProperty(QStringLiteral("print"), installer.call({m_engine.newQObject(this)}));
    QJSEngine::setObjectOwnership(this, QJSEngine::CppOwnership);
}

ScriptHost::Outcome ScriptHost::evaluate(const QString &program, const QString &fileName)
{
    const QJSValue value = m_engine.evaluate(program, fileName);
    if (!value.isError())
        return {value, QString()};
    const int line = value.property(QStringLiteral("lineNumber")).toInt();
    return {value, QStringLiteral("%1:%2: %3").arg(fileName).arg(line).arg(value.toString())};
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
