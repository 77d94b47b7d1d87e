#include "FileTableModel.h"

#include "ByteFormatter.h"
#include "ItemRecordValues.h"
#include "RowOrder.h"
#include "ThumbnailLoader.h"

#include <QApplication>
#include <QColor>
#include <QDateTime>
#include <QStyle>
#include <QMimeData>
#include <QMimeDatabase>
#include <QUrl>
#include <plist/plist.h>

namespace {

QString asText(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return value.toString();
}

} // namespace

const QStringList &FileTableModel::columnIdentifiers()
{
    static const QStringList identifiers = {"include", "original", "location", "creation", "modification", "size", "new",
                                            "camera",  "lens",     "dimensions", "artist", "album",      "title", "duration",
                                            "thumbnail"};
    return identifiers;
}

Metadata::Request FileTableModel::metadataOf(int column)
{
    using Metadata::Field;
    Metadata::Request request;
    switch (column) {
    case Camera:
        request.fields = {Field::Camera};
        break;
    case Lens:
        request.fields = {Field::Lens};
        break;
    case Dimensions:
        request.fields = {Field::Resolution};
        break;
    case Artist:
        request.fields = {Field::Artist};
        break;
    case Album:
        request.fields = {Field::Album};
        break;
    case Title:
        request.fields = {Field::Title};
        break;
    case Duration:
        request.fields = {Field::Duration};
        break;
    default:
        break;
    }
    return request;
}

namespace {

// What a column of what files say shows for a row.
QString metadataText(const ItemRecord &row, int column)
{
    const Metadata::Request asked = FileTableModel::metadataOf(column);
    if (!row.metadata || asked.fields.isEmpty())
        return QString();
    for (int i = 0; i < Metadata::FieldCount; ++i)
        if (asked.fields.has(Metadata::Field(i)))
            return row.metadata->text(Metadata::Field(i));
    return QString();
}

} // namespace

FileTableModel::FileTableModel(QObject *parent) : QAbstractTableModel(parent) {}

std::vector<ItemRecord> &FileTableModel::changeableRows()
{
    if (m_rows.use_count() > 1)
        m_rows = std::make_shared<std::vector<ItemRecord>>(*m_rows);
    return *m_rows;
}

void FileTableModel::setRows(std::vector<ItemRecord> rows)
{
    beginResetModel();
    m_rows = std::make_shared<std::vector<ItemRecord>>(std::move(rows));
    m_newNames.clear();
    m_conflicts.clear();
    m_warnings.clear();
    m_composingWarnings.clear();
    m_rowOfPath.clear();
    endResetModel();
}

QVariant FileTableModel::valueForColumn(const QString &identifier, int row) const
{
    if (row < 0 || size_t(row) >= m_rows->size())
        return QVariant();
    if (row < m_newNames.size() && identifier == QLatin1String("new"))
        return m_newNames[row];
    if (const qsizetype column = columnIdentifiers().indexOf(identifier); column >= firstMetadataColumn && column <= lastMetadataColumn)
        return metadataText((*m_rows)[size_t(row)], int(column));
    if (identifier == QLatin1String("thumbnail"))
        return QVariant();
    return ItemRecordValues::field((*m_rows)[size_t(row)], identifier, m_dates);
}

bool FileTableModel::setValue(const QVariant &value, const QString &identifier, int row)
{
    const int column = int(columnIdentifiers().indexOf(identifier));
    if (row < 0 || size_t(row) >= m_rows->size() || column < 0)
        return false;
    ItemRecordValues::setField(changeableRows()[size_t(row)], identifier, value);
    if (column == New && row < m_newNames.size())
        m_newNames[row] = value.toString();
    emit dataChanged(index(row, column), index(row, column));
    return true;
}

// One text per row of the new-name column, and the column shown again.
void FileTableModel::setNewNameColumnTexts(QStringList &texts, const QStringList &given)
{
    texts = given.mid(0, qsizetype(m_rows->size()));
    if (!m_rows->empty())
        emit dataChanged(index(0, New), index(int(m_rows->size()) - 1, New));
}

void FileTableModel::setNewNames(const QStringList &names, const QStringList &warnings)
{
    m_composingWarnings = warnings;
    setNewNameColumnTexts(m_newNames, names);
}

int FileTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows->size());
}

int FileTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FileTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    if (index.column() == Include)
        return role == Qt::CheckStateRole ? QVariant((*m_rows)[size_t(index.row())].include ? Qt::Checked : Qt::Unchecked)
                                          : QVariant();
    if (index.column() == Thumbnail) {
        if (role == Qt::DecorationRole)
            return thumbnailOf((*m_rows)[size_t(index.row())]);
        if (role == Qt::TextAlignmentRole)
            return int(Qt::AlignCenter);
        return QVariant();
    }
    const bool conflict = index.column() == New && !conflictAt(index.row()).isEmpty();
    const bool warning = index.column() == New && !conflict && !warningAt(index.row()).isEmpty();
    switch (role) {
    case Qt::DisplayRole: {
        const QVariant value = valueForColumn(columnIdentifiers()[index.column()], index.row());
        return index.column() == Size ? ByteFormatter::stringForObjectValue(value) : asText(value);
    }
    case Qt::TextAlignmentRole:
        return index.column() == Size || index.column() == Duration || index.column() == Dimensions
                   ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                   : QVariant();
    case Qt::ToolTipRole:
        if (conflict || warning)
            return (conflict ? conflictAt(index.row()) : warningAt(index.row())) + u'\n'
                   + valueForColumn(columnIdentifiers()[index.column()], index.row()).toString();
        // Names, folders and recorded texts are cut to fit their columns:
        // whole in the tooltip.
        if (index.column() == Original || index.column() == Location || index.column() == New
            || (index.column() >= firstMetadataColumn && index.column() <= lastMetadataColumn))
            return valueForColumn(columnIdentifiers()[index.column()], index.row());
        return QVariant();
    case Qt::ForegroundRole:
        return conflict ? QVariant(QColor(Qt::red)) : warning ? QVariant(QColor(0xa0, 0x5a, 0x00)) : QVariant();
    case Qt::DecorationRole:
        if ((conflict || warning) && qobject_cast<QApplication *>(QCoreApplication::instance()))
            return QApplication::style()->standardIcon(conflict ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation);
        return QVariant();
    default:
        return QVariant();
    }
}

void FileTableModel::setConflicts(const QStringList &reasons)
{
    if (reasons != m_conflicts)
        setNewNameColumnTexts(m_conflicts, reasons);
}

void FileTableModel::setWarnings(const QStringList &warnings)
{
    if (warnings != m_warnings)
        setNewNameColumnTexts(m_warnings, warnings);
}

void FileTableModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= ColumnCount)
        return;
    const bool descending = order == Qt::DescendingOrder;
    std::vector<size_t> positions;
    auto rows = snapshot();
    const std::function<void()> work = [&] {
        switch (column) {
        case Creation:
            positions = RowOrder::orderByValue(*rows, RowOrder::Value::Created, descending);
            break;
        case Modification:
            positions = RowOrder::orderByValue(*rows, RowOrder::Value::Modified, descending);
            break;
        case Size:
            positions = RowOrder::orderByValue(*rows, RowOrder::Value::Size, descending);
            break;
        case Include:
            positions = RowOrder::orderByValue(*rows, RowOrder::Value::Include, descending);
            break;
        case Duration:
            positions = RowOrder::orderByValue(*rows, RowOrder::Value::Duration, descending);
            break;
        case Dimensions:
            positions = RowOrder::orderByValue(*rows, RowOrder::Value::Pixels, descending);
            break;
        case Camera:
        case Lens:
        case Artist:
        case Album:
        case Title:
            positions = RowOrder::orderByText(*rows, [column](const ItemRecord &row) { return metadataText(row, column); },
                                              descending);
            break;
        default:
            positions = RowOrder::orderByName(*rows, descending);
            break;
        }
    };
    if (runAside)
        runAside(work);
    else
        work();
    if (rows != m_rows)
        return sort(column, order); // the rows were replaced meanwhile
    rows.reset();
    beginResetModel();
    RowOrder::arrange(changeableRows(), std::move(positions));
    m_newNames.clear();
    m_conflicts.clear();
    m_warnings.clear();
    m_composingWarnings.clear();
    m_rowOfPath.clear();
    endResetModel();
    emit rowsReordered();
}

