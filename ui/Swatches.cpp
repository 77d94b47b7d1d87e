#include "Swatches.h"

#include "FileBytes.h"
#include "PathCodec.h"
#include "PathConversion.h"

#include <QBuffer>
#include <QFileInfo>
#include <QLinearGradient>
#include <QPainter>
#include <QtMath>

#include <pwd.h>

namespace Swatches {

namespace {

// "~" and "~/…" are the home folder, "~name/…" that user's.
QString expandTilde(const QString &path)
{
    if (!path.startsWith(u'~'))
        return path;
    const qsizetype slash = path.indexOf(u'/');
    const QString user = path.mid(1, slash < 0 ? -1 : slash - 1);
    QString home;
    if (user.isEmpty()) {
        home = PathCodec::decode(qgetenv("HOME"));
    } else if (const passwd *entry = getpwnam(PathCodec::encode(user).constData())) {
        home = PathCodec::decode(entry->pw_dir);
    } else {
        return path;
    }
    return slash < 0 ? home : home + path.mid(slash);
}

} // namespace

QImage ofColor(const QColor &color, int width, int height)
{
    if (width <= 0 || height <= 0 || !color.isValid())
        return {};
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QImage ofGradient(const QList<QColor> &colors, double angle, int width, int height)
{
    if (width <= 0 || height <= 0 || colors.size() < 2)
        return {};
    // Through the centre at the angle, reaching the corners that lie
    // furthest along it; y grows downward in the image.
    const double radians = qDegreesToRadians(angle);
    const QPointF direction(std::cos(radians), -std::sin(radians));
    const double reach = (std::abs(direction.x()) * width + std::abs(direction.y()) * height) / 2;
    const QPointF centre(width / 2.0, height / 2.0);
    QLinearGradient gradient(centre - direction * reach, centre + direction * reach);
    for (qsizetype i = 0; i < colors.size(); ++i)
        gradient.setColorAt(double(i) / double(colors.size() - 1), colors[i]);
    QImage image(width, height, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.fillRect(image.rect(), gradient);
    return image;
}

bool write(const QImage &image, const QString &path)
{
    static const QList<std::pair<QString, const char *>> formats{
        {QStringLiteral("jpg"), "JPEG"}, {QStringLiteral("png"), "PNG"}, {QStringLiteral("tif"), "TIFF"}};
    const QString posix = PathConversion::pathPOSIX(expandTilde(path));
    const QString extension = QFileInfo(posix).suffix();
    for (const auto &[suffix, format] : formats) {
        if (extension != suffix)
            continue;
        QByteArray data;
        QBuffer buffer(&data);
        return !image.isNull() && buffer.open(QIODevice::WriteOnly) && image.save(&buffer, format)
               && FileBytes::replaceContents(posix, data).isEmpty();
    }
    return false;
}

} // namespace Swatches
