#pragma once

#include "ClampedDates.h"
#include "ItemRecord.h"
#include "NameComposer.h"

#include <QDateTime>
#include <QStringList>
#include <functional>
#include <vector>

// What a batch pass is asked: the date choices (1 the supplied date, 2 the
// row's creation date, 3 its modification date, otherwise none), how many
// rows it covers, and whether excluded rows use up counter values.
struct PassRequest {
    qint32 prefixChoice = 0;
    qint32 suffixChoice = 0;
    QDateTime supplied;
    qint32 rowCount = -1; // -1: every row
    bool advanceExcluded = false;
    // Told before each row, with its number (from 1) and the rows covered.
    std::function<void(qint32 row, qint32 count)> progress;
};

// A table's new names, one per covered row; why each row's GREP program
// failed ("" for none; such a row keeps its own name); and which of its
// tokens its file recorded no value for ("no lens recorded"; the name is
// given without it). Each list has no entries at all when no row has one.
struct Composed {
    QStringList names;
    QStringList grepFailures;
    QStringList warnings;
};

// The one batch pass, for the table preview as the user types and for the
// names a rename uses: every covered row's new name, an included row's
// composed (duplicates numbered), an excluded row's its own. With
// advanceExcluded an excluded row still uses up counter values, and the
// prefix counter then becomes the suffix counter plus the prefix increment.
// The pass starts a new duplicate list but not new counters. A row whose
// GREP program fails keeps its own name (why, in Perl's words, goes into
// `grepFailures`); a token whose file recorded no value is left empty
// (`warnings` says which).
namespace BatchPass {

Composed newNames(NameComposer &composer, const std::vector<ItemRecord> &rows, const PassRequest &request,
                  const ClampedDates &dates);

// The words a row's missing values are told in: "no lens recorded".
QString missingWarning(const QStringList &tokens);

QDateTime dateFor(qint32 choice, const QDateTime &supplied, const ItemRecord &row, const ClampedDates &dates);

} // namespace BatchPass