bool FileTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (index.isValid() && index.column() == Include && role == Qt::CheckStateRole)
        return setValue(value.toInt() == Qt::Checked, QStringLiteral("include"), index.row());
    return false;
}

QVariant FileTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles = {"",       "Name", "Location", "Created", "Modified", "Size",  "New name",
                                       "Camera", "Lens", "Dimensions", "Artist", "Album",   "Title", "Duration",
                                       ""};
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < titles.size())
        return section == Creation && m_showsDatesTaken ? QStringLiteral("Date taken") : titles[section];
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags FileTableModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    if (index.isValid() && index.column() == Include)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

Qt::DropActions FileTableModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

QStringList FileTableModel::mimeTypes() const
{
    return {DraggedTableRows, QStringLiteral("text/uri-list")};
}

QMimeData *FileTableModel::mimeDataForRows(const QList<int> &rows)
{
    plist_t array = plist_new_array();
    for (int row : rows)
        plist_array_append_item(array, plist_new_uint(uint64_t(row)));
    char *xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(array, &xml, &length);
    auto *data = new QMimeData;
    data->setData(DraggedTableRows, QByteArray(xml, int(length)));
    plist_to_xml_free(xml);
    plist_free(array);
    return data;
}

std::optional<QList<int>> FileTableModel::draggedRows(const QMimeData *data)
{
    if (!data || !data->hasFormat(DraggedTableRows))
        return std::nullopt;
    const QByteArray xml = data->data(DraggedTableRows);
    plist_t array = nullptr;
    plist_from_xml(xml.constData(), uint32_t(xml.size()), &array);
    if (!array || plist_get_node_type(array) != PLIST_ARRAY) {
        if (array)
            plist_free(array);
        return std::nullopt;
    }
    QList<int> rows;
    for (uint32_t i = 0; i < plist_array_get_size(array); ++i) {
        plist_t item = plist_array_get_item(array, i);
        if (plist_get_node_type(item) == PLIST_UINT) {
            uint64_t value = 0;
            plist_get_uint_val(item, &value);
            rows.append(int(value));
        }
    }
    plist_free(array);
    return rows;
}

QMimeData *FileTableModel::mimeData(const QModelIndexList &indexes) const
{
    QList<int> rows;
    for (const QModelIndex &index : indexes)
        if (!rows.contains(index.row()))
            rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    return mimeDataForRows(rows);
}

FileTableModel::DropOperation FileTableModel::validateDrop(const QMimeData *, int, bool ontoRow, bool fromInside) const
{
    if (!fromInside)
        return DropOperation::Copy;
    return ontoRow ? DropOperation::None : DropOperation::Move;
}

bool FileTableModel::acceptDrop(const QMimeData *data, int row, bool fromInside)
{
    if (!fromInside) {
        if (filesDropped && data && data->hasUrls()) {
            QStringList paths;
            for (const QUrl &url : data->urls())
                if (url.isLocalFile())
                    paths.append(url.toLocalFile());
            filesDropped(paths, row);
        }
        return true;
    }
    const auto dragged = draggedRows(data);
    if (!dragged)
        return true;
    // Rows before the drop point that stay, the dragged rows in their list
    // order, then the rest that stay.
    std::vector<ItemRecord> reordered;
    reordered.reserve(m_rows->size());
    const int count = int(m_rows->size());
    const int dropRow = std::clamp(row, 0, count);
    for (int i = 0; i < dropRow; ++i)
        if (!dragged->contains(i))
            reordered.push_back((*m_rows)[size_t(i)]);
    for (int i : *dragged)
        if (i >= 0 && i < count)
            reordered.push_back((*m_rows)[size_t(i)]);
    for (int i = dropRow; i < count; ++i)
        if (!dragged->contains(i))
            reordered.push_back((*m_rows)[size_t(i)]);
    beginResetModel();
    m_rows = std::make_shared<std::vector<ItemRecord>>(std::move(reordered));
    m_newNames.clear(); // the order decides the counters: the preview is stale
    m_conflicts.clear();
    m_warnings.clear();
    m_composingWarnings.clear();
    m_rowOfPath.clear();
    endResetModel();
    emit rowsReordered();
    return true;
}

