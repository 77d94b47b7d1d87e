#include "RunningApplications.h"

#include "DesktopEntries.h"
#include "PathCodec.h"
#include "Processes.h"

#include <QSet>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <memory>
#include <unistd.h>

namespace RunningApplications {

namespace {

// A window may close while we read it; its errors must not end the process.
int ignoreErrors(Display *, XErrorEvent *) { return 0; }

class Connection {
public:
    Connection() : display_(XOpenDisplay(nullptr))
    {
        if (display_)
            previous_ = XSetErrorHandler(ignoreErrors);
    }
    ~Connection()
    {
        if (!display_)
            return;
        XSync(display_, False);
        XSetErrorHandler(previous_);
        XCloseDisplay(display_);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    Display *display() const { return display_; }
    Window root() const { return DefaultRootWindow(display_); }
    Atom atom(const char *name) const { return XInternAtom(display_, name, False); }

    // The 32-bit items of a property, as Xlib hands them over (longs).
    QList<unsigned long> items(Window window, const char *property, Atom type) const
    {
        QList<unsigned long> values;
        Atom actualType = None;
        int format = 0;
        unsigned long count = 0;
        unsigned long remaining = 0;
        unsigned char *data = nullptr;
        if (XGetWindowProperty(display_, window, atom(property), 0, 65536, False, type, &actualType, &format, &count,
                               &remaining, &data) == Success &&
            data && format == 32) {
            const auto *longs = reinterpret_cast<const unsigned long *>(data);
            values = QList<unsigned long>(longs, longs + count);
        }
        if (data)
            XFree(data);
        return values;
    }

    QString windowClass(Window window) const
    {
        XClassHint hint{};
        if (!XGetClassHint(display_, window, &hint))
            return QString();
        // The class names a desktop entry file, so it keeps its bytes.
        const QString answer = PathCodec::decode(QByteArray(hint.res_class ? hint.res_class : hint.res_name));
        if (hint.res_name)
            XFree(hint.res_name);
        if (hint.res_class)
            XFree(hint.res_class);
        return answer;
    }

    qint64 pidOf(Window window) const
    {
        const auto pid = items(window, "_NET_WM_PID", XA_CARDINAL);
        return pid.isEmpty() ? 0 : qint64(pid.first());
    }

    QList<Window> clients() const
    {
        const auto windows = items(root(), "_NET_CLIENT_LIST", XA_WINDOW);
        return QList<Window>(windows.cbegin(), windows.cend());
    }

private:
    Display *display_;
    XErrorHandler previous_ = nullptr;
};

Application describe(const Connection &x, Window window, qint64 pid)
{
    Application application;
    application.pid = pid;
    application.program = Processes::programOf(pid);
    const QString windowClass = x.windowClass(window);
    application.identifier = DesktopEntries::findRunning(windowClass, application.program);
    application.name = DesktopEntries::nameOf(application.identifier);
    if (application.name.isEmpty())
        application.name = windowClass;
    if (application.name.isEmpty())
        application.name = Processes::commandOf(pid);
    return application;
}

} // namespace

QList<Application> listed()
{
    QList<Application> applications;
    const Connection x;
    if (!x.display())
        return applications;
    QSet<qint64> seen;
    for (const Window window : x.clients()) {
        const qint64 pid = x.pidOf(window);
        if (pid <= 0 || seen.contains(pid))
            continue;
        seen.insert(pid);
        applications.append(describe(x, window, pid));
    }
    return applications;
}

std::optional<Application> active()
{
    const Connection x;
    if (!x.display())
        return std::nullopt;
    const auto windows = x.items(x.root(), "_NET_ACTIVE_WINDOW", XA_WINDOW);
    if (windows.isEmpty() || windows.first() == None)
        return std::nullopt;
    const qint64 pid = x.pidOf(windows.first());
    if (pid <= 0)
        return std::nullopt;
    return describe(x, windows.first(), pid);
}

int minimiseOthers()
{
    const Connection x;
    if (!x.display())
        return 0;
    int minimised = 0;
    const qint64 me = getpid();
    for (const Window window : x.clients()) {
        const qint64 pid = x.pidOf(window);
        if (pid != me && XIconifyWindow(x.display(), window, DefaultScreen(x.display())))
            ++minimised;
    }
    return minimised;
}

} // namespace RunningApplications
