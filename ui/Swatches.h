#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>

// Colour and gradient swatches written as image files. The format follows
// the path's extension exactly: "jpg", "png" or "tif"; any other (also
// "jpeg", "tiff" or upper case) writes nothing.
namespace Swatches {

QImage ofColor(const QColor &color, int width, int height);
// The colours spread evenly along the gradient, which runs at the angle in
// degrees (0 from left to right, 90 from bottom to top).
QImage ofGradient(const QList<QColor> &colors, double angle, int width, int height);

// Writes the image to the path (a "~" expanded), replacing any file there
// in one step once the whole image is ready. False for an empty image, another
// extension or a failed write.
bool write(const QImage &image, const QString &path);

} // namespace Swatches
