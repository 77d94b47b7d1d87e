#pragma once

#include "MethodRegistry.h"

#include <QJSEngine>
#include <QObject>

// Gives a script engine the two functions through which scripts reach native
// code: callMethod(receiver, "selector:", [params]) and
// callClassMethod("ClassName", "selector:", [params]). The receiver's kind
// picks the class: a string NSString, a number or boolean NSNumber, a date
// NSDate, an array NSArray, an object NSDictionary, bytes NSData, a native
// object or value its own class. A nil receiver answers nil, as messages to
// nil do.
class ScriptBridge : public QObject {
    Q_OBJECT
public:
    ScriptBridge(const MethodRegistry &registry, QJSEngine &engine);

    // Defines callMethod and callClassMethod in the engine's global object.
    void install();

    QString classNameOf(const QJSValue &receiver) const;

    // The parameter list may be left out when a selector takes none.
    Q_INVOKABLE QJSValue callMethod(const QJSValue &receiver, const QString &selector, const QJSValue &params);
    Q_INVOKABLE QJSValue callMethod(const QJSValue &receiver, const QString &selector);
    Q_INVOKABLE QJSValue callClassMethod(const QString &className, const QString &selector, const QJSValue &params);
    Q_INVOKABLE QJSValue callClassMethod(const QString &className, const QString &selector);

private:
    QJSValue dispatch(MethodKind kind, const QString &className, const QJSValue &receiver, const QString &selector,
                      QJSValue params);
    void throwNamed(const QString &name, const QString &reason);

    const MethodRegistry &m_registry;
    QJSEngine &m_engine;
};
