#pragma once

// Whether a modifier key is held at this moment, read from the keyboard's
// state at call time rather than from any event, so it also answers inside
// timers and notifications. Command is the Super key, Option is Alt. Caps
// Lock is none of them. Without a display every answer is NO.
namespace ModifierKeys {

// The held modifiers in the bit layout scripts know: Command bit 8, Shift
// bit 9, Option bit 11, Control bit 12.
unsigned currentKeyModifiers();

bool isCommandKeyDown();
bool isShiftKeyDown();
bool isOptionKeyDown();
bool isControlKeyDown();

} // namespace ModifierKeys
