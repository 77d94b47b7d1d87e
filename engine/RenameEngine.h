#pragma once

#include "BatchPass.h"
#include "ClampedDates.h"
#include "FolderListing.h"
#include "NameComposer.h"

#include <QDateTime>
#include <atomic>

// The rename engine's state apart from any window: the composer with its
// rule, counters and duplicate list, the fixed dates and the localized
// texts. Tests, the command line, scripts and the window drive it alike.
class RenameEngine {
public:
    RenameEngine();

    NameComposer composer;
    bool previewsAsTyped = true;
    bool readsDatesTaken = false;
    // What the window's columns show of what files say, read with a listing
    // beside what the rule's tokens ask.
    Metadata::Request columnsRequest;
    std::atomic<bool> stop{true}; // a listing's Stop; may be set from another thread
    QString sampleName;
    QString localTimeZone;
    ClampedDates dates; // date1904, date1970, date1970GMT, date2040

    const RenameRule &rule() const { return composer.rule; }
    void useRule(const RenameRule &rule) { composer.useRule(rule); }

    // The new names of a table's rows by this composer's rule: the GREP
    // answers of all the names worked out in one exchange with Perl, then
    // the one batch pass. The window, its preview and the command line all
    // compose this way.
    static Composed composeTable(NameComposer &composer, const std::vector<ItemRecord> &rows, const PassRequest &request,
                                 const ClampedDates &dates);
    Composed composeTable(const std::vector<ItemRecord> &rows, const PassRequest &request)
    {
        return composeTable(composer, rows, request, dates);
    }
    // Before composing names one at a time (a script's batch pass): their
    // GREP answers worked out in one exchange.
    void prefetchGrep(const QStringList &names);
    // What a listing reads of each file: its date taken when chosen, the
    // values the rule's tokens and the columns ask for.
    Metadata::Request metadataRequest() const;
    // A listing that reads dates as the engine is set to (dates taken when
    // chosen), and what the rule and the columns ask of each file.
    FolderListing listing();
};
