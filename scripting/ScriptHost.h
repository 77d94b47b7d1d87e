#pragma once

#include "MethodRegistry.h"
#include "ScriptBridge.h"

#include <QJSEngine>
#include <optional>

// A script engine with the bridge installed and a print() that writes one
// line to standard output. Runs program text and reports its completion
// value or its error.
class ScriptHost : public QObject {
    Q_OBJECT
public:
    explicit ScriptHost(const MethodRegistry &registry);

    QJSEngine &engine() { return m_engine; }
    ScriptBridge &bridge() { return *m_bridge; }

    struct Outcome {
        QJSValue value;
        QString error; // "file:line: message", empty on success
        bool ok() const { return error.isEmpty(); }
    };
    Outcome evaluate(const QString &program, const QString &fileName);

    // What nomen-script prints for a completion value: a string as it is,
    // nothing for undefined, anything else as JSON with dates in ISO 8601
    // with their offset.
    std::optional<QString> printable(const QJSValue &value) const;

    Q_INVOKABLE void printValues(const QJSValue &values);

private:
    QJSEngine m_engine;
    ScriptBridge *m_bridge;
};
