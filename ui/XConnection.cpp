#include "XConnection.h"

#include <X11/Xlib.h>

namespace XConnection {

Display *shared()
{
    static Display *const connection = XOpenDisplay(nullptr);
    return connection;
}

} // namespace XConnection
