#include "BatchPlan.h"
#include "ErrnoText.h"
#include "ExistingItems.h"
#include "NameIndex.h"
#include "PathCodec.h"
#include "PathNames.h"
#include "Result.h"

#include <QHash>
#include <QRandomGenerator>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>
#include <unordered_map>

using Batch::Move;
using Batch::Outcome;
using Batch::Status;

namespace {

// Folders made absolute and free of links, each worked out once.
class FolderResolver {
public:
    // The resolved folder, or why it cannot be reached.
    Result<QString> resolve(const QString &folder)
    {
        const auto known = m_known.constFind(folder);
        if (known != m_known.cend())
            return *known;
        const auto answer = [&folder]() -> Result<QString> {
            char *real = realpath(PathCodec::encode(PathNames::absolute(folder)).constData(), nullptr);
            if (!real) {
                const int error = errno;
                const QString shown = PathNames::withoutTrailingSlashes(folder);
                return Failure{error == ENOENT ? QStringLiteral("no such folder \"%1\"").arg(shown)
                                               : QStringLiteral("the folder \"%1\" cannot be reached: %2")
                                                     .arg(shown, errnoText(error))};
            }
            const QString resolved = PathCodec::decode(real);
            free(real);
            return resolved;
        }();
        m_known.insert(folder, answer);
        return answer;
    }

private:
    QHash<QString, Result<QString>> m_known;
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
    // A UTF-16 code unit is at most three bytes: most names need no encoding here.
    if (name.size() * 3 > NAME_MAX && PathCodec::encode(name).size() > NAME_MAX)
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
    // Tabs, line breaks and the like show as nothing, or break a listing in
    // two; NUL and "/" are refused before this.
    const auto control = [](const QString &text) {
        return std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; });
    };
    if (control(newName) && !control(name))
        return QStringLiteral("the new name holds a control character (a tab, a line break or the like)");
    return {};
}

// What the plan is asked of one row: the folder as given, the item's name
// there and its new name. From a list of moves each path is split; from a
// table the rows' own strings are used as they are.
struct Request {
    const Move *move = nullptr; // as reported back; none for a table's row
    QString folder;
    QString name;
    QString newName;
    std::optional<FileIdentity> identity;
    Status refusedAs = Status::Renamed; // a move that cannot be split
    QString refusal;

    QString path() const
    {
        return move ? move->from : PathNames::joined(folder, name);
    }
};

Request requestFor(const Move &move)
{
    Request request{&move, {}, {}, {}, std::nullopt, Status::Renamed, {}};
    QStringView from(move.from);
    while (from.size() > 1 && from.endsWith(u'/'))
        from.chop(1);
    const qsizetype slash = from.lastIndexOf(u'/');
    const QStringView prefix = from.left(slash + 1);
    const QStringView name = from.mid(slash + 1);
    if (name.isEmpty() || name == u"." || name == u"..") {
        request.refusedAs = Status::Failed;
        request.refusal = QStringLiteral("\"%1\" does not name an item").arg(move.from);
    } else if (!QStringView(move.to).startsWith(prefix)) {
        request.refusedAs = Status::Conflict;
        request.refusal = QStringLiteral("\"%1\" is not in the folder of \"%2\"").arg(move.to, move.from);
    }
    request.folder = slash < 0 ? QStringLiteral(".") : slash == 0 ? QStringLiteral("/") : from.left(slash).toString();
    request.name = name.toString();
    request.newName = QStringView(move.to).mid(prefix.size()).toString();
    return request;
}

// A rule works on the characters of a name: what it makes of them may not
// hold half of one, nor bytes the name never had.
Request requestFor(const ItemRecord &row, const QString &newName)
{
    const bool known = row.identity.inode != 0;
    Request request{nullptr, row.location, row.name, newName, known ? std::optional(row.identity) : std::nullopt,
                    Status::Renamed, {}};
    if (PathCodec::splitsCharacter(row.name, newName)) {
        request.refusedAs = Status::Conflict;
        request.refusal = QStringLiteral("the new name would split a character (it would hold bytes that are not "
                                         "UTF-8 and were not in the name)");
    }
    return request;
}

