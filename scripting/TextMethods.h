#pragma once

class MethodRegistry;

// The string categories and shared character sets, under NSString and
// NSCharacterSet.
void registerTextMethods(MethodRegistry &registry);
