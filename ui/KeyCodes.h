#pragma once

#include <QtGlobal>

// Scripts name keys by the virtual key codes of a Mac keyboard (0 is A, 36
// Return, 55 Command, 123 to 126 the arrows): places on the keyboard, not
// what is printed on them. Each maps to the XKB name of the key at that
// place ("AC01" is the key right of Caps Lock), which the X keyboard
// description turns into the key there, whatever the layout. Command is
// the left Super key, Option the left Alt.
namespace KeyCodes {

inline constexpr quint16 Command = 55, Shift = 56, Option = 58, Control = 59;

// The XKB name of the key at the code's place; nullptr for a code no key
// has.
const char *keyNameFor(quint16 keyCode);

} // namespace KeyCodes
