#pragma once

class MethodRegistry;

// The desktop services, as class methods of MiscMethods.
void registerDesktopMethods(MethodRegistry &registry);
// Paths, file items, type tests, introspection and colours.
void registerFileItemMethods(MethodRegistry &registry);
// Text measured in fonts, colours, captions and HTML read as text, on the
// string class.
void registerTextShapingMethods(MethodRegistry &registry);
// The fonts of interface objects and the font database's families.
void registerFontMethods(MethodRegistry &registry);
// Alerts, dialogs, logging and small utilities, and file operations.
void registerAlertAndFileMethods(MethodRegistry &registry);
// Processes, applications, the disappearing puff, and the network.
void registerApplicationAndNetworkMethods(MethodRegistry &registry);
