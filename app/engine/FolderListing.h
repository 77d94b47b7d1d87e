#pragma once

#include "FileStatus.h"

#include <QDateTime>
#include <QSet>
#include <QStringList>
#include <QVariantList>
#include <atomic>
#include <functional>
#include <optional>
#include <vector>

// The nine entries of a listing request.
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

    static ListingRequest fromArray(const QVariantList &entries);
};

// Turns folders and files into the rows of the file table: one item record
// ("include", "original", "location", "creation", "modification", "size",
// "new") per row, dates clamped to 1904..2040, attributes read without
// following symbolic links.
class FolderListing {
public:
    struct Dates {
        QDateTime date1904, date1970, date1970GMT, date2040;
    };
    FolderListing(const Dates &dates, std::atomic<bool> &stopProgressBool);

    // Set when creation dates come from EXIF: answers a date, or anything
    // else for none.
    std::function<QVariant(const QString &path)> exifDate;
    // Called now and then during a long listing, so a window can stay live
    // (and its Stop button be pressed).
    std::function<void()> keepResponsive;

    // The records, or nullopt when a stop request ended the listing at the
    // top level. A stop met inside a subfolder leaves NO among the parent's
    // records in place of that folder's, as it always has.
    std::optional<QVariantList> parseItems(const ListingRequest &request);

    static QStringList listFolder(const QString &folder);
    static QStringList directoryContents(const QString &folder, bool withInvisibles);
    QVariantMap getFileInfo(const QString &path) const;
    QVariantMap getFolderInfo(const QString &path) const;
    static QStringList containerAndItemName(const QString &path);
    static bool fileTypeCode(quint32 code, const QStringList &set);
    static QString fullPath(const QString &folder, const QString &name);

private:
    // One item as the listing reads it: a status and the Finder
    // information, each read once.
    struct Scanned {
        QString path;
        QString name;
        QString location;
        std::optional<ItemStatus> status;
        std::optional<FinderInfo::Info> finder;
    };
    static Scanned scan(const QString &folder, const QString &name);
    static bool visible(const Scanned &item, const QSet<QString> &hidden);
    std::vector<Scanned> scanFolder(const QString &folder) const;
    QVariantMap fileInfo(const Scanned &item) const;
    QVariantMap folderInfo(const Scanned &item) const;
    QDateTime clamped(const std::optional<QDateTime> &date) const;
    struct Dated {
        QDateTime creation, modification;
    };
    Dated datesOf(const Scanned &item) const;
    QVariantList listing(const ListingRequest &request, const std::vector<Scanned> &items, bool descend, bool &stopped);

    Dates m_dates;
    std::atomic<bool> &m_stop;
    qint64 m_earliest, m_epochGMT, m_latest; // the dates above, as instants
};
