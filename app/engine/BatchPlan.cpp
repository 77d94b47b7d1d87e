#include "BatchPlan.h"

#include "PathCodec.h"

#include <QHash>
#include <QRandomGenerator>
#include <QSet>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <map>
#include <set>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

using Batch::Move;
using Batch::Outcome;
using Batch::Status;

namespace {

QString errorText(int error)
{
    return QString::fromLocal8Bit(strerror(error));
}

// Whether names exist, for a plan: the names of a folder that many moves
// touch are read once (one pass over the folder instead of a file status
// call per name, each walking the whole path again). Only on file systems
// that compare names byte for byte; elsewhere each name is looked up.
class ExistingItems {
public:
    void readFoldersOf(const QHash<QString, int> &usesPerFolder)
    {
        for (auto use = usesPerFolder.cbegin(); use != usesPerFolder.cend(); ++use)
            if (use.value() >= 64)
                if (auto names = namesIn(use.key()))
                    m_names.insert(use.key(), std::move(*names));
    }

    bool contains(const QString &folder, const QString &name) const
    {
        const auto names = m_names.constFind(folder);
        if (names != m_names.cend())
            return names->contains(PathCodec::encode(name));
        struct stat info;
        return lstat(PathCodec::encode(folder + u'/' + name).constData(), &info) == 0;
    }

private:
    static bool comparesBytes(int folder)
    {
        struct statfs system;
        if (fstatfs(folder, &system) != 0)
            return false;
        switch (system.f_type) {
        case EXT4_SUPER_MAGIC: // also ext2 and ext3
        case XFS_SUPER_MAGIC:
        case BTRFS_SUPER_MAGIC:
        case TMPFS_MAGIC: {
            // ext4 and tmpfs can fold case in single folders.
            long flags = 0;
            return ioctl(folder, FS_IOC_GETFLAGS, &flags) != 0 || !(flags & 0x40000000 /* FS_CASEFOLD_FL */);
        }
        default:
            return false;
        }
    }

    static std::optional<QSet<QByteArray>> namesIn(const QString &folder)
    {
        const int descriptor = open(PathCodec::encode(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0)
            return std::nullopt;
        DIR *listing = comparesBytes(descriptor) ? fdopendir(descriptor) : nullptr;
        if (!listing) {
            close(descriptor);
            return std::nullopt;
        }
        QSet<QByteArray> names;
        errno = 0;
        while (const dirent *entry = readdir(listing))
            names.insert(QByteArray(entry->d_name));
        const bool whole = errno == 0;
        closedir(listing);
        return whole ? std::optional(std::move(names)) : std::nullopt;
    }

    QHash<QString, QSet<QByteArray>> m_names;
};

// Folders made absolute and free of links, each worked out once.
class FolderResolver {
public:
    FolderResolver()
    {
        char here[PATH_MAX];
        if (getcwd(here, sizeof here))
            m_current = PathCodec::decode(here);
    }

    // The resolved folder, or the errno value that stood in the way.
    std::variant<QString, int> resolve(const QString &folder)
    {
        const auto known = m_known.constFind(folder);
        if (known != m_known.cend())
            return *known;
        const QString absolute = folder.startsWith(u'/') ? folder : m_current + u'/' + folder;
        std::variant<QString, int> answer;
        if (char *real = realpath(PathCodec::encode(absolute).constData(), nullptr)) {
            answer = PathCodec::decode(real);
            free(real);
        } else {
            answer = errno;
        }
        m_known.insert(folder, answer);
        return answer;
    }

private:
    QString m_current;
    QHash<QString, std::variant<QString, int>> m_known;
};

QString invalidNameReason(const QString &name)
{
    if (name.isEmpty())
        return QStringLiteral("the new name is empty");
    if (name == QLatin1String(".") || name == QLatin1String(".."))
        return QStringLiteral("\"%1\" cannot be a name").arg(name);
    if (name.contains(u'/'))
        return QStringLiteral("the new name \"%1\" holds \"/\"").arg(name);
    if (name.contains(QChar(0)))
        return QStringLiteral("the new name holds a NUL character");
    if (PathCodec::encode(name).size() > NAME_MAX)
        return QStringLiteral("the new name is longer than 255 bytes");
    return {};
}

QString surprise(const QString &name, const QString &newName)
{
    if (newName.startsWith(u'.') && !name.startsWith(u'.'))
        return QStringLiteral("the new name starts with \".\": the item will be hidden");
    if (newName.startsWith(u' ') && !name.startsWith(u' '))
        return QStringLiteral("the new name starts with a space");
    if (newName.endsWith(u' ') && !name.endsWith(u' '))
        return QStringLiteral("the new name ends with a space");
    return {};
}

// A row that will be renamed, as the plan works it out.
struct Candidate {
    int row;
    QString folder; // resolved
    QString name;
    QString newName;
    FileIdentity identity;

