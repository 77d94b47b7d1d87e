#include "UserInput.h"

#include "DictionaryAdditions.h"
#include "KeyCodes.h"
#include "XConnection.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <cmath>

namespace UserInput {

KeyStroke KeyStroke::fromRecord(const QVariantMap &record)
{
    using namespace ROZ_NSDictionaryAdditions;
    const auto flag = [&](const char *key) { return boolForKey(record, QLatin1String(key)); };
    return {quint16(integerForKey(record, QStringLiteral("key_code"))), flag("command_down"), flag("shift_down"),
            flag("option_down"), flag("control_down")};
}

QList<KeyEvent> eventsFor(const QList<KeyStroke> &strokes)
{
    QList<KeyEvent> events;
    for (const KeyStroke &stroke : strokes) {
        const std::pair<bool, quint16> modifiers[] = {{stroke.command, KeyCodes::Command},
                                                      {stroke.shift, KeyCodes::Shift},
                                                      {stroke.option, KeyCodes::Option},
                                                      {stroke.control, KeyCodes::Control}};
        for (const auto &[held, code] : modifiers)
            if (held)
                events.append({code, true});
        events.append({stroke.keyCode, true});
        events.append({stroke.keyCode, false});
        for (const auto &[held, code] : modifiers)
            if (held)
                events.append({code, false});
    }
    return events;
}

void type(const QList<KeyStroke> &strokes)
{
    Display *x = XConnection::shared();
    if (!x)
        return;
    for (const KeyEvent &event : eventsFor(strokes)) {
        const KeyCode key = XKeysymToKeycode(x, KeyCodes::keySymbolFor(event.keyCode));
        if (key)
            XTestFakeKeyEvent(x, key, event.down, CurrentTime);
    }
    XSync(x, False);
}

void moveMouseTo(QPointF point)
{
    Display *x = XConnection::shared();
    if (!x)
        return;
    XWarpPointer(x, None, DefaultRootWindow(x), 0, 0, 0, 0, int(std::lround(point.x())), int(std::lround(point.y())));
    XSync(x, False);
}

QPointF mouseLocation()
{
    const auto pointer = XConnection::pointerState();
    return pointer ? QPointF(float(pointer->x), float(pointer->y)) : QPointF();
}

void clickAt(QPointF point)
{
    Display *x = XConnection::shared();
    if (!x)
        return;
    XTestFakeMotionEvent(x, -1, int(std::lround(point.x())), int(std::lround(point.y())), CurrentTime);
    XTestFakeButtonEvent(x, Button1, True, CurrentTime);
    XTestFakeButtonEvent(x, Button1, False, CurrentTime);
    XSync(x, False);
}

} // namespace UserInput
