#pragma once

#include <QtGlobal>

// Scripts name keys by the virtual key codes of a US keyboard (0 is A, 36
// Return, 55 Command, 123 to 126 the arrows). Each maps to the X key symbol
// at the same place; Command is the left Super key, Option the left Alt.
namespace KeyCodes {

inline constexpr quint16 Command = 55, Shift = 56, Option = 58, Control = 59;

// The key symbol for a virtual key code; 0 for a code no key has.
unsigned long keySymbolFor(quint16 keyCode);

} // namespace KeyCodes
