#pragma once

#include "ScriptHost.h"

#include <QStringList>

class RZApplication;

// The window's own script (main.js): it decides the flow, and native code
// does the work. Events of the window reach the script's handler functions
// by name (launched, clicked, choseMenuItem, dropped, previewed, willQuit);
// a handler the script does not define is skipped.
class MainScript : public QObject {
    Q_OBJECT
public:
    MainScript(RZApplication &application, const MethodRegistry &methods);

    // Runs the script file so its handlers exist; false when it cannot be
    // read or fails, with the reason in errors().
    bool load(const QString &path);
    void handle(const QString &handler, const QVariant &argument = {});
    // Shows the window and tells the script it has launched, with the
    // folders or files named on the command line.
    void start(const QStringList &paths);

    // Every error a handler threw, as "file:line: message"; each is also
    // written to standard error.
    const QStringList &errors() const { return m_errors; }
    ScriptHost &host() { return m_host; }

private:
    void fail(const QString &error);

    RZApplication &m_application;
    ScriptHost m_host;
    QString m_fileName;
    QStringList m_errors;
};
