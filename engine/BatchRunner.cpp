#include "BatchRunner.h"

#include "PathNames.h"
#include "ErrnoText.h"

#include "BatchObserver.h"
#include "FileMoves.h"
#include "OpenFiles.h"
#include "PathCodec.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int Unknown = -2;

} // namespace

BatchRunner::BatchRunner(BatchJournal &journal, Hooks hooks) : m_journal(journal), m_hooks(std::move(hooks))
{
    // Items that hold the folders of others: the folders on every
    // journal folder's path that are themselves renamed in this batch.
    QHash<QString, int> folderIndex;
    for (qsizetype i = 0; i < m_journal.folders.size(); ++i)
        folderIndex.insert(m_journal.folders[i], int(i));
    QHash<int, QSet<QString>> wanted; // folder index -> names of items that are containers
    for (const QString &folder : std::as_const(m_journal.folders))
        for (QString path = folder; path.startsWith(u'/') && path != QLatin1String("/"); path = PathNames::folderOf(path))
            if (const auto parent = folderIndex.constFind(PathNames::folderOf(path)); parent != folderIndex.cend())
                wanted[*parent].insert(PathNames::lastComponent(path));
    if (wanted.isEmpty())
        return;
    for (size_t item = 0; item < m_journal.items.size(); ++item) {
        const BatchJournal::Item &entry = m_journal.items[item];
        const auto names = wanted.constFind(entry.folder);
        if (names != wanted.cend() && names->contains(entry.names[0])) {
            m_folderItems.insert(m_journal.pathOf(entry, 0), int(item));
            m_containers.insert(int(item));
        }
    }
}

QString BatchRunner::resolve(const QString &path)
{
    if (path == QLatin1String("/") || !path.startsWith(u'/'))
        return path;
    const auto known = m_resolved.constFind(path);
    if (known != m_resolved.cend())
        return *known;
    QString now;
    const auto container = m_folderItems.constFind(path);
    const int position = container == m_folderItems.cend() ? NotFound : positionOf(*container);
    if (position != NotFound)
        now = pathNow(*container, position);
    else
        now = PathNames::joined(resolve(PathNames::folderOf(path)), PathNames::lastComponent(path));
    m_resolved.insert(path, now);
    return now;
}

void BatchRunner::forgetFolders()
{
    m_resolved.clear();
    m_folderBytes.clear();
}

// Where a journal folder is now, in bytes and ending with "/", worked out
// once until a folder of the batch moves.
const QByteArray &BatchRunner::folderBytes(int folder, int item)
{
    if (m_folderBytes.empty())
        m_folderBytes.resize(size_t(m_journal.folders.size()));
    std::optional<QByteArray> &known = m_folderBytes[size_t(folder)];
    if (!known) {
        QByteArray bytes = PathCodec::encode(folderNow(item));
        if (!bytes.endsWith('/'))
            bytes += '/';
        known = std::move(bytes);
    }
    return *known;
}

QString BatchRunner::folderNow(int item)
{
    return resolve(m_journal.folderOf(m_journal.items[size_t(item)]));
}

QString BatchRunner::pathNow(int item, int position)
{
    return PathNames::joined(folderNow(item), m_journal.items[size_t(item)].names[position]);
}

int BatchRunner::positionOf(int item)
{
    int &position = m_positions[size_t(item)];
    if (position != Unknown)
        return position;
    position = NotFound; // while its folder is looked for
    const BatchJournal::Item &entry = m_journal.items[size_t(item)];
    const QString folder = folderNow(item);
    for (int at = entry.last(); at >= 0; --at) {
        const auto found = FileIdentity::at(PathCodec::encode(PathNames::joined(folder, entry.names[at])));
        if (found && entry.matches(*found)) {
            position = at;
            break;
        }
    }
    return position;
}

std::vector<int> BatchRunner::locate()
{
    m_positions.assign(m_journal.items.size(), Unknown);
    forgetFolders();
    for (size_t item = 0; item < m_journal.items.size(); ++item)
        positionOf(int(item));
    return m_positions;
}

QString BatchRunner::describe(int error, int item, int from, int to)
{
    const BatchJournal::Item &entry = m_journal.items[size_t(item)];
    const QString source = pathNow(item, from);
    const QString &name = entry.names[to];
    const bool aside = to > 0 && to < entry.last();
    const QString what = aside ? QStringLiteral("\"%1\" could not be moved aside to \"%2\"").arg(source, name)
                               : QStringLiteral("\"%1\" could not be renamed to \"%2\"").arg(source, name);
    if (error != EEXIST)
        return QStringLiteral("%1: %2").arg(what, errnoText(error));
    if (m_byFirstPath.isEmpty())
        for (size_t other = 0; other < m_journal.items.size(); ++other)
            m_byFirstPath.insert(m_journal.pathOf(m_journal.items[other], 0), int(other));
    const auto holder = m_byFirstPath.constFind(m_journal.pathOf(entry, to));
    if (holder != m_byFirstPath.cend() && *holder != item && m_positions[size_t(*holder)] == 0)
        return QStringLiteral("%1: the file with that name could not be moved out of the way").arg(what);
    return QStringLiteral("%1: an item with that name is already there").arg(what);
}

