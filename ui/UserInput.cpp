#include "UserInput.h"

#include "DictionaryAdditions.h"
#include "KeyCodes.h"
#include "XConnection.h"

#include <X11/Xlib.h>
#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>

#include <QHash>

#include <cmath>

namespace UserInput {

KeyStroke KeyStroke::fromRecord(const QVariantMap &record)
{
    using namespace DictionaryAdditions;
    // Numbers and booleans as scripts give them; text as the platform reads it.
    const auto number = [&](const char *key) {
        const QVariant value = record.value(QLatin1String(key));
        return isNumber(value) ? value.toLongLong() : qlonglong(integerForKey(record, QLatin1String(key)));
    };
    const auto flag = [&](const char *key) {
        const QVariant value = record.value(QLatin1String(key));
        // (X names a type Bool, so the type is asked by its C++ name.)
        return isNumber(value) || value.metaType() == QMetaType::fromType<bool>() ? value.toBool()
                                                                                 : boolForKey(record, QLatin1String(key));
    };
    return {quint16(number("key_code")), flag("command_down"), flag("shift_down"), flag("option_down"), flag("control_down")};
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

namespace {

// The X key codes of the keys at these places, by the keyboard's own
// description (its key names); 0 for a name the keyboard lacks.
QHash<QByteArray, KeyCode> keysNamed(Display *x)
{
    QHash<QByteArray, KeyCode> keys;
    XkbDescPtr keyboard = XkbGetMap(x, 0, XkbUseCoreKbd);
    if (!keyboard)
        return keys;
    if (XkbGetNames(x, XkbKeyNamesMask | XkbKeyAliasesMask, keyboard) == Success && keyboard->names) {
        for (int code = keyboard->min_key_code; code <= keyboard->max_key_code; ++code) {
            const QByteArray name(keyboard->names->keys[code].name, qstrnlen(keyboard->names->keys[code].name, XkbKeyNameLength));
            if (!name.isEmpty() && !keys.contains(name))
                keys.insert(name, KeyCode(code));
        }
        // An alias names a key by another name ("LatQ" for "AD01").
        for (int i = 0; i < keyboard->names->num_key_aliases; ++i) {
            const XkbKeyAliasRec &alias = keyboard->names->key_aliases[i];
            const QByteArray name(alias.alias, qstrnlen(alias.alias, XkbKeyNameLength));
            const QByteArray real(alias.real, qstrnlen(alias.real, XkbKeyNameLength));
            if (!keys.contains(name) && keys.contains(real))
                keys.insert(name, keys.value(real));
        }
    }
    XkbFreeKeyboard(keyboard, 0, True);
    return keys;
}

} // namespace

QString type(const QList<KeyStroke> &strokes)
{
    for (const KeyStroke &stroke : strokes)
        if (!KeyCodes::keyNameFor(stroke.keyCode))
            return QStringLiteral("no key has the virtual key code %1").arg(stroke.keyCode);
    Display *x = XConnection::shared();
    if (!x)
        return QString();
    const QHash<QByteArray, KeyCode> keys = keysNamed(x);
    QList<std::pair<KeyCode, bool>> posted;
    for (const KeyEvent &event : eventsFor(strokes)) {
        const KeyCode key = keys.value(KeyCodes::keyNameFor(event.keyCode));
        if (!key)
            return QStringLiteral("this keyboard has no key at the place of virtual key code %1 (%2)")
                .arg(event.keyCode)
                .arg(QLatin1String(KeyCodes::keyNameFor(event.keyCode)));
        posted.append({key, event.down});
    }
    for (const auto &[key, down] : posted)
        XTestFakeKeyEvent(x, key, down, CurrentTime);
    XSync(x, False);
    return QString();
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
