#pragma once

class MethodRegistry;

// Descriptors and their conversions, compiled scripts and their handler
// calls, and running script text, under the classes scripts know them by.
void registerScriptMethods(MethodRegistry &registry);
