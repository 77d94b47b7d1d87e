#pragma once

#include "NameComposer.h"

#include <QObject>
#include <QVariantList>
#include <atomic>
#include <memory>

class FileTableModel;
class RenameEngine;

// Keeps the table's new names following the rule as the user types, through
// the batch pass on a copy of the composer (the engine's own counters and
// duplicate list stay as they are). Tables up to immediateRows are worked
// out at once; larger ones and GREP rules aside, so typing never waits.
// After each preview the rows whose names cannot be given are marked,
// worked out aside.
class PreviewScheduler : public QObject {
    Q_OBJECT
public:
    PreviewScheduler(RenameEngine &engine, FileTableModel &table, QObject *parent = nullptr);

    // The rule's 24 entries as the controls gave them, and whether excluded
    // rows use up counter values (as the batch pass was last asked).
    void refresh(const RenameRule &rule, bool advanceExcluded);
    void checkConflicts();

    // How long the last preview took, and whether it ran aside.
    qint64 lastMs = 0;
    bool lastInBackground = false;
    // Within about a frame on the machine this was measured on.
    int immediateRows = 10000;

signals:
    void applied();
    void conflictsMarked();
    // Why the rule's GREP pattern cannot run ("" when it can, or when the
    // rule has none), after each refresh.
    void patternChecked(const QString &error);

private:
    RenameEngine &m_engine;
    FileTableModel &m_table;
    // Read by work aside to give up when it is stale.
    std::atomic<quint64> m_generation{0};
    std::atomic<quint64> m_conflictGeneration{0};
    std::shared_ptr<NameComposer::BaseNameCache> m_bases = std::make_shared<NameComposer::BaseNameCache>();
};