// What a plan is made from: each row's request, asked once and in order as
// the row is checked, and then its name, new name and file as often as the
// plan needs them, kept by the rows themselves rather than copied per row.
class PlanRows {
public:
    virtual ~PlanRows() = default;
    virtual size_t count() const = 0;
    virtual Request request(size_t row) = 0;
    virtual const QString &name(size_t row) const = 0;
    virtual const QString &newName(size_t row) const = 0;
    // The file the row's name led to when it was checked: as the request
    // knew it, or as the check found it (`found`).
    virtual const FileIdentity &identity(size_t row) const = 0;
    virtual void found(size_t row, const FileIdentity &identity) = 0;
};

// A list of moves: each path is split into its folder and name as its row
// is checked, and the names kept.
class MovedRows final : public PlanRows {
public:
    explicit MovedRows(const std::vector<Move> &moves) : m_moves(moves), m_names(moves.size()), m_identities(moves.size()) {}
    size_t count() const override { return m_moves.size(); }
    Request request(size_t row) override
    {
        Request asked = requestFor(m_moves[row]);
        m_names[row] = {asked.name, asked.newName};
        return asked;
    }
    const QString &name(size_t row) const override { return m_names[row].first; }
    const QString &newName(size_t row) const override { return m_names[row].second; }
    const FileIdentity &identity(size_t row) const override { return m_identities[row]; }
    void found(size_t row, const FileIdentity &identity) override { m_identities[row] = identity; }

private:
    const std::vector<Move> &m_moves;
    std::vector<std::pair<QString, QString>> m_names;
    std::vector<FileIdentity> m_identities;
};

// A table's planned rows (indexes into it), with their composed names.
class TableRowsPlanned final : public PlanRows {
public:
    TableRowsPlanned(const std::vector<ItemRecord> &rows, const QStringList &newNames, const std::vector<int> &planned)
        : m_rows(rows), m_newNames(newNames), m_planned(planned)
    {
    }
    size_t count() const override { return m_planned.size(); }
    Request request(size_t row) override { return requestFor(m_rows[tableRow(row)], newName(row)); }
    const QString &name(size_t row) const override { return m_rows[tableRow(row)].name; }
    const QString &newName(size_t row) const override { return m_newNames[qsizetype(tableRow(row))]; }
    // A listed row knows its file; one that was not found by the listing
    // (no inode) is looked up by the check.
    const FileIdentity &identity(size_t row) const override
    {
        const FileIdentity &listed = m_rows[tableRow(row)].identity;
        return listed.inode != 0 ? listed : m_found.at(row);
    }
    void found(size_t row, const FileIdentity &identity) override
    {
        if (m_rows[tableRow(row)].identity.inode == 0)
            m_found[row] = identity;
    }

private:
    size_t tableRow(size_t row) const { return size_t(m_planned[row]); }

    const std::vector<ItemRecord> &m_rows;
    const QStringList &m_newNames;
    const std::vector<int> &m_planned;
    std::unordered_map<size_t, FileIdentity> m_found;
};

class Planner {
public:
    Planner(PlanRows &rows, BatchPlan &plan, const SeenFolders *seen = nullptr) : m_rows(rows), m_plan(plan), m_seen(seen) {}

    void run(bool ordered)
    {
        const size_t count = m_rows.count();
        m_folders.assign(count, -1);
        m_plan.outcomes.reserve(count);
        for (size_t row = 0; row < count; ++row)
            m_plan.outcomes.push_back(check(int(row)));
        refuseDuplicates();
        refuseTakenNames();
        for (Outcome &outcome : m_plan.outcomes)
            if (outcome.status != Status::Renamed)
                outcome.warning.clear();
        if (ordered)
            order();
    }

private:
    bool moves(size_t row) const { return m_plan.outcomes[row].status == Status::Renamed; }
    const QString &nameOf(int row) const { return m_rows.name(size_t(row)); }
    const QString &newNameOf(int row) const { return m_rows.newName(size_t(row)); }

    QString pathOf(int folder, const QString &name) const
    {
        const QString &path = m_folderPaths[folder];
        return PathNames::joined(path, name);
    }

    // The resolved folder's index; rows of one folder usually follow each
    // other, so the last answer is tried first.
    Result<int> folderIndex(const QString &raw)
    {
        if (m_lastRaw && raw == *m_lastRaw)
            return *m_lastAnswer;
        const auto resolved = m_resolver.resolve(raw);
        const auto answer = [&]() -> Result<int> {
            if (!resolved)
                return Failure{resolved.reason()};
            auto known = m_folderIndex.constFind(*resolved);
            if (known == m_folderIndex.cend()) {
                known = m_folderIndex.insert(*resolved, int(m_folderPaths.size()));
                m_folderPaths.append(*resolved);
            }
            return *known;
        }();
        m_lastRaw = raw;
        m_lastAnswer = answer;
        return answer;
    }

