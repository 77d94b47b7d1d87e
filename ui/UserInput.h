#pragma once

#include <QList>
#include <QPointF>
#include <QVariantMap>

// Pointer moves, clicks and key strokes posted through the X server's test
// extension as the user's own input, so they reach whatever window has the
// pointer or the keyboard. Points are global, from the top left of the main
// screen. Without a display nothing is posted.
namespace UserInput {

struct KeyStroke {
    quint16 keyCode = 0;
    bool command = false, shift = false, option = false, control = false;

    // A record with "key_code" and the four "…_down" flags; a missing flag
    // is NO.
    static KeyStroke fromRecord(const QVariantMap &record);
};

struct KeyEvent {
    quint16 keyCode;
    bool down;
    bool operator==(const KeyEvent &) const = default;
};

// What typing the strokes posts, in order: the held modifiers go down as
// Command, Shift, Option, Control, the key goes down and up, and the
// modifiers come up in that same order.
QList<KeyEvent> eventsFor(const QList<KeyStroke> &strokes);

// Posts the events of the strokes in one batch, each key at the place its
// code names, whatever the keyboard layout. The X server cannot hold the
// real keyboard off meanwhile; the batch reaches it at once, so the user's
// own keys can only fall before or after it. A code no key has is refused
// before anything is posted: the answer says why ("" when typed).
QString type(const QList<KeyStroke> &strokes);

void moveMouseTo(QPointF point);
QPointF mouseLocation();
void clickAt(QPointF point);

} // namespace UserInput
