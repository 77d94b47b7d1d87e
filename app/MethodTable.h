#pragma once

#include "MethodRegistry.h"

// The one registration table every script sees: each subsystem adds its
// selectors here.
MethodRegistry buildMethodTable();
