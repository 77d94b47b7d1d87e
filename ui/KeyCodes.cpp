#include "KeyCodes.h"

#include <X11/XF86keysym.h>
#include <X11/keysym.h>

#include <array>

namespace KeyCodes {

namespace {

// Indexed by virtual key code, 0 to 126.
constexpr std::array<unsigned long, 127> keySymbols = [] {
    std::array<unsigned long, 127> table{};
    const unsigned long letters[] = {XK_a, XK_s, XK_d, XK_f, XK_h, XK_g, XK_z, XK_x, XK_c, XK_v, 0, XK_b,
                                     XK_q, XK_w, XK_e, XK_r, XK_y, XK_t, XK_1, XK_2, XK_3, XK_4, XK_6, XK_5,
                                     XK_equal, XK_9, XK_7, XK_minus, XK_8, XK_0, XK_bracketright, XK_o, XK_u,
                                     XK_bracketleft, XK_i, XK_p, XK_Return, XK_l, XK_j, XK_apostrophe, XK_k,
                                     XK_semicolon, XK_backslash, XK_comma, XK_slash, XK_n, XK_m, XK_period,
                                     XK_Tab, XK_space, XK_grave, XK_BackSpace, 0, XK_Escape, XK_Super_R, XK_Super_L,
                                     XK_Shift_L, XK_Caps_Lock, XK_Alt_L, XK_Control_L, XK_Shift_R, XK_Alt_R,
                                     XK_Control_R, 0, XK_F17, XK_KP_Decimal, 0, XK_KP_Multiply, 0, XK_KP_Add,
                                     0, XK_Num_Lock, XF86XK_AudioRaiseVolume, XF86XK_AudioLowerVolume,
                                     XF86XK_AudioMute, XK_KP_Divide, XK_KP_Enter, 0, XK_KP_Subtract, XK_F18,
                                     XK_F19, XK_KP_Equal, XK_KP_0, XK_KP_1, XK_KP_2, XK_KP_3, XK_KP_4, XK_KP_5,
                                     XK_KP_6, XK_KP_7, XK_F20, XK_KP_8, XK_KP_9, 0, 0, 0, XK_F5, XK_F6, XK_F7,
                                     XK_F3, XK_F8, XK_F9, 0, XK_F11, 0, XK_F13, XK_F16, XK_F14, 0, XK_F10, 0,
                                     XK_F12, 0, XK_F15, XK_Insert, XK_Home, XK_Prior, XK_Delete, XK_F4, XK_End,
                                     XK_F2, XK_Next, XK_F1, XK_Left, XK_Right, XK_Down, XK_Up};
    for (std::size_t i = 0; i < std::size(letters); ++i)
        table[i] = letters[i];
    return table;
}();

static_assert(keySymbols[0] == XK_a && keySymbols[36] == XK_Return && keySymbols[48] == XK_Tab
              && keySymbols[49] == XK_space && keySymbols[51] == XK_BackSpace && keySymbols[53] == XK_Escape
              && keySymbols[Command] == XK_Super_L && keySymbols[Shift] == XK_Shift_L
              && keySymbols[Option] == XK_Alt_L && keySymbols[Control] == XK_Control_L
              && keySymbols[76] == XK_KP_Enter && keySymbols[117] == XK_Delete && keySymbols[122] == XK_F1
              && keySymbols[123] == XK_Left && keySymbols[126] == XK_Up,
              "the table is out of step with the key codes");

} // namespace

unsigned long keySymbolFor(quint16 keyCode)
{
    return keyCode < keySymbols.size() ? keySymbols[keyCode] : 0;
}

} // namespace KeyCodes
