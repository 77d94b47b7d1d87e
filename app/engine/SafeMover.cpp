#include "SafeMover.h"

#include "FileMoves.h"
#include "PathCodec.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QSet>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <map>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

QString folderOf(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

QString nameOf(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

bool exists(const QString &path)
{
    struct stat info;
    return lstat(PathCodec::encode(path).constData(), &info) == 0;
}

// Whether items exist, for a plan: the names of a folder that many moves
// touch are read once (one pass over the folder instead of a file status
// call per name, each walking the whole path again). Only on file systems
// that compare names byte for byte; elsewhere each name is looked up.
class ExistingItems {
public:
    explicit ExistingItems(const std::vector<SafeMover::Move> &moves)
    {
        QHash<QString, int> uses;
        for (const SafeMover::Move &move : moves) {
            uses[folderOf(move.from)] += 1;
            uses[folderOf(move.to)] += 1;
        }
        for (auto use = uses.cbegin(); use != uses.cend(); ++use)
            if (use.value() >= 64)
                if (auto names = namesIn(use.key()))
                    m_names.insert(use.key(), std::move(*names));
    }

    bool contains(const QString &path) const
    {
        const auto names = m_names.constFind(folderOf(path));
        if (names == m_names.cend())
            return exists(path);
        return names->contains(PathCodec::encode(nameOf(path)));
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
        while (const dirent *entry = readdir(listing))
            names.insert(QByteArray(entry->d_name));
        closedir(listing);
        return names;
    }

    QHash<QString, QSet<QByteArray>> m_names;
};

bool sameItem(const QString &a, const QString &b)
{
    struct stat first, second;
    return lstat(PathCodec::encode(a).constData(), &first) == 0 && lstat(PathCodec::encode(b).constData(), &second) == 0
           && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

QString invalidReason(const QString &target)
{
    const QString name = nameOf(target);
    if (name.isEmpty())
        return QStringLiteral("the new name is empty");
    if (name == QLatin1String(".") || name == QLatin1String(".."))
        return QStringLiteral("\"%1\" cannot be a name").arg(name);
    if (name.contains(QChar(0)))
        return QStringLiteral("the new name holds a NUL character");
    if (PathCodec::encode(name).size() > 255)
        return QStringLiteral("the new name is longer than 255 bytes");
    return QString();
}

QByteArray encoded(const QString &path)
{
    return PathCodec::encode(path).toBase64();
}

QString decoded(const QByteArray &field)
{
    return PathCodec::decode(QByteArray::fromBase64(field));
}

// Appends lines to the journal; the plan is flushed to disk before the
// first move, each move recorded as it completes.
class JournalFile {
public:
    explicit JournalFile(const QString &path)
    {
        m_fd = open(PathCodec::encode(path).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }
    ~JournalFile()
    {
        if (m_fd >= 0)
            close(m_fd);
    }
    bool ok() const { return m_fd >= 0; }
    bool write(const QByteArray &line, bool flush)
    {
        const QByteArray text = line + '\n';
        if (::write(m_fd, text.constData(), size_t(text.size())) != ssize_t(text.size()))
            return false;
        return !flush || fdatasync(m_fd) == 0;
    }

private:
    int m_fd = -1;
};

// Which steps of a journal are done: one byte per step in a file beside it,
// mapped into memory. Marking a step is a store into a page the kernel
// holds, so it survives the process being killed, without a system call
// per move.
class DoneMarks {
public:
    static QString pathFor(const QString &journalPath) { return journalPath + QStringLiteral(".done"); }

    DoneMarks(const QString &journalPath, size_t count) : m_size(std::max<size_t>(count, 1))
    {
        const int fd = open(PathCodec::encode(pathFor(journalPath)).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (fd < 0)
            return;
        struct stat info;
        if (fstat(fd, &info) == 0 && (size_t(info.st_size) >= m_size || ftruncate(fd, off_t(m_size)) == 0)) {
            void *mapped = mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
            if (mapped != MAP_FAILED)
                m_marks = static_cast<char *>(mapped);
        }
        close(fd);
    }
    ~DoneMarks()
    {
        if (m_marks)
            munmap(m_marks, m_size);
    }
    bool ok() const { return m_marks != nullptr; }
    void mark(size_t step)
    {
        if (step < m_size)
            m_marks[step] = 1;
    }

    static void readInto(const QString &journalPath, std::vector<bool> &done)
    {
        QFile file(pathFor(journalPath));
        if (!file.open(QIODevice::ReadOnly))
            return;
        const QByteArray marks = file.readAll();
        for (size_t i = 0; i < done.size() && i < size_t(marks.size()); ++i)
            done[i] = done[i] || marks[qsizetype(i)] == 1;
    }

private:
    size_t m_size;
    char *m_marks = nullptr;
};

// A journal goes with its marks.
bool removeJournal(const QString &path)
{
    QFile::remove(DoneMarks::pathFor(path));
    return QFile::remove(path);
}

bool renameJournal(const QString &from, const QString &to)
{
    removeJournal(to);
    QFile::rename(DoneMarks::pathFor(from), DoneMarks::pathFor(to));
    return QFile::rename(from, to);
}

} // namespace

SafeMover::SafeMover(QString journalDirectory) : m_directory(std::move(journalDirectory))
{
    QDir().mkpath(m_directory);
}

QString SafeMover::currentJournal() const
{
    return m_directory + QStringLiteral("/batch.journal");
}

QString SafeMover::lastJournal() const
{
    return m_directory + QStringLiteral("/last.journal");
}

std::vector<SafeMover::Outcome> SafeMover::plan(const std::vector<Move> &moves)
{
    std::vector<Outcome> outcomes;
    const ExistingItems existing(moves);
    QHash<QString, int> targets;
    for (const Move &move : moves) {
        Outcome outcome{move, Status::Renamed, QString()};
        if (move.from == move.to)
            outcome.status = Status::Unchanged;
        else if (const QString reason = invalidReason(move.to); !reason.isEmpty())
            outcome = {move, Status::Conflict, reason};
        else if (!existing.contains(move.from))
            outcome = {move, Status::Failed, QStringLiteral("the file is no longer there")};
        if (outcome.status == Status::Renamed)
            targets[move.to] += 1;
        outcomes.push_back(outcome);
    }
    QSet<QString> sources;
    for (Outcome &outcome : outcomes) {
        if (outcome.status != Status::Renamed)
            continue;
        if (targets.value(outcome.move.to) > 1)
            outcome = {outcome.move, Status::Conflict, QStringLiteral("another row takes the same new name")};
        else if (sources.contains(outcome.move.from))
            outcome = {outcome.move, Status::Conflict, QStringLiteral("an earlier row moves the same file")};
        else
            sources.insert(outcome.move.from);
    }
    // A name already on disk is free only if the item there moves away; a
    // row that cannot move keeps its name taken, so this is repeated until
    // nothing changes.
    for (bool changed = true; changed;) {
        changed = false;
        QSet<QString> leaving;
        for (const Outcome &outcome : outcomes)
            if (outcome.status == Status::Renamed)
                leaving.insert(outcome.move.from);
        for (Outcome &outcome : outcomes) {
            if (outcome.status != Status::Renamed || !existing.contains(outcome.move.to) || leaving.contains(outcome.move.to))
                continue;
            if (sameItem(outcome.move.from, outcome.move.to))
                continue; // the same file under another case, on a file system that ignores case
            outcome = {outcome.move, Status::Conflict, QStringLiteral("a file named \"%1\" is already there").arg(nameOf(outcome.move.to))};
            changed = true;
        }
    }
    return outcomes;
}

std::vector<SafeMover::Step> SafeMover::order(const std::vector<Outcome> &planned) const
{
    // Deepest first, so the items in a folder move before the folder does;
    // within one depth a move waits for the item on its target to leave.
    std::map<int, std::vector<int>, std::greater<int>> byDepth;
    for (size_t i = 0; i < planned.size(); ++i)
        if (planned[i].status == Status::Renamed)
            byDepth[int(planned[i].move.from.count(u'/'))].push_back(int(i));
    std::vector<Step> steps;
    int temporary = 0;
    for (const auto &[depth, rows] : byDepth) {
        Q_UNUSED(depth);
        QSet<int> pending(rows.cbegin(), rows.cend());
        QHash<QString, int> bySource; // current source -> row
        QHash<QString, int> byTarget; // targets are unique once planned
        QHash<int, QString> source;
        for (int row : rows) {
            bySource.insert(planned[size_t(row)].move.from, row);
            byTarget.insert(planned[size_t(row)].move.to, row);
            source.insert(row, planned[size_t(row)].move.from);
        }
        // The row waiting for a name, once that name is free.
        auto wakeWaiterFor = [&](const QString &freed, std::vector<int> &ready) {
            const auto waiter = byTarget.constFind(freed);
            if (waiter != byTarget.constEnd() && pending.contains(*waiter))
                ready.push_back(*waiter);
        };
        std::vector<int> ready;
        for (int row : rows)
            if (!bySource.contains(planned[size_t(row)].move.to))
                ready.push_back(row);
        while (!pending.isEmpty()) {
            if (ready.empty()) {
                // Every remaining move waits on another: a cycle. One item
                // steps aside to a temporary name in its own folder.
                const int row = *pending.cbegin();
                const QString from = source.value(row);
                const QString aside = folderOf(from) + QStringLiteral("/.nomen-moving-%1-%2").arg(getpid()).arg(++temporary);
                steps.push_back({from, aside, -1});
                bySource.remove(from);
                bySource.insert(aside, row);
                source.insert(row, aside);
                wakeWaiterFor(from, ready);
                continue;
            }
            const int row = ready.back();
            ready.pop_back();
            if (!pending.contains(row))
                continue;
            const QString from = source.value(row);
            steps.push_back({from, planned[size_t(row)].move.to, row});
            pending.remove(row);
            bySource.remove(from);
            wakeWaiterFor(planned[size_t(row)].move.from, ready);
        }
    }
    return steps;
}

bool SafeMover::run(std::vector<Step> &steps, std::vector<bool> &done, const QString &journalPath,
                    const std::function<void(int row, int error)> &report)
{
    JournalFile journal(journalPath);
    DoneMarks marks(journalPath, steps.size());
    if (!journal.ok() || !marks.ok())
        return false;
    int executed = 0;
    for (size_t i = 0; i < steps.size(); ++i) {
        if (done[i])
            continue;
        if (stopAfterSteps && executed >= *stopAfterSteps)
            return false; // as if the process had died here
        const int error = FileMoves::moveWithoutReplacing(steps[i].from, steps[i].to);
        ++executed;
        if (progress)
            progress(i + 1, steps.size());
        if (error == 0) {
            done[i] = true;
            marks.mark(i);
        } else if (steps[i].row < 0) {
            // Could not step aside: the moves after it in its cycle stay put.
            for (size_t j = i + 1; j < steps.size(); ++j)
                if (steps[j].from == steps[i].to)
                    done[j] = true, report(steps[j].row, error);
        } else {
            // The last move of a cycle failed: its file goes back home.
            if (nameOf(steps[i].from).startsWith(QLatin1String(".nomen-moving-")))
                for (const Step &earlier : steps)
                    if (earlier.to == steps[i].from)
                        FileMoves::moveWithoutReplacing(steps[i].from, earlier.from);
            report(steps[i].row, error);
        }
    }
    journal.write("finished", true);
    return true;
}

std::vector<SafeMover::Outcome> SafeMover::apply(const std::vector<Move> &moves)
{
    std::vector<Outcome> outcomes = plan(moves);
    std::vector<Step> steps = order(outcomes);
    if (steps.empty())
        return outcomes;
    removeJournal(currentJournal());
    {
        JournalFile journal(currentJournal());
        if (!journal.ok()) {
            for (Outcome &outcome : outcomes)
                if (outcome.status == Status::Renamed)
                    outcome = {outcome.move, Status::Failed, QStringLiteral("the journal cannot be written")};
            return outcomes;
        }
        QByteArray plan;
        for (const Step &step : steps)
            plan += "step " + encoded(step.from) + ' ' + encoded(step.to) + ' ' + QByteArray::number(step.row) + '\n';
        journal.write(plan + "planned", true);
    }
    std::vector<bool> done(steps.size(), false);
    const bool finished = run(steps, done, currentJournal(), [&](int row, int error) {
        if (row >= 0)
            outcomes[size_t(row)] = {outcomes[size_t(row)].move, Status::Failed, QString::fromLocal8Bit(strerror(error))};
    });
    if (finished) {
        renameJournal(currentJournal(), lastJournal());
    }
    return outcomes;
}

std::optional<SafeMover::Journal> SafeMover::readJournal(const QString &path) const
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    Journal journal;
    bool planned = false;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields[0] == "step" && fields.size() == 4) {
            journal.steps.push_back({decoded(fields[1]), decoded(fields[2]), fields[3].toInt()});
            journal.done.push_back(false);
        } else if (fields[0] == "planned") {
            planned = true;
        } else if (fields[0] == "finished") {
            journal.finished = true;
        }
    }
    if (!planned)
        journal.steps.clear(); // the plan never reached the disk whole: nothing was moved
    journal.done.resize(journal.steps.size());
    DoneMarks::readInto(path, journal.done);
    return journal;
}

bool SafeMover::hasUnfinishedBatch() const
{
    const auto journal = readJournal(currentJournal());
    return journal && !journal->finished && !journal->steps.empty();
}

bool SafeMover::finishUnfinished()
{
    auto journal = readJournal(currentJournal());
    if (!journal)
        return false;
    run(journal->steps, journal->done, currentJournal(), [](int, int) {});
    return renameJournal(currentJournal(), lastJournal());
}

bool SafeMover::rollBackUnfinished()
{
    auto journal = readJournal(currentJournal());
    if (!journal)
        return false;
    // The completed steps, backwards, each undone.
    std::vector<Step> back;
    for (size_t i = journal->steps.size(); i-- > 0;)
        if (journal->done[i])
            back.push_back({journal->steps[i].to, journal->steps[i].from, journal->steps[i].row});
    std::vector<bool> done(back.size(), false);
    run(back, done, currentJournal() + QStringLiteral(".rollback"), [](int, int) {});
    removeJournal(currentJournal() + QStringLiteral(".rollback"));
    return removeJournal(currentJournal());
}

std::vector<SafeMover::Outcome> SafeMover::undoLast()
{
    const auto journal = readJournal(lastJournal());
    std::vector<Outcome> outcomes;
    if (!journal)
        return outcomes;
    std::vector<Step> back;
    for (size_t i = journal->steps.size(); i-- > 0;)
        if (journal->done[i])
            back.push_back({journal->steps[i].to, journal->steps[i].from, journal->steps[i].row});
    std::vector<bool> done(back.size(), false);
    run(back, done, lastJournal() + QStringLiteral(".undo"), [&](int row, int error) {
        outcomes.push_back({{QString(), QString()}, Status::Failed, QStringLiteral("row %1: %2").arg(row).arg(QString::fromLocal8Bit(strerror(error)))});
    });
    for (size_t i = 0; i < back.size(); ++i)
        if (done[i] && back[i].row >= 0)
            outcomes.push_back({{back[i].from, back[i].to}, Status::Renamed, QString()});
    removeJournal(lastJournal() + QStringLiteral(".undo"));
    removeJournal(lastJournal());
    return outcomes;
}
