#pragma once

// Pointer and key input through the X server's test extension, as a hand
// gives it, on a connection of its own. Each call reaches the server before
// it returns; handling what it caused is the caller's part.

#include <QPoint>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

class SyntheticInput {
public:
    SyntheticInput() : m_display(XOpenDisplay(nullptr)) {}
    ~SyntheticInput()
    {
        if (m_display)
            XCloseDisplay(m_display);
    }
    SyntheticInput(const SyntheticInput &) = delete;
    SyntheticInput &operator=(const SyntheticInput &) = delete;

    bool usable() const { return m_display != nullptr; }
    // A point in screen coordinates from the top left.
    void moveTo(QPoint global)
    {
        XTestFakeMotionEvent(m_display, -1, global.x(), global.y(), CurrentTime);
        XSync(m_display, False);
    }
    // The left button, or another by its X number (3 the right one).
    void button(bool down, unsigned number = 1)
    {
        XTestFakeButtonEvent(m_display, number, down, CurrentTime);
        XSync(m_display, False);
    }
    void key(KeySym symbol, bool down)
    {
        XTestFakeKeyEvent(m_display, XKeysymToKeycode(m_display, symbol), down, CurrentTime);
        XSync(m_display, False);
    }

private:
    Display *m_display;
};
