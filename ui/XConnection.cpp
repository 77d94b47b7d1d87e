#include "XConnection.h"

#include <X11/Xlib.h>

namespace XConnection {

Display *shared()
{
    static Display *const connection = XOpenDisplay(nullptr);
    return connection;
}

std::optional<PointerState> pointerState()
{
    Display *x = shared();
    if (!x)
        return std::nullopt;
    Window root = 0, child = 0;
    int windowX = 0, windowY = 0;
    PointerState state;
    // Filled even when the pointer is on another screen.
    XQueryPointer(x, DefaultRootWindow(x), &root, &child, &state.x, &state.y, &windowX, &windowY, &state.mask);
    return state;
}

} // namespace XConnection
