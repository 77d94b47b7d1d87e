#include "FolderListing.h"

#include "FileStatus.h"
#include "HiddenItems.h"
#include "PathNames.h"
#include "StringAdditions.h"

#include <QSet>

namespace {

const QString Include = QStringLiteral("include");
const QString Original = QStringLiteral("original");
const QString Location = QStringLiteral("location");
const QString Creation = QStringLiteral("creation");
const QString Modification = QStringLiteral("modification");
const QString Size = QStringLiteral("size");
const QString New = QStringLiteral("new");

bool isBlankFilter(const QStringList &filter)
{
    return filter.size() == 1 && ROZ_NSStringAdditions::isBlankString(filter.first());
}

QString extensionOf(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QString(QLatin1String(""));
}

} // namespace

ListingRequest ListingRequest::fromArray(const QVariantList &e)
{
    ListingRequest request;
    request.paths = e.value(0).toStringList();
    request.typeCodes = e.value(1).toStringList();
    request.extensions = e.value(2).toStringList();
    request.longNames = e.value(3).toBool();
    request.descend = e.value(4).toBool();
    request.folderRows = e.value(5).toBool();
    request.listUnmatched = e.value(6).toBool();
    request.honourStop = e.value(7).toBool();
    request.root = e.value(8).toString();
    return request;
}

FolderListing::FolderListing(const Dates &dates, std::atomic<bool> &stopProgressBool)
    : m_dates(dates), m_stop(stopProgressBool), m_earliest(dates.date1904.toMSecsSinceEpoch()),
      m_epochGMT(dates.date1970GMT.toMSecsSinceEpoch()), m_latest(dates.date2040.toMSecsSinceEpoch())
{
}

