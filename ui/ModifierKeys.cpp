#include "ModifierKeys.h"

#include "XConnection.h"

#include <X11/X.h>

namespace ModifierKeys {

namespace {

constexpr unsigned commandBit = 8, shiftBit = 9, optionBit = 11, controlBit = 12;

bool isDown(unsigned bit)
{
    return (currentKeyModifiers() >> bit) & 1u;
}

} // namespace

unsigned currentKeyModifiers()
{
    const auto pointer = XConnection::pointerState();
    const unsigned mask = pointer ? pointer->mask : 0;
    unsigned modifiers = 0;
    if (mask & Mod4Mask)
        modifiers |= 1u << commandBit;
    if (mask & ShiftMask)
        modifiers |= 1u << shiftBit;
    if (mask & Mod1Mask)
        modifiers |= 1u << optionBit;
    if (mask & ControlMask)
        modifiers |= 1u << controlBit;
    return modifiers;
}

bool isCommandKeyDown() { return isDown(commandBit); }
bool isShiftKeyDown() { return isDown(shiftBit); }
bool isOptionKeyDown() { return isDown(optionBit); }
bool isControlKeyDown() { return isDown(controlBit); }

} // namespace ModifierKeys
