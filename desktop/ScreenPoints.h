#pragma once

#include <QPointF>
#include <QString>

// Scripts give screen points with the origin at the bottom left of the main
// screen and y growing upward; Qt's origin is the top left. Points cross
// that edge here and nowhere else.
namespace ScreenPoints {

// "{x, y}": the first two numbers in the text; a missing one is 0.
QPointF fromText(const QString &text);

QPointF toTopLeft(const QPointF &bottomLeftPoint);

} // namespace ScreenPoints
