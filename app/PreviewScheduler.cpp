#include "PreviewScheduler.h"

#include "BatchPass.h"
#include "BatchPlan.h"
#include "FileTableModel.h"
#include "GrepPrefetch.h"
#include "RenameEngine.h"
#include "SafeMover.h"

#include <QElapsedTimer>
#include <QThreadPool>

namespace {

// A program that runs for most names but fails for some is told as a
// pattern that does not compile is: where the search field shows it.
QString runFailure(const std::vector<ItemRecord> &rows, const QStringList &failures)
{
    const auto first = std::find_if(failures.cbegin(), failures.cend(), [](const QString &why) { return !why.isEmpty(); });
    if (first == failures.cend())
        return QString();
    const qsizetype count = std::count_if(first, failures.cend(), [](const QString &why) { return !why.isEmpty(); });
    const QString name = rows[size_t(first - failures.cbegin())].name;
    return count == 1 ? QStringLiteral("\"%1\" stays as it is: %2").arg(name, *first)
                      : QStringLiteral("%1 names stay as they are; \"%2\": %3").arg(count).arg(name, *first);
}

} // namespace

PreviewScheduler::PreviewScheduler(RenameEngine &engine, FileTableModel &table, QObject *parent)
    : QObject(parent), m_engine(engine), m_table(table)
{
    connect(&m_table, &QAbstractItemModel::modelReset, this, [this] { ++m_conflictGeneration; });
}

void PreviewScheduler::refresh(const RenameRule &rule, bool advanceExcluded)
{
    const std::shared_ptr<const std::vector<ItemRecord>> rows = m_table.snapshot();
    // A copy of the engine's composer with the rule's counters at their
    // starts: the preview of the first name has already advanced the
    // engine's own once.
    NameComposer copy = m_engine.composer;
    copy.useRule(rule);
    PassRequest request;
    request.prefixChoice = rule.prefix.date;
    request.suffixChoice = rule.suffix.date;
    request.supplied = QDateTime::currentDateTime();
    request.advanceExcluded = advanceExcluded;
    const bool grep = rule.searchesByGrep();
    const quint64 generation = ++m_generation;
    if (!grep)
        emit patternChecked(QString());
    if (rows->empty() && !grep)
        return;
    QElapsedTimer clock;
    clock.start();
    if (!grep && rows->size() <= size_t(immediateRows)) {
        copy.baseNameCache = m_bases; // this thread's own, kept between keystrokes
        const Composed composed = RenameEngine::composeTable(copy, *rows, request, m_engine.dates);
        m_table.setNewNames(composed.names, composed.warnings);
        lastInBackground = false;
        emit applied();
        lastMs = clock.elapsed(); // with what the new names set off
        return;
    }
    lastInBackground = true;
    QThreadPool::globalInstance()->start([this, copy, rows, request, generation, grep, clock]() mutable {
        if (generation != m_generation)
            return; // already stale
        QString patternError = grep ? GrepPrefetch::patternError(copy.rule) : QString();
        const Composed composed = RenameEngine::composeTable(copy, *rows, request, m_engine.dates);
        if (patternError.isEmpty())
            patternError = runFailure(*rows, composed.grepFailures);
        const QStringList names = composed.names;
        const QStringList warnings = composed.warnings;
        QMetaObject::invokeMethod(this, [this, names, warnings, patternError, grep, generation, clock] {
            if (generation != m_generation)
                return; // the rules changed again meanwhile
            if (grep)
                emit patternChecked(patternError);
            if (names.isEmpty())
                return;
            m_table.setNewNames(names, warnings);
            lastMs = clock.elapsed();
            emit applied();
        }, Qt::QueuedConnection);
    });
}

void PreviewScheduler::checkConflicts()
{
    const std::shared_ptr<const std::vector<ItemRecord>> rows = m_table.snapshot();
    const bool previewed = m_table.hasPreviewedNames();
    QStringList names = m_table.previewedNames();
    const QStringList composing = previewed ? m_table.composingWarnings() : QStringList();
    const quint64 generation = ++m_conflictGeneration;
    // The check looks at the disk for every row: aside, so typing never waits.
    QThreadPool::globalInstance()->start([this, rows, names, composing, previewed, generation]() mutable {
        if (generation != m_conflictGeneration)
            return; // already stale
        // Without a preview the rows' own new names count; a row with none
        // yet keeps its name.
        if (!previewed)
            for (const ItemRecord &row : *rows)
                names.append(row.newName.isEmpty() ? row.name : row.newName);
        const BatchPlan plan = BatchPlan::make(*rows, names, BatchJournal::Kind::Apply, false);
        QStringList reasons(qsizetype(rows->size()));
        QStringList warnings(qsizetype(rows->size()));
        for (size_t i = 0; i < plan.outcomes.size(); ++i) {
            if (plan.outcomes[i].status == SafeMover::Status::Conflict)
                reasons[plan.rows[i]] = plan.outcomes[i].reason;
            warnings[plan.rows[i]] = plan.outcomes[i].warning;
        }
        // What the names were made without ("no lens recorded") comes first.
        for (qsizetype row = 0; row < composing.size() && row < warnings.size(); ++row)
            if (!composing[row].isEmpty())
                warnings[row] = warnings[row].isEmpty() ? composing[row] : composing[row] + QStringLiteral("; ") + warnings[row];
        QMetaObject::invokeMethod(this, [this, reasons, warnings, generation] {
            if (generation != m_conflictGeneration || size_t(reasons.size()) != m_table.rows().size())
                return; // the names or the rows changed meanwhile
            m_table.setConflicts(reasons);
            m_table.setWarnings(warnings);
            emit conflictsMarked();
        }, Qt::QueuedConnection);
    });
}
