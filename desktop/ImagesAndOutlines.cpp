#include "MiscMethods.h"

#include "PathConversion.h"

#include <QBuffer>
#include <QColor>
#include <QDataStream>
#include <QIcon>
#include <QImage>
#include <QMimeDatabase>
#include <QTreeView>

QVariant MiscMethods::returnImage(const QString &path)
{
    if (!itemExists(path))
        return QVariant();
    // Loaded from the path as given: a colon path exists but gives no image.
    const QImage image(path);
    return image.isNull() ? QVariant() : QVariant(image);
}

QVariant MiscMethods::returnIcon(const QString &path)
{
    if (!itemExists(path))
        return QVariant();
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForFile(PathConversion::pathPOSIX(path));
    return QVariant::fromValue(QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName())));
}

namespace {

// The item shown at a row, counting only rows that are visible.
QModelIndex indexAtRow(QTreeView *outline, int row)
{
    if (!outline || !outline->model() || row < 0)
        return {};
    QModelIndex index = outline->model()->index(0, 0, outline->rootIndex());
    for (int i = 0; i < row && index.isValid(); ++i)
        index = outline->indexBelow(index);
    return index;
}

} // namespace

bool MiscMethods::expandOutlineItem(QTreeView *outline, int row)
{
    const QModelIndex index = indexAtRow(outline, row);
    if (!index.isValid())
        return false;
    outline->expand(index);
    return outline->isExpanded(index);
}

bool MiscMethods::isOutlineItemExpanded(QTreeView *outline, int row)
{
    const QModelIndex index = indexAtRow(outline, row);
    return index.isValid() && outline->isExpanded(index);
}

namespace ColorArchiving {

QByteArray archivedData(const QColor &color)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_0);
    out << color;
    return bytes;
}

std::optional<QColor> colorFromData(const QByteArray &data)
{
    QDataStream in(data);
    in.setVersion(QDataStream::Qt_6_0);
    QColor color;
    in >> color;
    if (in.status() != QDataStream::Ok)
        return std::nullopt;
    return color;
}

} // namespace ColorArchiving