    QString from() const { return folder + u'/' + name; }
    QString to() const { return folder + u'/' + newName; }
};

class Planner {
public:
    Planner(const std::vector<Move> &moves, BatchPlan &plan) : m_moves(moves), m_plan(plan) {}

    void run()
    {
        for (size_t row = 0; row < m_moves.size(); ++row)
            m_plan.outcomes.push_back(check(int(row)));
        refuseDuplicates();
        refuseTakenNames();
        for (Outcome &outcome : m_plan.outcomes)
            if (outcome.status != Status::Renamed)
                outcome.warning.clear();
        order();
    }

private:
    // One row on its own: the name, its folder, its file.
    Outcome check(int row)
    {
        const Move &move = m_moves[size_t(row)];
        Outcome outcome{move, Status::Renamed, {}, {}};
        auto refuse = [&](Status status, const QString &reason) {
            outcome.status = status;
            outcome.reason = reason;
            return outcome;
        };
        QString from = move.from;
        while (from.size() > 1 && from.endsWith(u'/'))
            from.chop(1);
        const qsizetype slash = from.lastIndexOf(u'/');
        const QString prefix = from.left(slash + 1);
        const QString name = from.mid(slash + 1);
        if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
            return refuse(Status::Failed, QStringLiteral("\"%1\" does not name an item").arg(move.from));
        if (!move.to.startsWith(prefix))
            return refuse(Status::Conflict, QStringLiteral("\"%1\" is not in the folder of \"%2\"").arg(move.to, move.from));
        const QString newName = move.to.mid(prefix.size());
        if (newName == name) {
            outcome.status = Status::Unchanged;
            return outcome;
        }
        if (const QString reason = invalidNameReason(newName); !reason.isEmpty())
            return refuse(Status::Conflict, reason);
        const QString rawFolder = slash < 0 ? QStringLiteral(".") : slash == 0 ? QStringLiteral("/") : from.left(slash);
        const auto folder = m_folders.resolve(rawFolder);
        if (const int *error = std::get_if<int>(&folder))
            return refuse(Status::Failed, *error == ENOENT ? QStringLiteral("no such folder \"%1\"").arg(rawFolder)
                                                           : QStringLiteral("the folder \"%1\" cannot be reached: %2")
                                                                 .arg(rawFolder, errorText(*error)));
        const QString resolved = std::get<QString>(folder) == QLatin1String("/") ? QString() : std::get<QString>(folder);
        const auto identity = move.identity ? move.identity : FileIdentity::at(PathCodec::encode(resolved + u'/' + name));
        if (!identity)
            return refuse(Status::Failed, errno == ENOENT ? QStringLiteral("\"%1\" is no longer there").arg(move.from)
                                                          : QStringLiteral("\"%1\": %2").arg(move.from, errorText(errno)));
        outcome.warning = surprise(name, newName);
        m_candidates.insert(row, {row, resolved, name, newName, *identity});
        return outcome;
    }

    void refuse(int row, const QString &reason)
    {
        m_plan.outcomes[size_t(row)].status = Status::Conflict;
        m_plan.outcomes[size_t(row)].reason = reason;
        m_candidates.remove(row);
    }

    // Two rows may not want one name, nor move one file (under one name or
    // two: hard links share an identity, and a journal tells items apart
    // by it).
    void refuseDuplicates()
    {
        QHash<QString, int> wanted;
        for (const Candidate &candidate : std::as_const(m_candidates))
            wanted[candidate.to()] += 1;
        QHash<QString, int> sources;
        QHash<FileIdentity, int> files;
        for (const int row : sortedRows()) {
            const Candidate &candidate = m_candidates[row];
            if (wanted.value(candidate.to()) > 1)
                refuse(row, QStringLiteral("another row takes the same new name \"%1\"").arg(candidate.newName));
            else if (sources.contains(candidate.from()))
                refuse(row, QStringLiteral("an earlier row moves the same file"));
            else if (const auto other = files.constFind(candidate.identity); other != files.cend())
                refuse(row, QStringLiteral("\"%1\" is another name of the file \"%2\", which an earlier row moves")
                                .arg(candidate.name, m_candidates[*other].name));
            else {
                sources.insert(candidate.from(), row);
                files.insert(candidate.identity, row);
            }
        }
    }

