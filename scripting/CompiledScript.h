#pragma once

#include "Descriptor.h"
#include "MethodRegistry.h"

#include <QJSValue>
#include <QObject>
#include <QVariantMap>
#include <memory>
#include <optional>

class ScriptHost;

// A script compiled from JavaScript source: its top-level functions are its
// handlers. Each script runs in an engine of its own, with the bridge to
// native code. Errors are reported as error dictionaries with the keys
// "NSAppleScriptErrorNumber", "NSAppleScriptErrorMessage" (file, line and
// message) and "NSAppleScriptErrorBriefMessage" (the message alone).
class CompiledScript : public QObject {
    Q_OBJECT
public:
    CompiledScript(const MethodRegistry &methods, const QString &source,
                   const QString &fileName = QStringLiteral("script"), QObject *parent = nullptr);
    ~CompiledScript() override;

    // Loads and compiles a script file; nullptr, with the error in
    // `errorInfo`, when the file is missing or does not compile.
    static CompiledScript *fromFile(const MethodRegistry &methods, const QString &path, QVariantMap *errorInfo,
                                    QObject *parent = nullptr);

    bool isCompiled() const { return !m_compileError.has_value(); }
    const std::optional<QVariantMap> &compileError() const { return m_compileError; }

    // Runs the script's top level; its result is the completion value.
    std::optional<Descriptor> executeAndReturnError(QVariantMap *errorInfo);
    // Answers a handler-call event ('ascr'/'psbr'): calls the top-level
    // function named under 'snam' with the items of the '----' list.
    std::optional<Descriptor> executeAppleEvent(const Descriptor &event, QVariantMap *errorInfo);

    static QVariantMap errorInfo(int number, const QString &message, const QString &brief);

private:
    bool run(QVariantMap *errorInfo);
    static QVariantMap errorFrom(const QJSValue &thrown, const QString &message, int defaultNumber);

    const MethodRegistry &m_methods;
    QString m_source;
    QString m_fileName;
    std::optional<QVariantMap> m_compileError;
    std::unique_ptr<ScriptHost> m_host;
    bool m_hasRun = false;
    QJSValue m_lastResult;
};

// Script error numbers used here.
namespace ScriptError {
constexpr int FileNotFound = -43;
constexpr int HandlerNotFound = -1708;
constexpr int Generic = -2700;
constexpr int Syntax = -2740;
} // namespace ScriptError

// A script value as a descriptor: strings 'utxt', whole numbers in 32-bit
// range 'long', other numbers 'doub', booleans, Date 'ldt ', arrays 'list',
// plain objects 'reco' (keys under 'usrf'), null 'null', undefined the
// missing value.
Descriptor descriptorFromScriptValue(const QJSValue &value);
