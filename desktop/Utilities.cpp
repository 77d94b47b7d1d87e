#include "MiscMethods.h"

#include "PathCodec.h"
#include "PathConversion.h"
#include "ScriptSubroutines.h"
#include "SystemLog.h"

#include <QApplication>
#include <QDialog>
#include <QWidget>
#include <X11/Xlib.h>
#include <X11/extensions/scrnsaver.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace {

int screenUpdatesDisabled = 0;

// The application's own main window: its first visible top-level window
// that is not a dialog.
QWidget *mainWindow()
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget->windowType() == Qt::Window && !qobject_cast<QDialog *>(widget))
            return widget;
    return nullptr;
}

} // namespace

// Later log lines, and anything else written to standard error, go to the
// file. A file that cannot be opened leaves the stream where it was.
void MiscMethods::setLogOutputFile(const QString &path)
{
    const QByteArray name = PathCodec::encode(PathConversion::pathPOSIX(path));
    if (name.isEmpty())
        return;
    const int file = ::open(name.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0)
        return;
    std::fflush(stderr);
    ::dup2(file, STDERR_FILENO);
    ::close(file);
}

void MiscMethods::activate()
{
    if (QWidget *window = mainWindow()) {
        window->raise();
        window->activateWindow();
    }
}

// The time since the user last used the keyboard or the pointer, from the X
// server's screen-saver extension; 0 without a display.
int MiscMethods::idleTimeInSeconds()
{
    Display *display = XOpenDisplay(nullptr);
    if (!display)
        return 0;
    int seconds = 0;
    int eventBase = 0;
    int errorBase = 0;
    if (XScreenSaverQueryExtension(display, &eventBase, &errorBase)) {
        XScreenSaverInfo *info = XScreenSaverAllocInfo();
        if (info && XScreenSaverQueryInfo(display, DefaultRootWindow(display), info))
            seconds = int(info->idle / 1000);
        XFree(info);
    }
    XCloseDisplay(display);
    return seconds;
}

bool MiscMethods::wait(double seconds)
{
    if (!(seconds > 0))
        return true;
    const double whole = std::floor(seconds);
    timespec remaining{time_t(std::min(whole, 1e9)), long((seconds - whole) * 1e9)};
    while (::nanosleep(&remaining, &remaining) != 0 && errno == EINTR) {
    }
    return true;
}

// No Linux desktop lets an application postpone a power-off it was told
// of, so nothing is extended.
int MiscMethods::extendPowerOffBy(int)
{
    return 0;
}

// The calls nest: windows repaint again when every NO has had its YES.
void MiscMethods::toggleScreenUpdates(bool enable)
{
    if (enable && screenUpdatesDisabled == 0)
        return;
    screenUpdatesDisabled += enable ? -1 : 1;
    const bool changed = enable ? screenUpdatesDisabled == 0 : screenUpdatesDisabled == 1;
    if (!changed || !qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;
    for (QWidget *window : QApplication::topLevelWidgets())
        window->setUpdatesEnabled(enable);
}

QString MiscMethods::leadingZeros(int number, int width)
{
    // A width from a runaway script must not ask for gigabytes.
    width = std::clamp(width, -4096, 4096);
    const QByteArray format = "%0" + QByteArray::number(width) + 'd';
    return QString::asprintf(format.constData(), number);
}

void MiscMethods::clearSudo(const MethodRegistry &methods)
{
    ScriptRunner::runScript(methods, QStringLiteral(R"JS(
        try {
            callClassMethod("ROZ_MiscMethods", "runTask:withArguments:onData:atWorkingDirectory:",
                            ["/bin/sh", ["-c", "command -v sudo >/dev/null 2>&1 && sudo -k"], "", "/"]);
        } catch (e) {
        }
    )JS"));
}
