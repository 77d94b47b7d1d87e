#pragma once

#include "MethodRegistry.h"
#include "ScriptBridge.h"

#include <QJSEngine>
#include <optional>

// A script engine with the bridge installed, a print() that writes one
// line to standard output, a date(text) that reads a date the way the
// user's locale writes it (LocaleDates) and throws when the text is none,
// and a dialog({message, title, buttons, defaultButton, icon,
// givingUpAfter}) that answers the chosen button's title ("" when it gave
// up) and throws when cancelled. Runs program text and reports its
// completion value or its error.
class ScriptHost : public QObject {
    Q_OBJECT
public:
    explicit ScriptHost(const MethodRegistry &registry);

    QJSEngine &engine() { return m_engine; }
    ScriptBridge &bridge() { return *m_bridge; }

    // What running script code came to: its value, or what it threw (any
    // value, not only an Error) with the line it was thrown at.
    struct Outcome {
        QJSValue value;
        bool threw = false;
        int line = 0;
        QString error; // "file:line: message" when it threw
        bool ok() const { return !threw; }
    };
    Outcome evaluate(const QString &program, const QString &fileName);
    Outcome call(const QJSValue &function, const QJSValueList &arguments, const QString &fileName);

    // What nomen-script prints for a completion value: a string as it is,
    // nothing for undefined, anything else as JSON with dates in ISO 8601
    // with their offset.
    std::optional<QString> printable(const QJSValue &value) const;

    Q_INVOKABLE void printValues(const QJSValue &values);
    // A date as the user's locale writes it; undefined when the text is none.
    Q_INVOKABLE QVariant parseLocalDate(const QString &text) const;

private:
    Outcome thrown(const QJSValue &value, int line, const QString &fileName) const;

    QJSEngine m_engine;
    ScriptBridge *m_bridge;
    QJSValue m_guard;
};