// Moves an item back to its first name. When a partner of its cycle has
// taken that name meanwhile (the cycle broke further on), the partner goes
// back first, and so on round the cycle, so nothing stays out of sight
// under a temporary name.
bool BatchRunner::bringBack(int item, int depth, size_t index, Result &result)
{
    const int at = m_positions[size_t(item)];
    const QString aside = pathNow(item, at);
    const QString why = result.problems[size_t(item)];
    bool back = moveItem(item, at, 0, index, result);
    if (!back && m_lastError == EEXIST && depth < int(m_journal.items.size())) {
        const BatchJournal::Item &entry = m_journal.items[size_t(item)];
        for (size_t other = 0; other < m_journal.items.size(); ++other) {
            const BatchJournal::Item &partner = m_journal.items[other];
            const int partnerAt = m_positions[other];
            if (int(other) == item || partner.folder != entry.folder || partnerAt <= 0 || partner.names[partnerAt] != entry.names[0])
                continue;
            if (bringBack(int(other), depth + 1, index, result)) {
                result.problems[other] = QStringLiteral("\"%1\" was put back under its old name: the names it was to "
                                                        "trade with others could not all be given")
                                             .arg(m_journal.pathOf(partner, 0));
                back = moveItem(item, at, 0, index, result);
            }
            break;
        }
    }
    if (back)
        result.problems[size_t(item)] = why;
    else if (at > 0 && at < m_journal.items[size_t(item)].last())
        result.problems[size_t(item)] = QStringLiteral("%1; it is kept as \"%2\"").arg(why, aside);
    return back;
}

bool BatchRunner::moveItem(int item, int from, int to, size_t index, Result &result)
{
    const BatchJournal::Item &entry = m_journal.items[size_t(item)];
    const QByteArray &folder = folderBytes(entry.folder, item);
    const QByteArray source = folder + PathCodec::encode(entry.names[from]);
    const QByteArray target = folder + PathCodec::encode(entry.names[to]);
    FileMoves::Options options;
    if (m_hooks.observer)
        options.simulatedRenameError = m_hooks.observer->at(BatchPoint::Move, index, PathCodec::decode(source));
    options.copied = [this, item](const QByteArray &copy) {
        const auto identity = FileIdentity::at(copy);
        if (!identity)
            return errno;
        if (m_hooks.record)
            if (const int error = m_hooks.record(BatchJournal::copyRecord(item, *identity)))
                return error;
        m_journal.items[size_t(item)].copiedAs = *identity;
        return 0;
    };
    const FileMoves::Result moved = FileMoves::move(source, target, options);
    m_lastError = moved.error;
    if (m_hooks.observer)
        m_hooks.observer->at(BatchPoint::Moved, index, PathCodec::decode(moved.moved() ? target : source));
    if (!moved.moved()) {
        result.problems[size_t(item)] = moved.detail.isEmpty() ? describe(moved.error, item, from, to) : moved.detail;
        return false;
    }
    m_positions[size_t(item)] = to;
    if (moved.originalKept)
        result.problems[size_t(item)] = moved.detail;
    if (m_containers.contains(item))
        forgetFolders();
    return true;
}

BatchRunner::Result BatchRunner::run(std::vector<int> positions)
{
    m_positions = std::move(positions);
    forgetFolders();
    const std::vector<int> started = m_positions;
    Result result;
    result.problems.resize(m_journal.items.size());
    std::vector<bool> stuck(m_journal.items.size(), false);
    auto due = [&](const BatchJournal::Step &step) {
        const int at = m_positions[size_t(step.item)];
        return at == step.to - 1 && !stuck[size_t(step.item)];
    };
    size_t total = 0;
    for (const BatchJournal::Step &step : m_journal.steps)
        total += m_positions[size_t(step.item)] != NotFound && m_positions[size_t(step.item)] < step.to;
    size_t done = 0;
    for (const BatchJournal::Step &step : m_journal.steps) {
        if (!due(step))
            continue;
        if (m_hooks.interruption && m_hooks.interruption->load()) {
            result.interrupted = true;
            result.positions = m_positions;
            return result;
        }
        if (!moveItem(step.item, step.to - 1, step.to, done, result))
            stuck[size_t(step.item)] = true;
        ++done;
        if (m_hooks.progress)
            m_hooks.progress(done, total);
    }
    // An item stopped under a temporary name goes back to its first name.
    for (size_t item = 0; item < m_journal.items.size(); ++item) {
        const int at = m_positions[item];
        if (at > 0 && at < m_journal.items[item].last())
            bringBack(int(item), 0, done, result);
    }
    result.positions = m_positions;
    // The new names reach the disk before the journal is put away.
    QHash<int, int> touched; // folder -> an item in it
    for (size_t item = 0; item < m_journal.items.size(); ++item)
        if (m_positions[item] != started[item] && m_positions[item] != NotFound)
            touched.insert(m_journal.items[item].folder, int(item));
    for (auto folder = touched.cbegin(); folder != touched.cend(); ++folder) {
        const QString path = folderNow(folder.value());
        if (const int error = flushFolder(PathCodec::encode(path)); error && result.flushProblem.isEmpty())
            result.flushProblem = QStringLiteral("the folder \"%1\" could not be flushed: %2")
                                      .arg(path, errnoText(error));
    }
    return result;
}
