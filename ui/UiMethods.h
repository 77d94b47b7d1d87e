#pragma once

class MethodRegistry;

// The windows, views, menus and keys scripts reach: CustomWindow,
// BackgroundView, ModifierKeys and the window and menu class
// methods of MiscMethods.
void registerUiMethods(MethodRegistry &registry);
// Posted pointer and key input, and speech.
void registerInputAndSpeechMethods(MethodRegistry &registry);
// Large text, window sizing, log views, the busy indicator and swatches.
void registerSizingMethods(MethodRegistry &registry);
