#include "BatchRenaming.h"

#include "ChildOutput.h"
#include "FormatString.h"
#include "NameComposer.h"
#include "NamedException.h"

#include <cstring>

BatchRequest BatchRequest::fromArray(const QVariantList &e)
{
    BatchRequest request;
    request.word = e.value(0);
    request.suppliedDate = e.value(1).toDateTime();
    request.upperText = e.value(2).toString();
    request.lowerFormat = e.value(3).toString();
    request.prefixChoice = qint32(e.value(4).toLongLong());
    request.suffixChoice = qint32(e.value(5).toLongLong());
    request.rowCount = qint32(e.value(6).toLongLong());
    request.advanceExcluded = e.value(7).toBool();
    return request;
}

namespace BatchRenaming {

namespace {

QDateTime dateFor(qint32 choice, const QDateTime &supplied, const QVariantMap &row)
{
    switch (choice) {
    case 1:
        return supplied;
    case 2:
        return row.value(QStringLiteral("creation")).toDateTime();
    case 3:
        return row.value(QStringLiteral("modification")).toDateTime();
    default:
        return QDateTime();
    }
}

} // namespace

QVariantList makeReplacementNames(NameComposer &composer, const BatchRequest &request, const QVariantList &rows,
                                  const BatchProgress &progress)
{
    composer.duplicate_check_list.clear();
    composer.duplicate_check_list.reserve(rows.size());
    composer.settings._prefix_date_to_use = request.prefixChoice;
    composer.settings._suffix_date_to_use = request.suffixChoice;
    const double count = request.rowCount;
    if (progress.stopIndeterminate)
        progress.stopIndeterminate(count);
    QVariantList records;
    // No stop check: a pass always covers every row.
    for (double n = 1; n <= count; ++n) {
        const qsizetype index = qsizetype(n) - 1;
        const QVariantMap row = rows.value(index).toMap();
        if (progress.update)
            progress.update(n, count, request.upperText,
                            FormatString::apply(request.lowerFormat, {qlonglong(n), qlonglong(count), request.word}));
        const QString original = row.value(QStringLiteral("original")).toString();
        const bool included = row.value(QStringLiteral("include")).toBool();
        QString newName = original;
        if (included) {
            newName = composer.generateNewName({original, request.rowCount, true, row.value(QStringLiteral("location")).toString(),
                                                dateFor(request.prefixChoice, request.suppliedDate, row),
                                                dateFor(request.suffixChoice, request.suppliedDate, row)});
        } else if (request.advanceExcluded) {
            RenameSettings &s = composer.settings;
            s._prefix_start_num = s._suffix_start_num + s._prefix_ai_counter;
            s._suffix_start_num += s._suffix_ai_counter;
        }
        records.append(QVariantMap{{QStringLiteral("include"), row.value(QStringLiteral("include"))},
                                   {QStringLiteral("original"), original},
                                   {QStringLiteral("location"), row.value(QStringLiteral("location"))},
                                   {QStringLiteral("creation"), row.value(QStringLiteral("creation"))},
                                   {QStringLiteral("modification"), row.value(QStringLiteral("modification"))},
                                   {QStringLiteral("size"), row.value(QStringLiteral("size"))},
                                   {QStringLiteral("new"), newName}});
    }
    return records;
}

std::vector<RowMove> movesFor(const QVariantList &rows, const QStringList &newNames)
{
    std::vector<RowMove> moves;
    for (qsizetype i = 0; i < rows.size() && i < newNames.size(); ++i) {
        const QVariantMap record = rows[i].toMap();
        if (!record.value(QStringLiteral("include")).toBool())
            continue;
        const QString location = record.value(QStringLiteral("location")).toString();
        moves.push_back({int(i), {location + record.value(QStringLiteral("original")).toString(), location + newNames[i]}});
    }
    return moves;
}

QVariantList cleanData(const QVariantList &records, const QDateTime &date1904)
{
    QVariantList cleaned;
    for (const QVariant &record : records) {
        QVariantMap copy = record.toMap();
        for (const QString &key : {QStringLiteral("creation"), QStringLiteral("modification")})
            if (!copy.value(key).isValid() || copy.value(key).isNull())
                copy.insert(key, date1904);
        cleaned.append(copy);
    }
    return cleaned;
}

QString runCommand(const QString &launchPath, const QStringList &arguments)
{
    const ChildOutput tool = ChildOutput::read(launchPath, arguments, true);
    if (tool.launchError != 0)
        throw NamedException(NSInvalidArgumentException, QStringLiteral("launch path not accessible: %1: %2")
                                                              .arg(launchPath, QString::fromLocal8Bit(strerror(tool.launchError))));
    // Not waited for: the end of its output ends the call.
    tool.reapAside();
    return QString::fromLatin1(tool.output);
}

} // namespace BatchRenaming
