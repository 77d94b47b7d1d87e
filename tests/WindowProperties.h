#pragma once

// Window properties as the X server holds them, read on a connection of the
// test's own, for tests that check what the window manager did.

#include <QList>

#include <X11/Xlib.h>

// One property of a window (0 for the root window) as 32-bit items; empty
// when it is missing or of another format.
inline QList<unsigned long> windowProperty(unsigned long window, const char *name)
{
    Display *display = XOpenDisplay(nullptr);
    QList<unsigned long> values;
    if (!display)
        return values;
    Atom type = None;
    int format = 0;
    unsigned long count = 0, remaining = 0;
    unsigned char *data = nullptr;
    if (XGetWindowProperty(display, window ? window : DefaultRootWindow(display), XInternAtom(display, name, False), 0,
                           1024, False, AnyPropertyType, &type, &format, &count, &remaining, &data) == Success &&
        data && format == 32)
        values = QList<unsigned long>(reinterpret_cast<unsigned long *>(data),
                                      reinterpret_cast<unsigned long *>(data) + count);
    if (data)
        XFree(data);
    XCloseDisplay(display);
    return values;
}
