#pragma once

#include <QPointF>

// The puff of smoke that shows an item going away: a few frames drawn in a
// small frameless window that clicks pass through, centred on the point
// (Qt's top-left screen coordinates), which closes itself when done.
namespace Poof {

void play(const QPointF &centre);

} // namespace Poof
