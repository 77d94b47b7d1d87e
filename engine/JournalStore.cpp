#include "JournalStore.h"
#include "OpenFiles.h"
#include "ErrnoText.h"

#include "BatchObserver.h"
#include "PathCodec.h"
#include "UserFolders.h"

#include <QRegularExpression>
#include <QThread>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray bytes(const QString &path)
{
    return PathCodec::encode(path);
}

Failure problem(const QString &what, const QString &path, int error)
{
    return {QStringLiteral("%1 \"%2\": %3").arg(what, path, errnoText(error))};
}

int flushFolder(const QString &folder)
{
    return ::flushFolder(bytes(folder));
}

int ask(BatchObserver *observer, BatchPoint point, size_t index, const QString &path)
{
    return observer ? observer->at(point, index, path) : 0;
}

const QRegularExpression &entryPattern()
{
    static const QRegularExpression pattern(QStringLiteral("^\\d{16}\\.journal$"));
    return pattern;
}

} // namespace

JournalStore::JournalStore(QString directory) : m_directory(std::move(directory)) {}

QString JournalStore::defaultDirectory()
{
    return UserFolders::dataHome() + QStringLiteral("/nomen");
}

QString JournalStore::pendingPath() const
{
    return m_directory + QStringLiteral("/pending.journal");
}

QString JournalStore::historyDirectory() const
{
    return m_directory + QStringLiteral("/history");
}

QString JournalStore::historyPath(const QString &entry) const
{
    return historyDirectory() + u'/' + entry;
}

// Makes the folder if need be, private to the user, and checks that it is
// the user's own: a folder others can write to could hold a journal that
// is not ours.
Result<> JournalStore::prepareFolder(const QString &folder) const
{
    const QByteArray path = bytes(folder);
    // Each missing folder on the way, as private as the last.
    if (auto made = makeFolders(path, 0700); !made)
        return made;
    struct stat info;
    if (stat(path.constData(), &info) != 0)
        return problem(QStringLiteral("cannot read the folder"), folder, errno);
    if (!S_ISDIR(info.st_mode) || info.st_uid != geteuid())
        return Failure{QStringLiteral("the journal folder \"%1\" is not a folder of this user's").arg(folder)};
    if ((info.st_mode & 077) != 0 && chmod(path.constData(), 0700) != 0)
        return problem(QStringLiteral("cannot make the journal folder private"), folder, errno);
    return {};
}

