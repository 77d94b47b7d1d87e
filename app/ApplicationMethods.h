#pragma once

class MethodRegistry;

// RZApplication's selectors, and the native helpers its scripts call
// (NomenPerl, NomenExif).
void registerApplicationMethods(MethodRegistry &registry);
