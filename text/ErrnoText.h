#pragma once

#include <QString>

// What an errno value means, in the system's words ("No space left on
// device"): the one way failures of system calls are told.
QString errnoText(int error);