bool FileTableModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int row, int, const QModelIndex &parent) const
{
    const bool fromInside = data && data->hasFormat(DraggedTableRows);
    const bool ontoRow = row < 0 && parent.isValid();
    return validateDrop(data, row, ontoRow, fromInside) != DropOperation::None;
}

bool FileTableModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                  const QModelIndex &parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    const bool fromInside = data->hasFormat(DraggedTableRows);
    return acceptDrop(data, row < 0 ? int(m_rows->size()) : row, fromInside);
}

void FileTableModel::setShowsDatesTaken(bool taken)
{
    if (taken == m_showsDatesTaken)
        return;
    m_showsDatesTaken = taken;
    emit headerDataChanged(Qt::Horizontal, Creation, Creation);
}

bool FileTableModel::takeMetadata(const QHash<QString, std::shared_ptr<const Metadata::Values>> &byPath)
{
    bool took = false;
    for (size_t i = 0; i < m_rows->size(); ++i) {
        const ItemRecord &row = (*m_rows)[i];
        const auto found = byPath.constFind(row.path());
        // A row that holds more than what came (read again meanwhile) keeps it.
        if (found == byPath.constEnd() || (row.metadata && !row.metadata->answered.without((*found)->answered).isEmpty()))
            continue;
        changeableRows()[i].metadata = *found;
        took = true;
    }
    if (took && !m_rows->empty())
        emit dataChanged(index(0, firstMetadataColumn), index(int(m_rows->size()) - 1, lastMetadataColumn));
    return took;
}

void FileTableModel::markMetadataUnread()
{
    static const auto unread = std::make_shared<const Metadata::Values>();
    for (size_t i = 0; i < m_rows->size(); ++i)
        if (!(*m_rows)[i].metadata && (*m_rows)[i].size)
            changeableRows()[i].metadata = unread;
}

void FileTableModel::setThumbnails(ThumbnailLoader *thumbnails)
{
    m_thumbnails = thumbnails;
    connect(thumbnails, &ThumbnailLoader::ready, this, [this](const QString &path) {
        if (m_rowOfPath.isEmpty())
            for (size_t i = 0; i < m_rows->size(); ++i)
                m_rowOfPath.insert((*m_rows)[i].path(), int(i));
        const auto row = m_rowOfPath.constFind(path);
        if (row != m_rowOfPath.constEnd() && size_t(*row) < m_rows->size())
            emit dataChanged(index(*row, Thumbnail), index(*row, Thumbnail), {Qt::DecorationRole});
    });
}

QVariant FileTableModel::thumbnailOf(const ItemRecord &row) const
{
    if (m_thumbnails && row.size) {
        const QPixmap picture = m_thumbnails->pixmap(row.path(), row.modified);
        if (!picture.isNull())
            return picture;
    }
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return QVariant();
    // The file type's icon, as the desktop's theme draws it: while the
    // picture comes, or for a file that has none.
    const QMimeType type = row.size ? QMimeDatabase().mimeTypeForFile(row.name, QMimeDatabase::MatchExtension)
                                    : QMimeDatabase().mimeTypeForName(QStringLiteral("inode/directory"));
    auto icon = m_typeIcons.find(type.name());
    if (icon == m_typeIcons.end()) {
        QIcon themed = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
        if (themed.isNull())
            themed = QApplication::style()->standardIcon(row.size ? QStyle::SP_FileIcon : QStyle::SP_DirIcon);
        icon = m_typeIcons.insert(type.name(), themed);
    }
    const int side = m_thumbnails ? m_thumbnails->side() : 32;
    return icon->pixmap(side / 2, side / 2);
}

bool FileTableModel::holdsMostlyPictures(const std::vector<ItemRecord> &rows)
{
    const QMimeDatabase types;
    size_t files = 0;
    size_t pictures = 0;
    // A thousand rows spread over the table tell as well as all of them.
    const size_t step = std::max<size_t>(1, rows.size() / 1000);
    for (size_t i = 0; i < rows.size(); i += step) {
        const ItemRecord &row = rows[i];
        if (!row.size)
            continue;
        ++files;
        if (types.mimeTypeForFile(row.name, QMimeDatabase::MatchExtension).name().startsWith(QLatin1String("image/")))
            ++pictures;
    }
    return files > 0 && pictures * 2 >= files;
}
