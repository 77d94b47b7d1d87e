#pragma once

#include "ClampedDates.h"
#include "ItemRecord.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>
#include <QVariantList>
#include <functional>
#include <memory>
#include <vector>

class ThumbnailLoader;

// The file table's rows: one item record per row, one column per record key.
// Rows can be dragged within the table to a new order ("DraggedTableRows",
// the dragged row numbers as a property list); files dropped from outside
// (text/uri-list) are accepted and handed on.
class FileTableModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    // The columns of what files say (Camera to Duration) and the pictures'
    // thumbnails are shown on request; their values are read aside.
    enum Column {
        Include, Original, Location, Creation, Modification, Size, New,
        Camera, Lens, Dimensions, Artist, Album, Title, Duration,
        Thumbnail,
        ColumnCount
    };
    static const QStringList &columnIdentifiers();
    static constexpr Column firstMetadataColumn = Camera;
    static constexpr Column lastMetadataColumn = Duration;
    // What a column of what files say shows, as a read asks for it.
    static Metadata::Request metadataOf(int column);
    static inline const QString DraggedTableRows = QStringLiteral("DraggedTableRows");

    explicit FileTableModel(QObject *parent = nullptr);

    const std::vector<ItemRecord> &rows() const { return *m_rows; }
    // The rows as they stand, for work aside: held without a copy; the
    // table copies them only if it changes while they are held.
    std::shared_ptr<const std::vector<ItemRecord>> snapshot() const { return m_rows; }
    void setRows(std::vector<ItemRecord> rows);
    QVariant valueForColumn(const QString &identifier, int row) const;
    bool setValue(const QVariant &value, const QString &identifier, int row);

    // Drag and drop, as the table asks for them.
    enum class DropOperation { None, Copy, Move };
    static QMimeData *mimeDataForRows(const QList<int> &rows);
    static std::optional<QList<int>> draggedRows(const QMimeData *data);
    DropOperation validateDrop(const QMimeData *data, int row, bool ontoRow, bool fromInside) const;
    bool acceptDrop(const QMimeData *data, int row, bool fromInside);

    // Files dropped from outside the table, for the main script.
    std::function<void(const QStringList &paths, int row)> filesDropped;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column, const QModelIndex &parent) override;

    // New names for every row at once, from a preview of the whole table,
    // and which rows' files recorded no value for a token ("no lens
    // recorded"; none at all when no row has one).
    void setNewNames(const QStringList &names, const QStringList &warnings = {});
    const QStringList &composingWarnings() const { return m_composingWarnings; }
    bool hasPreviewedNames() const { return !m_newNames.isEmpty(); }
    const QStringList &previewedNames() const { return m_newNames; }

    // Why each row's new name cannot be given (empty for a row that can);
    // shown in the new-name column before anything is renamed.
    void setConflicts(const QStringList &reasons);
    QString conflictAt(int row) const { return m_conflicts.value(row); }
    // Names that will be given but may surprise (hidden, a space at an end).
    void setWarnings(const QStringList &warnings);
    QString warningAt(int row) const { return m_warnings.value(row); }

    // Rows in order of a column: names and locations in natural order
    // within their folders, dates and sizes by value. The order is the one
    // counters follow.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    // Runs a long piece of a sort (working out the order) while the window
    // stays live; without it the work is done at once.
    std::function<void(const std::function<void()> &work)> runAside;

    const ClampedDates &dates() const { return m_dates; }

    // What files say, read aside, for the rows of those paths that hold
    // less; whether any row took them.
    bool takeMetadata(const QHash<QString, std::shared_ptr<const Metadata::Values>> &byPath);
    // Rows that hold nothing of what files say are marked as being read,
    // so none is told missing meanwhile.
    void markMetadataUnread();

    // Where the thumbnail column's pictures come from; without one it shows
    // each file type's icon.
    void setThumbnails(ThumbnailLoader *thumbnails);
    // Whether most of the rows' files are pictures (by their names).
    static bool holdsMostlyPictures(const std::vector<ItemRecord> &rows);

    // Whether the creation column shows dates taken (and is titled so).
    void setShowsDatesTaken(bool taken);

signals:
    // The rows changed order (a sort or a drag): new names are stale.
    void rowsReordered();

private:
    void setNewNameColumnTexts(QStringList &texts, const QStringList &given);
    bool m_showsDatesTaken = false;
    std::vector<ItemRecord> &changeableRows();

    ClampedDates m_dates;
    std::shared_ptr<std::vector<ItemRecord>> m_rows = std::make_shared<std::vector<ItemRecord>>();
    QStringList m_newNames; // a preview's names, shown until rows change
    QStringList m_conflicts;
    QStringList m_warnings;
    QStringList m_composingWarnings; // a preview's, one per row or none
    ThumbnailLoader *m_thumbnails = nullptr;
    mutable QHash<QString, int> m_rowOfPath; // made when a picture comes, dropped when rows change
    mutable QHash<QString, QIcon> m_typeIcons;
    QVariant thumbnailOf(const ItemRecord &row) const;
};