QString FolderListing::fullPath(const QString &folder, const QString &name)
{
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

QStringList FolderListing::directoryContents(const QString &folder, bool withInvisibles)
{
    const QStringList names = FileStatus::entryNames(folder).value_or(QStringList());
    if (withInvisibles)
        return names;
    QStringList shown;
    const QSet<QString> hidden = HiddenItems::listedIn(folder);
    for (const QString &name : names)
        if (visible(scan(folder, name), hidden))
            shown.append(name);
    return shown;
}

QStringList FolderListing::listFolder(const QString &folder)
{
    QStringList paths;
    for (const QString &name : directoryContents(folder, false))
        paths.append(fullPath(folder, name));
    return paths;
}

QStringList FolderListing::containerAndItemName(const QString &path)
{
    const QString name = PathNames::lastComponent(path);
    return {name, ROZ_NSStringAdditions::desuffix(path, name)};
}

bool FolderListing::fileTypeCode(quint32 code, const QStringList &set)
{
    for (const QString &entry : set) {
        // The platform's conversion reads exactly four characters between the quotes.
        if (entry.size() != 4)
            continue;
        quint32 value = 0;
        bool latin = true;
        for (QChar c : entry) {
            latin = latin && c.unicode() <= 0xFF;
            value = (value << 8) | (c.unicode() & 0xFF);
        }
        if (latin && value == code)
            return true;
    }
    return false;
}

FolderListing::Scanned FolderListing::scan(const QString &folder, const QString &name)
{
    Scanned item;
    item.path = fullPath(folder, name);
    item.name = name;
    item.location = folder.endsWith(u'/') ? folder : folder + u'/';
    item.status = FileStatus::of(item.path, false);
    item.finder = FinderInfo::read(item.path, false);
    return item;
}

// The visibility rules, from what was already read. A link's invisible
// flag is its target's, as the single-item answer reads it.
bool FolderListing::visible(const Scanned &item, const QSet<QString> &hidden)
{
    if (item.name.startsWith(u'.') || HiddenItems::isSystemPath(item.path))
        return false;
    const auto finder = item.status && item.status->isSymbolicLink() ? FinderInfo::read(item.path, true) : item.finder;
    if (finder && (finder->flags & FinderInfo::InvisibleFlag))
        return false;
    return !hidden.contains(item.name);
}

std::vector<FolderListing::Scanned> FolderListing::scanFolder(const QString &folder) const
{
    std::vector<Scanned> items;
    const QSet<QString> hidden = HiddenItems::listedIn(folder);
    for (const QString &name : FileStatus::entryNames(folder).value_or(QStringList())) {
        Scanned item = scan(folder, name);
        if (visible(item, hidden))
            items.push_back(std::move(item));
    }
    return items;
}

FolderListing::Dated FolderListing::datesOf(const Scanned &item) const
{
    std::optional<QDateTime> created = item.status ? item.status->created : std::nullopt;
    if (exifDate) {
        const QVariant fromExif = exifDate(item.path);
        if (fromExif.typeId() == QMetaType::QDateTime)
            created = fromExif.toDateTime();
    }
    return {clamped(created), clamped(item.status ? std::optional(item.status->modified) : std::nullopt)};
}

QVariantMap FolderListing::fileInfo(const Scanned &item) const
{
    const Dated dates = datesOf(item);
    return {{QStringLiteral("the_extension"), extensionOf(item.name)},
            {QStringLiteral("type_code"), QVariant::fromValue(item.finder ? item.finder->type : 0u)},
            {Creation, dates.creation},
            {Modification, dates.modification},
            {QStringLiteral("file_size"), QVariant::fromValue(qulonglong(item.status ? item.status->size : 0))}};
}

QVariantMap FolderListing::folderInfo(const Scanned &item) const
{
    return {{Creation, item.status && item.status->created ? *item.status->created : m_dates.date1904},
            {Modification, item.status ? item.status->modified : m_dates.date1904}};
}

QVariantMap FolderListing::getFileInfo(const QString &path) const
{
    const QStringList split = containerAndItemName(path);
    return fileInfo(scan(split[1], split[0]));
}

QVariantMap FolderListing::getFolderInfo(const QString &path) const
{
    const QStringList split = containerAndItemName(path);
    return folderInfo(scan(split[1], split[0]));
}

QDateTime FolderListing::clamped(const std::optional<QDateTime> &date) const
{
    // One conversion of the date, not one per comparison: each asks the C
    // library for the local time's offset.
    if (!date || !date->isValid())
        return m_dates.date1904;
    const qint64 instant = date->toMSecsSinceEpoch();
    if (instant < m_earliest)
        return m_dates.date1904;
    if (instant == m_epochGMT)
        return m_dates.date1970;
    if (instant > m_latest)
        return m_dates.date2040;
    return *date;
}

std::optional<QVariantList> FolderListing::parseItems(const ListingRequest &request)
{
    std::vector<Scanned> items;
    for (const QString &path : request.paths) {
        const QStringList split = containerAndItemName(path);
        Scanned item = scan(split[1], split[0]);
        item.path = path; // as given, so the root is recognised as the root
        items.push_back(std::move(item));
    }
    bool stopped = false;
    QVariantList records = listing(request, items, request.descend, stopped);
    if (stopped)
        return std::nullopt;
    return records;
}

QVariantList FolderListing::listing(const ListingRequest &request, const std::vector<Scanned> &items, bool descend,
                                    bool &stopped)
{
    const bool typeBlank = isBlankFilter(request.typeCodes);
    const bool extensionBlank = isBlankFilter(request.extensions);
    const bool noFilters = (typeBlank && extensionBlank) || (request.typeCodes.isEmpty() && request.extensions.isEmpty());
    const QSet<QString> extensions(request.extensions.cbegin(), request.extensions.cend());

    QVariantList records;
    for (const Scanned &item : items) {
        if (keepResponsive)
            keepResponsive();
        if (request.honourStop && !m_stop.load()) {
            m_stop.store(true);
            stopped = true;
            return {};
        }
        const QString &path = item.path;
        if (item.status && item.status->isDirectory()) {
            const QVariantMap info = folderInfo(item);
            if (request.folderRows && path != request.root)
                records.append(QVariantMap{{Include, true}, {Original, item.name}, {Location, item.location},
                                           {Creation, info.value(Creation)}, {Modification, info.value(Modification)},
                                           {Size, QStringLiteral("-")}, {New, QString(QLatin1String(""))}});
            if (descend || path == request.root) {
                bool nestedStop = false;
                const QVariantList nested = listing(request, scanFolder(path), descend, nestedStop);
                if (nestedStop)
                    records.append(false);
                else
                    records += nested;
            }
            continue;
        }
        bool include = false;
        bool listed = true;
        if (request.longNames) {
            if (item.name.size() >= 32 && request.folderRows)
                include = true;
            else
                listed = request.listUnmatched && !request.folderRows;
        } else {
            include = (noFilters && !request.folderRows)
                      || (!typeBlank && fileTypeCode(item.finder ? item.finder->type : 0u, request.typeCodes))
                      || (!extensionBlank && extensions.contains(extensionOf(item.name)));
            if (!include)
                listed = request.listUnmatched && !request.folderRows;
        }
        if (!listed)
            continue;
        // The record straight from what was read, as getFileInfo: tells it.
        const Dated dates = datesOf(item);
        records.append(QVariantMap{{Include, include}, {Original, item.name}, {Location, item.location},
                                   {Creation, dates.creation}, {Modification, dates.modification},
                                   {Size, QVariant::fromValue(qulonglong(item.status ? item.status->size : 0))},
                                   {New, QString(QLatin1String(""))}});
    }
    return records;
}
