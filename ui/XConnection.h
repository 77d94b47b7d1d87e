#pragma once

#include <optional>

typedef struct _XDisplay Display;

// One connection to the X server for the process, opened on first use and
// kept: modifier queries and posted input come often and must be cheap.
// nullptr without a display.
namespace XConnection {

Display *shared();

// Where the pointer is on the screen (from the top left) and the X
// modifier mask of the keys held now; nullopt without a display.
struct PointerState {
    int x = 0, y = 0;
    unsigned mask = 0;
};
std::optional<PointerState> pointerState();

} // namespace XConnection
