#include "KeyCodes.h"

#include <array>
#include <string_view>

namespace KeyCodes {

namespace {

// Indexed by virtual key code, 0 to 126; "" where no key has the code.
constexpr std::array<const char *, 127> keyNames = {
    "AC01", "AC02", "AC03", "AC04", "AC06", "AC05", "AB01", "AB02", "AB03", "AB04", // 0-9: A S D F H G Z X C V
    "LSGT", "AB05", "AD01", "AD02", "AD03", "AD04", "AD06", "AD05", "AE01", "AE02", // 10-19: ISO key, B Q W E R Y T 1 2
    "AE03", "AE04", "AE06", "AE05", "AE12", "AE09", "AE07", "AE11", "AE08", "AE10", // 20-29: 3 4 6 5 = 9 7 - 8 0
    "AD12", "AD09", "AD07", "AD11", "AD08", "AD10", "RTRN", "AC09", "AC07", "AC11", // 30-39: ] O U [ I P Return L J '
    "AC08", "AC10", "BKSL", "AB08", "AB10", "AB06", "AB07", "AB09", "TAB",  "SPCE", // 40-49: K ; \ , / N M . Tab Space
    "TLDE", "BKSP", "",     "ESC",  "RWIN", "LWIN", "LFSH", "CAPS", "LALT", "LCTL", // 50-59: ` Delete - Esc Cmd Cmd Shift Caps Opt Ctrl
    "RTSH", "RALT", "RCTL", "",     "FK17", "KPDL", "",     "KPMU", "",     "KPAD", // 60-69: right Shift Opt Ctrl, fn, F17, keypad . * +
    "",     "NMLK", "VOL+", "VOL-", "MUTE", "KPDV", "KPEN", "",     "KPSU", "FK18", // 70-79: Clear, volume, keypad / Enter -, F18
    "FK19", "KPEQ", "KP0",  "KP1",  "KP2",  "KP3",  "KP4",  "KP5",  "KP6",  "KP7",  // 80-89: F19, keypad = 0-7
    "FK20", "KP8",  "KP9",  "",     "",     "",     "FK05", "FK06", "FK07", "FK03", // 90-99: F20, keypad 8 9, F5 F6 F7 F3
    "FK08", "FK09", "",     "FK11", "",     "FK13", "FK16", "FK14", "",     "FK10", // 100-109
    "",     "FK12", "",     "FK15", "INS",  "HOME", "PGUP", "DELE", "FK04", "END",  // 110-119: Help is Insert
    "FK02", "PGDN", "FK01", "LEFT", "RGHT", "DOWN", "UP",                          // 120-126
};

static_assert(std::string_view(keyNames[0]) == "AC01" && std::string_view(keyNames[36]) == "RTRN"
                  && std::string_view(keyNames[48]) == "TAB" && std::string_view(keyNames[49]) == "SPCE"
                  && std::string_view(keyNames[53]) == "ESC" && std::string_view(keyNames[Command]) == "LWIN"
                  && std::string_view(keyNames[Shift]) == "LFSH" && std::string_view(keyNames[Option]) == "LALT"
                  && std::string_view(keyNames[Control]) == "LCTL" && std::string_view(keyNames[76]) == "KPEN"
                  && std::string_view(keyNames[117]) == "DELE" && std::string_view(keyNames[122]) == "FK01"
                  && std::string_view(keyNames[123]) == "LEFT" && std::string_view(keyNames[126]) == "UP",
              "the table is out of step with the key codes");

} // namespace

const char *keyNameFor(quint16 keyCode)
{
    return keyCode < keyNames.size() && *keyNames[keyCode] ? keyNames[keyCode] : nullptr;
}

} // namespace KeyCodes
