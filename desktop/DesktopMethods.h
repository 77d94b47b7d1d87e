#pragma once

class MethodRegistry;

// The desktop services, as class methods of ROZ_MiscMethods.
void registerDesktopMethods(MethodRegistry &registry);
