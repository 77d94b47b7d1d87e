#include "MainScript.h"
#include "FileBytes.h"

#include "JsValues.h"
#include "RZApplication.h"

#include <QWidget>
#include <cstdio>

MainScript::MainScript(RZApplication &application, const MethodRegistry &methods)
    : m_application(application), m_host(methods)
{
    QJSEngine::setObjectOwnership(&application, QJSEngine::CppOwnership);
    m_host.engine().globalObject().setProperty(QStringLiteral("application"), m_host.engine().newQObject(&application));
    connect(&application.mainWindow(), &MainWindowController::scriptEvent, this, &MainScript::handle);
}

bool MainScript::load(const QString &path)
{
    m_fileName = path.section(u'/', -1);
    const auto contents = FileBytes::read(path);
    if (!contents.bytes) {
        fail(contents.error);
        return false;
    }
    // The file is opened by its name's bytes; what it holds is JavaScript
    // source, which is UTF-8 text.
    const ScriptHost::Outcome outcome = m_host.evaluate(QString::fromUtf8(*contents.bytes), m_fileName);
    if (!outcome.ok())
        fail(outcome.error);
    return outcome.ok();
}

void MainScript::handle(const QString &handler, const QVariant &argument)
{
    const QJSValue function = m_host.engine().globalObject().property(handler);
    if (!function.isCallable())
        return;
    QJSValueList arguments;
    if (argument.isValid())
        arguments.append(JsValues::toJs(m_host.engine(), argument));
    const ScriptHost::Outcome outcome = m_host.call(function, arguments, m_fileName);
    if (!outcome.ok())
        fail(outcome.error);
}

void MainScript::start(const QStringList &paths)
{
    m_application.window()->show();
    handle(QStringLiteral("launched"), paths);
}

void MainScript::fail(const QString &error)
{
    m_errors.append(error);
    const QByteArray line = ("nomen: " + error + u'\n').toUtf8();
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
}
