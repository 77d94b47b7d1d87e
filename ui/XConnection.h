#pragma once

typedef struct _XDisplay Display;

// One connection to the X server for the process, opened on first use and
// kept: modifier queries and posted input come often and must be cheap.
// nullptr without a display.
namespace XConnection {
Display *shared();
}
