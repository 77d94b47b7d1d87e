#pragma once

#include "BatchPlan.h"
#include "ItemRecord.h"

#include <QDateTime>
#include <QStringList>
#include <QVariantList>
#include <vector>

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

namespace BatchRenaming {

// The moves that give the included rows their new names (one per included
// row, in row order), each with the row it serves.
struct RowMove {
    int row;
    Batch::Move move;
};
std::vector<RowMove> movesFor(const std::vector<ItemRecord> &rows, const QStringList &newNames);

// Missing "creation" or "modification" dates become `date1904`.
QVariantList cleanData(const QVariantList &records, const QDateTime &date1904);

// A tool's standard output and standard error, read together to the end
// and decoded as ASCII. Raises NSInvalidArgumentException when it cannot start.
QString runCommand(const QString &launchPath, const QStringList &arguments);

} // namespace BatchRenaming
