#include "FolderListing.h"

#include "HiddenItems.h"
#include "MetadataReads.h"
#include "OpenFiles.h"
#include "PathCodec.h"
#include "PathNames.h"
#include "StringAdditions.h"

#include <QSet>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <algorithm>
#include <atomic>
#include <thread>
#include <unistd.h>

namespace {

bool isBlankFilter(const QStringList &filter)
{
    return filter.size() == 1 && StringAdditions::isBlankString(filter.first());
}

QString extensionOf(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QString(QLatin1String(""));
}

qint64 milliseconds(const statx_timestamp &time)
{
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

} // namespace

FolderListing::FolderListing(const ClampedDates &dates, std::atomic<bool> &stopProgressBool)
    : m_dates(dates), m_stop(stopProgressBool)
{
}

QString FolderListing::fullPath(const QString &folder, const QString &name)
{
    return PathNames::joined(folder, name);
}

QStringList FolderListing::directoryContents(const QString &folder, bool withInvisibles)
{
    if (withInvisibles)
        return FileStatus::entryNames(folder).value_or(QStringList());
    QStringList names;
    forEachVisible(fullPath(folder, QString()), [&names](Scanned &item) {
        names.append(item.name);
        return true;
    });
    return names;
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
    return {name, StringAdditions::desuffix(path, name)};
}

bool FolderListing::fileTypeCode(quint32 code, const QStringList &set)
{
    for (const QString &entry : set) {
        // Exactly four characters make a code.
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

// What the file system says of one item: plain values, so any thread may
// read them without allocating.
struct FolderListing::Status {
    bool exists = false;
    struct statx status;
    std::optional<FinderInfo::Info> finder;
};

FolderListing::Status FolderListing::statusAt(int at, const char *relative, const QByteArray &path)
{
    Status found;
    const unsigned int wanted = STATX_TYPE | STATX_MODE | STATX_INO | STATX_SIZE | STATX_MTIME | STATX_BTIME;
    found.exists = statx(at, relative, AT_SYMLINK_NOFOLLOW, wanted, &found.status) == 0;
    found.finder = FinderInfo::readAt(at, relative, path);
    return found;
}

// Reads one item: `relative` is its name in the folder `at` (or its whole
// path, with AT_FDCWD); `path` is its whole path in any case.
FolderListing::Scanned FolderListing::scan(int at, const char *relative, const QByteArray &path, const QString &location,
                                           QString name)
{
    return scanned(statusAt(at, relative, path), location, std::move(name));
}

FolderListing::Scanned FolderListing::scanned(const Status &found, const QString &location, QString name)
{
    Scanned item;
    item.location = location;
    item.name = std::move(name);
    item.finder = found.finder;
    if (!found.exists)
        return item;
    const struct statx &status = found.status;
    item.exists = true;
    item.isFolder = S_ISDIR(status.stx_mode);
    item.isLink = S_ISLNK(status.stx_mode);
    item.identity = FileIdentity::of(status);
    item.size = status.stx_size;
    item.modified = milliseconds(status.stx_mtime);
    if (status.stx_mask & STATX_BTIME)
        item.created = milliseconds(status.stx_btime);
    return item;
}

FolderListing::Scanned FolderListing::scanPath(const QString &path)
{
    const QString whole = PathNames::absolute(path);
    const qsizetype slash = whole.lastIndexOf(u'/');
    const QByteArray bytes = PathCodec::encode(whole);
    return scan(AT_FDCWD, bytes.constData(), bytes, whole.left(slash + 1), whole.mid(slash + 1));
}

// The visibility rules, from what was already read. A link's invisible
// flag is its target's.
bool FolderListing::visible(const Scanned &item, const QByteArray &path, const QSet<QString> &hidden)
{
    if (item.name.startsWith(u'.') || (item.location == QLatin1String("/") && HiddenItems::isSystemPath(u'/' + item.name)))
        return false;
    const auto finder = item.isLink ? FinderInfo::read(path, true) : item.finder;
    if (finder && (finder->flags & FinderInfo::InvisibleFlag))
        return false;
    return !hidden.contains(item.name);
}

// A folder's visible items in the order the file system gives them, read
// through one descriptor for the folder. The names are read first, all of
// them, into one buffer; then items are taken in blocks, each read by this
// thread and a helper (two system calls an item are most of a listing's
// time, and making the item's record is most of the rest), then handed on
// in order here.
void FolderListing::forEachVisible(const QString &location, const std::function<bool(Scanned &)> &each,
                                   const Reading &reading, SeenFolder *seen)
{
    const QString folder = PathNames::withoutTrailingSlashes(location);
    const QByteArray folderBytes = PathCodec::encode(folder);
    FolderEntries entries(FileDescriptor(open(folderBytes.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    if (!entries.isOpen())
        return;
    const int descriptor = entries.descriptor();
    const QSet<QString> hidden = HiddenItems::listedIn(folder);
    const QString shared = fullPath(folder, QString()); // one location for every row of the folder
    const QByteArray base = folderBytes == "/" ? folderBytes : folderBytes + '/';
    QByteArray allNames; // each name followed by its NUL
    std::vector<quint32> starts;
    while (const dirent *entry = entries.next()) {
        starts.push_back(quint32(allNames.size()));
        allNames.append(entry->d_name, qsizetype(std::strlen(entry->d_name)) + 1);
        if (reading && starts.size() % 4096 == 0)
            reading(starts.size(), false);
    }
    if (reading)
        reading(starts.size(), true);
    if (seen && starts.size() >= SeenFolder::fewest) {
        if (const auto folder = FileIdentity::ofOpen(descriptor)) {
            seen->folder = *folder;
            seen->nameHashes.reserve(starts.size());
            for (const quint32 start : starts)
                seen->nameHashes.push_back(SeenFolder::hashOf(QByteArrayView(allNames.constData() + start)));
            std::sort(seen->nameHashes.begin(), seen->nameHashes.end());
        }
    }
    constexpr size_t block = 1024;
    std::vector<Scanned> items(block);
    std::vector<char> shown(block);
    const auto readRange = [&](size_t first, size_t from, size_t to) {
        QByteArray path = base; // one buffer for every path of the range
        for (size_t i = from; i < to; ++i) {
            const char *name = allNames.constData() + starts[first + i];
            const QByteArray bytes = QByteArray::fromRawData(name, qsizetype(std::strlen(name)));
            path.truncate(base.size());
            path += bytes;
            items[i] = scanned(statusAt(descriptor, name, path), shared, PathCodec::decode(bytes));
            shown[i] = visible(items[i], path, hidden);
        }
    };
    for (size_t first = 0; first < starts.size(); first += block) {
        const size_t count = std::min(block, starts.size() - first);
        if (count >= 64) {
            std::thread helper(readRange, first, count / 2, count);
            readRange(first, 0, count / 2);
            helper.join();
        } else {
            readRange(first, 0, count);
        }
        for (size_t i = 0; i < count; ++i)
            if (shown[i] && !each(items[i]))
                return;
    }
}

ItemRecord FolderListing::fileRecord(const Scanned &item, bool include) const
{
    ItemRecord record;
    record.name = item.name;
    record.location = item.location;
    record.created = m_dates.clamp(item.created);
    record.modified = m_dates.clamp(item.modified);
    record.size = item.size;
    record.typeCode = item.finder ? item.finder->type : 0;
    record.creatorCode = item.finder ? item.finder->creator : 0;
    record.include = include;
    record.identity = item.identity;
    return record;
}

// A folder's dates are not clamped; a missing one is 1 January 1904.
ItemRecord FolderListing::folderRecord(const Scanned &item) const
{
    ItemRecord record;
    record.name = item.name;
    record.location = item.location;
    record.created = item.created.value_or(m_dates.date1904.toMSecsSinceEpoch());
    record.modified = item.modified.value_or(m_dates.date1904.toMSecsSinceEpoch());
    record.identity = item.identity;
    return record;
}

void FolderListing::useMetadata(ItemRecord &record, Metadata::Values values) const
{
    if (values.taken) {
        // Outside the dates an item may have, the date is clamped as any
        // is, and then it is no longer the camera's clock.
        record.created = m_dates.clamp(values.taken->milliseconds);
        record.createdOffset = record.created == values.taken->milliseconds ? values.taken->offset : ItemRecord::NoOffset;
    }
    if (!values.answered.fields.isEmpty() || !values.answered.tags.isEmpty())
        record.metadata = std::make_shared<const Metadata::Values>(std::move(values));
}

// What files say is read after the listing, for the files only.
void FolderListing::takeMetadata(const ListingRequest &request, Listing &listing)
{
    std::vector<size_t> files;
    for (size_t i = 0; i < listing.items.size(); ++i)
        if (listing.items[i].size)
            files.push_back(i);
    if (files.empty())
        return;
    std::vector<QByteArray> paths(files.size());
    for (size_t i = 0; i < files.size(); ++i)
        paths[i] = PathCodec::encode(listing.items[files[i]].path());
    auto found = MetadataReads::readEach(paths, metadata, readMetadata, [&] { return !shouldStop(request); });
    if (!found) {
        listing = Listing{{}, true, {}, {}};
        return;
    }
    for (size_t i = 0; i < files.size(); ++i)
        useMetadata(listing.items[files[i]], std::move((*found)[i]));
}

FolderListing::ItemInfo FolderListing::fileInfo(const QString &path) const
{
    const Scanned item = scanPath(path);
    ItemRecord record = fileRecord(item, true);
    if (readMetadata && !metadata.isEmpty() && item.exists && !item.isFolder)
        useMetadata(record, readMetadata(PathCodec::encode(path), metadata));
    return {extensionOf(item.name), record.typeCode, record.created, record.takenOffset(), record.modified,
            record.size.value_or(0)};
}

FolderListing::ItemInfo FolderListing::folderInfo(const QString &path) const
{
    const ItemRecord record = folderRecord(scanPath(path));
    return {QString(), 0, record.created, std::nullopt, record.modified, 0};
}

Listing FolderListing::list(const ListingRequest &request)
{
    const Filters filters{isBlankFilter(request.typeCodes), isBlankFilter(request.extensions),
                          (isBlankFilter(request.typeCodes) && isBlankFilter(request.extensions))
                              || (request.typeCodes.isEmpty() && request.extensions.isEmpty()),
                          QSet<QString>(request.extensions.cbegin(), request.extensions.cend()),
                          PathNames::withoutTrailingSlashes(request.root)};
    Listing listing;
    bool stopped = false;
    for (const QString &path : request.paths) {
        if (shouldStop(request)) {
            stopped = true;
            break;
        }
        addItem(request, filters, scanPath(path), request.descend, listing);
    }
    // The rows stay for as long as the table does: room the vector kept to
    // grow is given back (a quarter of it, over a large folder).
    if (listing.items.capacity() - listing.items.size() > listing.items.size() / 8)
        listing.items.shrink_to_fit();
    if (stopped)
        listing = Listing{{}, true, {}, {}};
    else if (readMetadata && !metadata.isEmpty())
        takeMetadata(request, listing);
    return listing;
}

bool FolderListing::shouldStop(const ListingRequest &request)
{
    if (keepResponsive)
        keepResponsive();
    if (!request.honourStop || m_stop.load())
        return false;
    m_stop.store(true);
    return true;
}

void FolderListing::addFolder(const ListingRequest &request, const Filters &filters, const QString &location, bool descend,
                              Listing &listing, bool &stopped)
{
    const auto makeRoom = [&](size_t count, bool all) {
        if (!all) {
            if (keepResponsive)
                keepResponsive();
            return;
        }
        // Exactly the folder's room when it is the first; else growing by
        // half at least, so a tree of many small folders is not copied for
        // each.
        std::vector<ItemRecord> &items = listing.items;
        if (items.size() + count > items.capacity())
            items.reserve(std::max(items.size() + count, items.capacity() + items.capacity() / 2));
    };
    SeenFolder seen;
    forEachVisible(
        location,
        [&](Scanned &item) {
            if (shouldStop(request)) {
                stopped = true;
                return false;
            }
            addItem(request, filters, item, descend, listing);
            return true;
        },
        makeRoom, request.keepsNames ? &seen : nullptr);
    if (!seen.nameHashes.empty())
        listing.seen.push_back(std::move(seen));
}

void FolderListing::addItem(const ListingRequest &request, const Filters &filters, const Scanned &item, bool descend,
                            Listing &listing)
{
    if (item.isFolder) {
        const QString path = item.location + item.name;
        if (request.folderRows && path != filters.root)
            listing.items.push_back(folderRecord(item));
        if (descend || path == filters.root) {
            // A stop inside a subfolder drops that folder's rows and is
            // noted where they would have been; the parent goes on.
            const size_t mark = listing.items.size();
            bool nestedStop = false;
            addFolder(request, filters, fullPath(path, QString()), descend, listing, nestedStop);
            if (nestedStop) {
                listing.items.resize(mark);
                listing.stoppedInside.push_back(mark);
            }
        }
        return;
    }
    bool include = false;
    bool listed = true;
    if (request.longNames) {
        if (item.name.size() >= 32 && request.folderRows)
            include = true;
        else
            listed = request.listUnmatched && !request.folderRows;
    } else {
        include = (filters.none && !request.folderRows)
                  || (!filters.typeBlank && fileTypeCode(item.finder ? item.finder->type : 0u, request.typeCodes))
                  || (!filters.extensionBlank && filters.extensions.contains(extensionOf(item.name)));
        if (!include)
            listed = request.listUnmatched && !request.folderRows;
    }
    if (listed)
        listing.items.push_back(fileRecord(item, include));
}
