#include "ScriptBridge.h"

#include "ArgumentConversion.h"
#include "JsValues.h"
#include "NamedException.h"

ScriptBridge::ScriptBridge(const MethodRegistry &registry, QJSEngine &engine)
    : QObject(&engine), m_registry(registry), m_engine(engine)
{
}

void ScriptBridge::install()
{
    const QJSValue self = m_engine.newQObject(this);
    for (const QString &name : {QStringLiteral("callMethod"), QStringLiteral("callClassMethod")})
        m_engine.globalObject().setProperty(name, self.property(name));
}

QString ScriptBridge::classNameOf(const QJSValue &receiver) const
{
    if (receiver.isString())
        return QStringLiteral("NSString");
    if (receiver.isNumber() || receiver.isBool())
        return QStringLiteral("NSNumber");
    if (receiver.isDate())
        return QStringLiteral("NSDate");
    if (receiver.isArray())
        return QStringLiteral("NSArray");
    if (receiver.isQObject() || receiver.isVariant())
        return m_registry.classNameOf(JsValues::fromJs(receiver));
    if (JsValues::isArrayBuffer(receiver))
        return QStringLiteral("NSData");
    return QStringLiteral("NSDictionary");
}

QJSValue ScriptBridge::callMethod(const QJSValue &receiver, const QString &selector, const QJSValue &params)
{
    if (receiver.isNull() || receiver.isUndefined())
        return QJSValue(QJSValue::NullValue);
    return dispatch(MethodKind::Instance, classNameOf(receiver), receiver, selector, params);
}

QJSValue ScriptBridge::callMethod(const QJSValue &receiver, const QString &selector)
{
    return callMethod(receiver, selector, m_engine.newArray());
}

QJSValue ScriptBridge::callClassMethod(const QString &className, const QString &selector)
{
    return callClassMethod(className, selector, m_engine.newArray());
}

QJSValue ScriptBridge::callClassMethod(const QString &className, const QString &selector, const QJSValue &params)
{
    return dispatch(MethodKind::Class, className, QJSValue(), selector, params);
}

QJSValue ScriptBridge::dispatch(MethodKind kind, const QString &className, const QJSValue &receiver,
                                const QString &selector, QJSValue params)
{
    const QString method = MethodRegistry::methodName(kind, className, selector);
    const NativeMethod *native = m_registry.find(kind, className, selector);
    if (!native) {
        throwNamed(NSInvalidArgumentException,
                   QStringLiteral("%1: unrecognized selector sent to %2")
                       .arg(method, kind == MethodKind::Class ? QStringLiteral("class") : QStringLiteral("instance")));
        return {};
    }
    if (!params.isArray()) {
        throwNamed(NSInvalidArgumentException, QStringLiteral("%1: the parameters must be an array").arg(method));
        return {};
    }
    const quint32 given = params.property(QStringLiteral("length")).toUInt();
    const qsizetype wanted = MethodRegistry::parameterCount(selector);
    if (given != quint32(wanted)) {
        throwNamed(NSInvalidArgumentException,
                   QStringLiteral("%1 takes %2 parameter(s), %3 given").arg(method, QString::number(wanted), QString::number(given)));
        return {};
    }
    try {
        Invocation invocation;
        invocation.methods = &m_registry;
        invocation.receiver = JsValues::fromJs(receiver);
        for (quint32 i = 0; i < given; ++i) {
            const QJSValue param = params.property(i);
            invocation.arguments.append(JsValues::fromJs(param));
            invocation.boxed.append(JsValues::isBox(param));
        }
        const QVariant result = (*native)(invocation);
        if (invocation.receiverOutput && JsValues::isBox(receiver)) {
            QJSValue box = receiver;
            JsValues::fillBox(m_engine, box, *invocation.receiverOutput);
        }
        for (auto it = invocation.outputs.cbegin(); it != invocation.outputs.cend(); ++it) {
            QJSValue box = params.property(quint32(it.key()));
            JsValues::fillBox(m_engine, box, it.value());
        }
        return JsValues::toJs(m_engine, result);
    } catch (const NamedException &exception) {
        throwNamed(exception.name(), exception.reason());
    } catch (const ArgumentConversion::WrongType &wrong) {
        const QString what = wrong.index < 0 ? QStringLiteral("the receiver")
                                             : QStringLiteral("parameter %1").arg(wrong.index + 1);
        throwNamed(NSInvalidArgumentException,
                   QStringLiteral("%1: %2 must be %3, not %4").arg(method, what, wrong.expected, wrong.given));
    } catch (const std::exception &exception) {
        throwNamed(NSGenericException, QStringLiteral("%1: %2").arg(method, QString::fromUtf8(exception.what())));
    }
    return {};
}

void ScriptBridge::throwNamed(const QString &name, const QString &reason)
{
    // A script reads both: the error's name is the exception's name, its
    // message and its "reason" the reason.
    QJSValue error = m_engine.newErrorObject(QJSValue::GenericError, reason);
    error.setProperty(QStringLiteral("name"), name);
    error.setProperty(QStringLiteral("reason"), reason);
    m_engine.throwError(error);
}