    // One row on its own: the name, its folder, its file.
    Outcome check(int row)
    {
        const Request request = m_rows.request(size_t(row));
        Outcome outcome{request.move ? Batch::HeldMove::of(*request.move) : Batch::HeldMove::Pointer(), Status::Renamed, -1, {}, {}};
        auto refuse = [&](Status status, const QString &reason) {
            outcome.status = status;
            outcome.reason = reason;
            return outcome;
        };
        if (!request.refusal.isEmpty())
            return refuse(request.refusedAs, request.refusal);
        if (request.newName == request.name) {
            outcome.status = Status::Unchanged;
            return outcome;
        }
        if (const QString reason = invalidNameReason(request.newName); !reason.isEmpty())
            return refuse(Status::Conflict, reason);
        const auto folder = folderIndex(request.folder);
        if (!folder)
            return refuse(Status::Failed, folder.reason());
        const auto identity =
            request.identity ? request.identity : FileIdentity::at(PathCodec::encode(pathOf(*folder, request.name)));
        if (!identity)
            return refuse(Status::Failed, errno == ENOENT ? QStringLiteral("\"%1\" is no longer there").arg(request.path())
                                                          : QStringLiteral("\"%1\": %2").arg(request.path(), errnoText(errno)));
        outcome.warning = surprise(request.name, request.newName);
        m_rows.found(size_t(row), *identity);
        m_folders[size_t(row)] = *folder;
        return outcome;
    }

    void refuse(int row, const QString &reason)
    {
        m_plan.outcomes[size_t(row)].status = Status::Conflict;
        m_plan.outcomes[size_t(row)].reason = reason;
    }

    // Two rows may not want one name, nor move one file (under one name or
    // two: hard links share an identity, and a journal tells items apart
    // by it).
    void refuseDuplicates()
    {
        NameIndex wanted([this](int row) -> const QString & { return newNameOf(row); }, m_folderOf);
        wanted.reserve(m_folders.size());
        for (size_t row = 0; row < m_folders.size(); ++row)
            if (moves(row))
                wanted.add(int(row));
        wanted.sort();
        std::vector<int> sharedNames;
        wanted.forEachRun([&](size_t first, size_t last) {
            if (last - first > 1)
                for (size_t i = first; i < last; ++i)
                    sharedNames.push_back(wanted.rowAt(i));
        });
        std::sort(sharedNames.begin(), sharedNames.end());
        for (const int row : sharedNames)
            refuse(row, QStringLiteral("another row takes the same new name \"%1\"").arg(newNameOf(row)));
        // Every candidate's file was identified, so one name twice is one
        // identity twice. Of the rows left, the first to move a file keeps it.
        // The rows that move, by their file and then in order; the device
        // is looked up only for the rare rows whose inode numbers are equal.
        struct Owner {
            quint64 inode;
            int row;
        };
        const auto deviceOf = [this](const Owner &owner) { return m_rows.identity(size_t(owner.row)).device; };
        std::vector<Owner> owners;
        owners.reserve(m_folders.size());
        for (size_t row = 0; row < m_folders.size(); ++row)
            if (moves(row))
                owners.push_back({m_rows.identity(row).inode, int(row)});
        std::sort(owners.begin(), owners.end(), [&](const Owner &a, const Owner &b) {
            if (a.inode != b.inode)
                return a.inode < b.inode;
            const quint64 deviceA = deviceOf(a), deviceB = deviceOf(b);
            return deviceA != deviceB ? deviceA < deviceB : a.row < b.row;
        });
        for (size_t i = 1, first = 0; i < owners.size(); ++i) {
            if (owners[first].inode != owners[i].inode || deviceOf(owners[first]) != deviceOf(owners[i])) {
                first = i;
                continue;
            }
            const int earlier = owners[first].row;
            const int row = owners[i].row;
            if (m_folders[size_t(earlier)] == m_folders[size_t(row)] && nameOf(earlier) == nameOf(row))
                refuse(row, QStringLiteral("an earlier row moves the same file"));
            else
                refuse(row, QStringLiteral("\"%1\" is another name of the file \"%2\", which an earlier row moves")
                                .arg(nameOf(row), nameOf(earlier)));
        }
    }