    // A name already on disk is free only if the item there moves away; a
    // row that cannot move keeps its name taken, so this is repeated until
    // nothing changes.
    void refuseTakenNames()
    {
        QHash<QString, int> usesPerFolder;
        for (const Candidate &candidate : std::as_const(m_candidates))
            usesPerFolder[candidate.folder] += 2;
        m_existing.readFoldersOf(usesPerFolder);
        for (bool changed = true; changed;) {
            changed = false;
            QSet<QString> leaving;
            for (const Candidate &candidate : std::as_const(m_candidates))
                leaving.insert(candidate.from());
            for (const int row : sortedRows()) {
                const Candidate &candidate = m_candidates[row];
                if (leaving.contains(candidate.to()) || !m_existing.contains(candidate.folder, candidate.newName))
                    continue;
                // The same file under another case, on a file system that ignores case.
                if (FileIdentity::at(PathCodec::encode(candidate.to())) == candidate.identity)
                    continue;
                refuse(row, QStringLiteral("a file named \"%1\" is already there").arg(candidate.newName));
                changed = true;
            }
        }
    }

    std::vector<int> sortedRows() const
    {
        std::vector<int> rows(m_candidates.keyBegin(), m_candidates.keyEnd());
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    QString temporaryName(const QString &folder)
    {
        if (m_token.isEmpty())
            m_token = QString::number(QRandomGenerator::global()->generate64() & 0xffffffffffffULL, 16);
        for (;;) {
            const QString name = QStringLiteral(".nomen-moving-%1-%2").arg(m_token).arg(++m_temporaries);
            struct stat info;
            if (lstat(PathCodec::encode(folder + u'/' + name).constData(), &info) != 0)
                return name;
        }
    }

    // Deepest first, so the items in a folder move before the folder does;
    // within one depth a move waits for the item on its new name to leave,
    // and in a cycle one item steps aside to a temporary name.
    void order()
    {
        BatchJournal &journal = m_plan.journal;
        QHash<QString, int> folderIndex;
        std::map<int, std::vector<int>, std::greater<int>> byDepth;
        for (const int row : sortedRows()) {
            const Candidate &candidate = m_candidates[row];
            auto index = folderIndex.constFind(candidate.folder);
            if (index == folderIndex.cend()) {
                index = folderIndex.insert(candidate.folder, int(journal.folders.size()));
                journal.folders.append(candidate.folder.isEmpty() ? QStringLiteral("/") : candidate.folder);
            }
            byDepth[int(candidate.from().count(u'/'))].push_back(int(journal.items.size()));
            journal.items.push_back({row, *index, {candidate.name, candidate.newName}, candidate.identity, std::nullopt});
        }
        for (const auto &[depth, items] : byDepth)
            orderLevel(items);
    }

    void orderLevel(const std::vector<int> &items)
    {
        BatchJournal &journal = m_plan.journal;
        auto path = [&](int item, int position) { return journal.pathOf(journal.items[size_t(item)], position); };
        std::set<int> pending(items.cbegin(), items.cend());
        QHash<QString, int> bySource; // where each waiting item is now
        QHash<QString, int> byTarget;
        for (const int item : items) {
            bySource.insert(path(item, 0), item);
            byTarget.insert(path(item, 1), item);
        }
        std::vector<int> ready;
        for (const int item : items)
            if (!bySource.contains(path(item, 1)))
                ready.push_back(item);
        // The item waiting for a name, once that name is free.
        auto wakeWaiterFor = [&](const QString &freed) {
            const auto waiter = byTarget.constFind(freed);
            if (waiter != byTarget.cend() && pending.count(*waiter))
                ready.push_back(*waiter);
        };
        while (!pending.empty()) {
            if (ready.empty()) {
                const int item = *pending.begin();
                BatchJournal::Item &entry = journal.items[size_t(item)];
                const QString from = path(item, 0);
                entry.names.insert(1, temporaryName(journal.folders[entry.folder]));
                journal.steps.push_back({item, 1});
                bySource.remove(from);
                bySource.insert(path(item, 1), item);
                wakeWaiterFor(from);
                continue;
            }
            const int item = ready.back();
            ready.pop_back();
            if (!pending.erase(item))
                continue;
            const BatchJournal::Item &entry = journal.items[size_t(item)];
            journal.steps.push_back({item, entry.last()});
            bySource.remove(path(item, entry.last() - 1));
            wakeWaiterFor(path(item, 0));
        }
    }

    const std::vector<Move> &m_moves;
    BatchPlan &m_plan;
    FolderResolver m_folders;
    ExistingItems m_existing;
    QHash<int, Candidate> m_candidates; // by row
    QString m_token;
    int m_temporaries = 0;
};

} // namespace

BatchPlan BatchPlan::make(const std::vector<Move> &moves, BatchJournal::Kind kind)
{
    BatchPlan plan;
    plan.journal.kind = kind;
    Planner(moves, plan).run();
    return plan;
}
