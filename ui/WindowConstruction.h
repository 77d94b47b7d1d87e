#pragma once

#include <QRectF>

class QWidget;

// Windows and panels a script builds, with the decorations its style bits
// ask for. The bits keep their numbers, so a script reads the style it
// composed back from the window ("styleMask"). Textured and unified keep
// their bits and change nothing visible.
namespace WindowConstruction {

enum StyleBit : int {
    Borderless = 0,
    Titled = 1,
    Closable = 2,
    Miniaturizable = 4,
    Resizable = 8,
    TexturedBackground = 256,
    UnifiedTitleAndToolbar = 4096,
};

struct Decorations {
    bool useBorder = true;
    bool useTexture = false;
    bool isCloseable = false;
    bool isMiniaturizable = false;
    bool isResizable = false;
    bool isUnified = false;
};

int windowStyle(const Decorations &decorations);
// Panels have no unified bit.
int panelStyle(const Decorations &decorations);

enum class Kind { Window, Panel };
// A hidden top-level window whose content fills the rectangle, given from
// the bottom left of the main screen. Panels are tool windows. The window
// has no owner: whoever holds it deletes it.
QWidget *make(Kind kind, const QRectF &contentRect, int style);

// The alpha value reads back as it was set, though the screen shows it in
// 256 steps.
// A window's frame from the bottom left of the main screen, as scripts
// give and read it.
QRectF frameOf(const QWidget *window);
void setFrame(QWidget *window, const QRectF &frame);
// The window's geometry (top-left coordinates) exactly as asked, whether or
// not the user may resize it; a fixed window is fixed at the new size.
void setGeometry(QWidget *window, const QRect &geometry);

// Each of these leaves a nil window alone (and answers 0 or NO for it).
void setTransparency(QWidget *window, float alpha);
float alphaOf(const QWidget *window);
void setShadow(QWidget *window, bool shadow);
bool hasShadow(const QWidget *window);
// The child stays below its parent and moves with it; a window is never
// its own child.
void attachChildWindow(QWidget *child, QWidget *parent);
// The view leaves its window and is deleted; a window is no view and stays.
void removeView(QWidget *view);

} // namespace WindowConstruction