    // A name already on disk is free only if the item there moves away; a
    // row that cannot move keeps its name taken, so this is repeated until
    // nothing changes (a refusal can only take more names, so the order
    // rows are looked at in does not change the outcome).
    void refuseTakenNames()
    {
        std::vector<int> uses(size_t(m_folderPaths.size()));
        // The rows that move as things stand now: a refused row's name
        // stays taken, and its entry is only marked gone.
        NameIndex leaving([this](int row) -> const QString & { return nameOf(row); }, m_folderOf);
        leaving.reserve(m_folders.size());
        for (size_t row = 0; row < m_folders.size(); ++row)
            if (moves(row)) {
                uses[size_t(m_folders[row])] += 2;
                leaving.add(int(row));
            }
        leaving.sort();
        m_existing.readFoldersOf(m_folderPaths, uses, m_seen);
        for (bool changed = true; changed;) {
            changed = false;
            for (size_t row = 0; row < m_folders.size(); ++row) {
                if (!moves(row))
                    continue;
                const int folder = m_folders[row];
                const QString &newName = newNameOf(int(row));
                if (leaving.contains(folder, newName) || !m_existing.contains(folder, m_folderPaths[folder], newName))
                    continue;
                // The same file under another case, on a file system that ignores case.
                if (FileIdentity::at(PathCodec::encode(pathOf(folder, newName))) == m_rows.identity(row))
                    continue;
                leaving.remove(folder, nameOf(int(row)));
                refuse(int(row), QStringLiteral("a file named \"%1\" is already there").arg(newName));
                changed = true;
            }
        }
    }

    QString temporaryName(int folder)
    {
        if (m_token.isEmpty())
            m_token = QString::number(QRandomGenerator::global()->generate64() & 0xffffffffffffULL, 16);
        for (;;) {
            const QString name = QStringLiteral(".nomen-moving-%1-%2").arg(m_token).arg(++m_temporaries);
            struct stat info;
            if (lstat(PathCodec::encode(pathOf(folder, name)).constData(), &info) != 0)
                return name;
        }
    }

    // Deepest folders first, so the items in a folder move before the
    // folder does. Every move stays in its folder, so each folder is
    // ordered on its own: a move waits for the item on its new name to
    // leave, and in a cycle one item steps aside to a temporary name.
    void order()
    {
        BatchJournal &journal = m_plan.journal;
        journal.folders.clear();
        for (const QString &folder : std::as_const(m_folderPaths))
            journal.folders.append(folder.isEmpty() ? QStringLiteral("/") : folder);
        QHash<int, std::vector<int>> itemsOfFolder;
        journal.items.reserve(m_folders.size());
        journal.steps.reserve(m_folders.size());
        for (size_t row = 0; row < m_folders.size(); ++row) {
            if (!moves(row))
                continue;
            itemsOfFolder[m_folders[row]].push_back(int(journal.items.size()));
            journal.items.push_back(
                {int(row), m_folders[row], {nameOf(int(row)), newNameOf(int(row))}, m_rows.identity(row), std::nullopt});
        }
        std::vector<int> folders(itemsOfFolder.keyBegin(), itemsOfFolder.keyEnd());
        const auto depth = [this](int folder) {
            return m_folderPaths[folder] == QLatin1String("/") ? 0 : m_folderPaths[folder].count(u'/');
        };
        std::sort(folders.begin(), folders.end(), [&](int a, int b) {
            return depth(a) != depth(b) ? depth(a) > depth(b) : a < b;
        });
        std::vector<char> pending(journal.items.size(), 1);
        for (const int folder : folders)
            orderFolder(folder, *itemsOfFolder.constFind(folder), pending);
    }

