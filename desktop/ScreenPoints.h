#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>

class QScreen;

// Scripts give screen points and rectangles with the origin at the bottom
// left of the main screen and y growing upward; Qt's origin is the top left.
// Geometry crosses that edge here and nowhere else. Each conversion is its
// own inverse.
namespace ScreenPoints {

// "{x, y}": the first two numbers in the text; a missing one is 0.
QPointF fromText(const QString &text);

QPointF toTopLeft(const QPointF &bottomLeftPoint);
QPointF toBottomLeft(const QPointF &topLeftPoint);
QRectF toTopLeft(const QRectF &bottomLeftRect);
QRectF toBottomLeft(const QRectF &topLeftRect);

// A screen's full and visible frames, counted from the bottom left.
QRectF frameOf(const QScreen *screen);
QRectF visibleFrameOf(const QScreen *screen);
// The band the desktop's top panel takes: the screen's height above the
// top of its available area.
qreal menuBarHeight(const QScreen *screen);

} // namespace ScreenPoints
