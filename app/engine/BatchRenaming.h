#pragma once

#include "BatchPlan.h"

#include <QDateTime>
#include <QStringList>
#include <QVariantList>
#include <functional>

class NameComposer;

// The eight entries of a batch request.
struct BatchRequest {
    QVariant word;         // shown in the lower progress line
    QDateTime suppliedDate;
    QString upperText;
    QString lowerFormat;   // takes the row number, the row count and the word
    qint32 prefixChoice = 0;
    qint32 suffixChoice = 0;
    qint32 rowCount = 0;
    bool advanceExcluded = false;

    static BatchRequest fromArray(const QVariantList &entries);
};

// What a batch pass shows while it works.
struct BatchProgress {
    std::function<void(double maximum)> stopIndeterminate;
    std::function<void(double current, double maximum, const QString &upper, const QString &lower)> update;
};

namespace BatchRenaming {

// New table contents: every included row gets its composed name (with
// duplicates numbered), an excluded row its own name. With advanceExcluded
// an excluded row still uses up counter values, in the way it always has:
// the prefix counter becomes the suffix counter plus the prefix increment.
QVariantList makeReplacementNames(NameComposer &composer, const BatchRequest &request, const QVariantList &rows,
                                  const BatchProgress &progress);

// The moves that give the included rows their new names (one per row, in
// row order), each with the row it serves.
struct RowMove {
    int row;
    Batch::Move move;
};
std::vector<RowMove> movesFor(const QVariantList &rows, const QStringList &newNames);

// Missing "creation" or "modification" dates become `date1904`.
QVariantList cleanData(const QVariantList &records, const QDateTime &date1904);

// A tool's standard output and standard error, read together to the end
// and decoded as ASCII. Raises NSInvalidArgumentException when it cannot start.
QString runCommand(const QString &launchPath, const QStringList &arguments);

} // namespace BatchRenaming