    // `items` are in ascending order; `pending` is indexed by item.
    void orderFolder(int folder, const std::vector<int> &items, std::vector<char> &pending)
    {
        BatchJournal &journal = m_plan.journal;
        size_t waiting = items.size();
        size_t firstPending = 0; // in `items`: none before it is pending
        QHash<QString, int> bySource; // the name each waiting item has now
        QHash<QString, int> byTarget;
        bySource.reserve(qsizetype(items.size()));
        byTarget.reserve(qsizetype(items.size()));
        for (const int item : items) {
            bySource.insert(journal.items[size_t(item)].names[0], item);
            byTarget.insert(journal.items[size_t(item)].names[1], item);
        }
        std::vector<int> ready;
        for (const int item : items)
            if (!bySource.contains(journal.items[size_t(item)].names[1]))
                ready.push_back(item);
        // The item waiting for a name, once that name is free.
        auto wakeWaiterFor = [&](const QString &freed) {
            const auto waiter = byTarget.constFind(freed);
            if (waiter != byTarget.cend() && pending[size_t(*waiter)])
                ready.push_back(*waiter);
        };
        while (waiting > 0) {
            if (ready.empty()) {
                while (!pending[size_t(items[firstPending])])
                    ++firstPending;
                const int item = items[firstPending];
                BatchJournal::Item &entry = journal.items[size_t(item)];
                const QString from = entry.names[0];
                entry.names.insert(1, temporaryName(folder));
                journal.steps.push_back({item, 1});
                bySource.remove(from);
                bySource.insert(entry.names[1], item);
                wakeWaiterFor(from);
                continue;
            }
            const int item = ready.back();
            ready.pop_back();
            if (!pending[size_t(item)])
                continue;
            pending[size_t(item)] = 0;
            --waiting;
            const BatchJournal::Item &entry = journal.items[size_t(item)];
            journal.steps.push_back({item, entry.last()});
            bySource.remove(entry.names[entry.last() - 1]);
            wakeWaiterFor(entry.names[0]);
        }
    }

    PlanRows &m_rows;
    BatchPlan &m_plan;
    const SeenFolders *m_seen;
    FolderResolver m_resolver;
    ExistingItems m_existing;
    QStringList m_folderPaths;          // resolved; "" for the root
    QHash<QString, int> m_folderIndex;
    std::optional<QString> m_lastRaw;
    std::optional<Result<int>> m_lastAnswer;
    // The resolved folder (an index into m_folderPaths) of each row that
    // will be renamed, as the check found it; a refused row keeps it, as
    // its name is still there.
    std::vector<int> m_folders;
    const NameIndex::FolderOf m_folderOf = [this](int row) { return m_folders[size_t(row)]; };
    QString m_token;
    int m_temporaries = 0;
};

} // namespace

BatchPlan BatchPlan::make(const std::vector<Move> &moves, BatchJournal::Kind kind, bool ordered)
{
    BatchPlan plan;
    plan.journal.kind = kind;
    MovedRows moved(moves);
    Planner(moved, plan).run(ordered);
    return plan;
}

namespace {

// The table rows that are planned: the included ones that have a new name.
std::vector<int> plannedRows(const std::vector<ItemRecord> &rows, const QStringList &newNames)
{
    std::vector<int> planned;
    planned.reserve(rows.size());
    for (size_t i = 0; i < rows.size() && qsizetype(i) < newNames.size(); ++i)
        if (rows[i].include)
            planned.push_back(int(i));
    return planned;
}

} // namespace

const ItemRecord *Batch::TableRows::rowOf(const Outcome &outcome) const
{
    if (outcome.row < 0 || !rows || !newNames || size_t(outcome.row) >= rows->size() || outcome.row >= newNames->size())
        return nullptr;
    return &(*rows)[size_t(outcome.row)];
}

Move Batch::TableRows::moveOf(const Outcome &outcome) const
{
    if (const ItemRecord *row = rowOf(outcome))
        return BatchPlan::moveOf(*row, (*newNames)[outcome.row]);
    return outcome.held ? outcome.held->move : Move();
}

std::vector<BatchPlan::RowMove> BatchPlan::movesOf(const std::vector<ItemRecord> &rows, const QStringList &newNames)
{
    std::vector<RowMove> moves;
    for (const int row : plannedRows(rows, newNames))
        moves.push_back({row, moveOf(rows[size_t(row)], newNames[row])});
    return moves;
}

BatchPlan BatchPlan::make(const std::vector<ItemRecord> &rows, const QStringList &newNames, BatchJournal::Kind kind, bool ordered,
                          const SeenFolders *seen)
{
    BatchPlan plan;
    plan.rows = plannedRows(rows, newNames);
    plan.journal.kind = kind;
    TableRowsPlanned planned(rows, newNames, plan.rows);
    Planner(planned, plan, seen).run(ordered);
    for (size_t i = 0; i < plan.outcomes.size(); ++i)
        plan.outcomes[i].row = plan.rows[i];
    return plan;
}
