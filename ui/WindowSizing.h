#pragma once

class QWidget;

// Windows sized to what they show. Heights here are of whole windows: the
// content plus any title bar the window manager draws.
namespace WindowSizing {

// The height the field needs for its text at its present width.
int neededHeight(const QWidget *field);

// Grows or shrinks the field's window so the field's text fits: the content
// is the smallest allowable height when that is more than the text needs,
// else the need plus 4; the offset is added to the window's height. With
// adjustFromTop the top edge stays where it is, else the bottom edge.
// Animated when the window is on screen.
void fitTextFieldToText(QWidget *field, int offset, int smallestAllowableSize, bool adjustFromTop);

// Sets the window's content to the height as a titled window would have it
// (a window without a title bar counts one of 22), keeping the top edge.
void discloseWindow(QWidget *window, float height, bool useAnimation);

} // namespace WindowSizing