Result<> JournalStore::lock(int waitMs)
{
    if (m_lockDepth > 0) {
        ++m_lockDepth;
        return {};
    }
    if (auto prepared = prepareFolder(m_directory); !prepared)
        return prepared;
    const QString path = m_directory + QStringLiteral("/lock");
    FileDescriptor descriptor(open(bytes(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor.isOpen())
        return problem(QStringLiteral("cannot open the lock"), path, errno);
    for (int waited = 0;; waited += 50) {
        if (flock(descriptor.get(), LOCK_EX | LOCK_NB) == 0)
            break;
        const int error = errno;
        if ((error != EWOULDBLOCK && error != EINTR) || waited >= waitMs) {
            if (error == EWOULDBLOCK)
                return Failure{QStringLiteral("another Nomen run is renaming files (it holds \"%1\"); nothing was "
                                              "changed. Try again when it has finished.")
                                   .arg(path)};
            return problem(QStringLiteral("cannot take the lock"), path, error);
        }
        QThread::msleep(50);
    }
    m_lockDescriptor = descriptor.release();
    m_lockDepth = 1;
    // A journal whose writing was cut short never took its name: it is no
    // batch, and nothing was moved for it.
    unlink(bytes(pendingPath() + QStringLiteral(".new")).constData());
    return {};
}

void JournalStore::unlock()
{
    if (m_lockDepth == 0 || --m_lockDepth > 0)
        return;
    close(m_lockDescriptor); // lets the lock go
    m_lockDescriptor = -1;
}

bool JournalStore::hasPending() const
{
    struct stat info;
    return lstat(bytes(pendingPath()).constData(), &info) == 0;
}

Result<BatchJournal> JournalStore::load(const QString &path) const
{
    FileDescriptor descriptor(open(bytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!descriptor.isOpen())
        return Failure{errno == ELOOP ? QStringLiteral("it is a symbolic link") : errnoText(errno)};
    struct stat info;
    if (fstat(descriptor.get(), &info) != 0)
        return Failure{errnoText(errno)};
    QString distrust;
    if (!S_ISREG(info.st_mode))
        distrust = QStringLiteral("it is not a plain file");
    else if (info.st_uid != geteuid())
        distrust = QStringLiteral("it belongs to another user");
    else if (info.st_mode & 077)
        distrust = QStringLiteral("others may read or change it");
    QByteArray text;
    if (distrust.isEmpty()) {
        text.resize(qsizetype(info.st_size));
        qsizetype got = 0;
        while (got < text.size()) {
            const ssize_t n = read(descriptor.get(), text.data() + got, size_t(text.size() - got));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                distrust = n < 0 ? errnoText(errno) : QStringLiteral("it changed while it was read");
                break;
            }
            got += n;
        }
    }
    if (!distrust.isEmpty())
        return Failure{distrust};
    return BatchJournal::parse(text);
}

Result<> JournalStore::writePending(const BatchJournal &journal, BatchObserver *observer)
{
    const QString staged = pendingPath() + QStringLiteral(".new");
    const QByteArray stagedBytes = bytes(staged);
    unlink(stagedBytes.constData());
    FileDescriptor descriptor(open(stagedBytes.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor.isOpen())
        return problem(QStringLiteral("cannot create"), staged, errno);
    const QByteArray text = journal.serialize();
    constexpr qsizetype block = 1 << 20;
    int error = 0;
    for (qsizetype at = 0; at < text.size() && !error; at += block) {
        error = ask(observer, BatchPoint::WriteJournal, size_t(at / block), staged);
        if (!error)
            error = writeAll(descriptor.get(), text.constData() + at, size_t(std::min(block, text.size() - at)));
    }
    if (!error)
        error = ask(observer, BatchPoint::FlushJournal, 0, staged);
    if (!error && fdatasync(descriptor.get()) != 0)
        error = errno;
    if (const int closing = descriptor.close(); !error)
        error = closing;
    if (!error)
        error = ask(observer, BatchPoint::PlaceJournal, 0, staged);
    if (!error && rename(stagedBytes.constData(), bytes(pendingPath()).constData()) != 0)
        error = errno;
    if (error) {
        unlink(stagedBytes.constData());
        return problem(QStringLiteral("cannot write"), staged, error);
    }
    if (const int flush = flushFolder(m_directory))
        return problem(QStringLiteral("cannot flush the folder"), m_directory, flush);
    return {};
}

int JournalStore::appendToPending(const QByteArray &record, BatchObserver *observer)
{
    if (const int injected = ask(observer, BatchPoint::RecordCopy, 0, pendingPath()))
        return injected;
    FileDescriptor descriptor(open(bytes(pendingPath()).constData(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW));
    if (!descriptor.isOpen())
        return errno;
    int error = writeAll(descriptor.get(), record.constData(), size_t(record.size()));
    if (!error && fdatasync(descriptor.get()) != 0)
        error = errno;
    return error;
}

QStringList JournalStore::history() const
{
    QStringList entries;
    FolderEntries folder(bytes(historyDirectory()));
    while (const dirent *entry = folder.next()) {
        const QString name = PathCodec::decode(entry->d_name);
        if (entryPattern().match(name).hasMatch())
            entries.append(name);
    }
    std::sort(entries.begin(), entries.end(), std::greater<>());
    return entries;
}

Result<> JournalStore::archivePending()
{
    if (auto prepared = prepareFolder(historyDirectory()); !prepared)
        return prepared;
    const QStringList entries = history();
    const qulonglong next = entries.isEmpty() ? 1 : entries.first().left(16).toULongLong() + 1;
    const QString entry = QStringLiteral("%1.journal").arg(next, 16, 10, QLatin1Char('0'));
    if (rename(bytes(pendingPath()).constData(), bytes(historyPath(entry)).constData()) != 0)
        return problem(QStringLiteral("cannot file the journal in the history"), pendingPath(), errno);
    flushFolder(historyDirectory());
    if (const int error = flushFolder(m_directory))
        return problem(QStringLiteral("cannot flush the folder"), m_directory, error);
    // An old entry that cannot be removed only makes the history longer.
    for (qsizetype i = KeptBatches - 1; i < entries.size(); ++i)
        unlink(bytes(historyPath(entries[i])).constData());
    return {};
}

Result<> JournalStore::discardPending()
{
    if (unlink(bytes(pendingPath()).constData()) != 0 && errno != ENOENT)
        return problem(QStringLiteral("cannot remove"), pendingPath(), errno);
    if (const int error = flushFolder(m_directory))
        return problem(QStringLiteral("cannot flush the folder"), m_directory, error);
    return {};
}

Result<> JournalStore::removeHistory(const QString &entry)
{
    if (unlink(bytes(historyPath(entry)).constData()) != 0 && errno != ENOENT)
        return problem(QStringLiteral("cannot remove"), historyPath(entry), errno);
    flushFolder(historyDirectory());
    return {};
}
