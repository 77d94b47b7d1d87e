#pragma once

#include "ClampedDates.h"
#include "MetadataValues.h"
#include "FileStatus.h"
#include "ItemRecord.h"
#include "SeenFolder.h"

#include <QSet>
#include <QStringList>
#include <atomic>
#include <functional>
#include <optional>
#include <vector>

// What a listing is asked.
struct ListingRequest {
    QStringList paths;
    QStringList typeCodes;
    QStringList extensions;
    bool longNames = false;
    bool descend = false;
    bool folderRows = false;
    bool listUnmatched = false;
    bool honourStop = false;
    QString root;
    bool keepsNames = false; // each folder's names, for a plan made at once (Listing::seen)
};

// What a listing found: the rows in the order found, each folder's entries
// as the file system gives them, depth first.
struct Listing {
    std::vector<ItemRecord> items;
    bool stopped = false;              // a stop at the top level: nothing to show
    std::vector<size_t> stoppedInside; // where a subfolder's listing was stopped, as positions in items
    SeenFolders seen;                  // asked for by keepsNames: the large folders' names
};

// Turns folders and files into the rows of the file table, dates clamped to
// 1904..2040, attributes read without following symbolic links: each item
// is read once (one statx relative to its folder, one extended attribute).
class FolderListing {
public:
    FolderListing(const ClampedDates &dates, std::atomic<bool> &stopProgressBool);

    // What each file row is asked of what it says of itself: its date
    // taken (then its creation date, when it has one), and the values a
    // rule's tokens or the window's columns show. Nothing asked, no file is
    // opened; else each is read once, on several threads, by `readMetadata`.
    Metadata::Request metadata;
    std::function<Metadata::Values(const QByteArray &path, const Metadata::Request &request)> readMetadata;
    // Called now and then during a long listing, so a window can stay live
    // (and its Stop button be pressed).
    std::function<void()> keepResponsive;

    Listing list(const ListingRequest &request);

    static QStringList listFolder(const QString &folder);
    static QStringList directoryContents(const QString &folder, bool withInvisibles);
    // One item read on its own, as a file or as a folder is listed.
    struct ItemInfo {
        QString extension;
        quint32 typeCode = 0;
        qint64 created = 0;
        std::optional<qint32> createdOffset; // a date taken, shown at this offset
        qint64 modified = 0;
        quint64 size = 0;
    };
    ItemInfo fileInfo(const QString &path) const;
    ItemInfo folderInfo(const QString &path) const;
    static QStringList containerAndItemName(const QString &path);
    static bool fileTypeCode(quint32 code, const QStringList &set);
    static QString fullPath(const QString &folder, const QString &name);

private:
    // One item as the listing reads it.
    struct Scanned {
        QString name;
        QString location; // ends with "/"
        bool exists = false;
        bool isFolder = false;
        bool isLink = false;
        FileIdentity identity;
        quint64 size = 0;
        std::optional<qint64> created;
        std::optional<qint64> modified;
        std::optional<FinderInfo::Info> finder;
    };
    // What the request's filters make of a listing.
    struct Filters {
        bool typeBlank, extensionBlank, none;
        QSet<QString> extensions;
        QString root;
    };
    struct Status;
    static Status statusAt(int at, const char *relative, const QByteArray &path);
    static Scanned scan(int at, const char *relative, const QByteArray &path, const QString &location, QString name);
    static Scanned scanned(const Status &found, const QString &location, QString name);
    static Scanned scanPath(const QString &path);
    static bool visible(const Scanned &item, const QByteArray &path, const QSet<QString> &hidden);
    // Calls `each` with every visible item of a folder, until it answers
    // false. The folder's names are read first: `reading` is told how many
    // so far, every few thousand, and then how many in all (`all`, an upper
    // bound of the items), so a table can make room for them at once.
    // `seen`, when given, gets the folder's names (of a folder of many).
    using Reading = std::function<void(size_t names, bool all)>;
    static void forEachVisible(const QString &location, const std::function<bool(Scanned &)> &each,
                               const Reading &reading = {}, SeenFolder *seen = nullptr);
    ItemRecord fileRecord(const Scanned &item, bool include) const;
    ItemRecord folderRecord(const Scanned &item) const;
    bool shouldStop(const ListingRequest &request);
    void takeMetadata(const ListingRequest &request, Listing &listing);
    void useMetadata(ItemRecord &record, Metadata::Values values) const;
    void addItem(const ListingRequest &request, const Filters &filters, const Scanned &item, bool descend, Listing &listing);
    void addFolder(const ListingRequest &request, const Filters &filters, const QString &location, bool descend,
                   Listing &listing, bool &stopped);

    const ClampedDates &m_dates;
    std::atomic<bool> &m_stop;
};
