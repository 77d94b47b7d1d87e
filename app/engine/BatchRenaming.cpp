#include "BatchRenaming.h"

#include "ChildOutput.h"
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

std::vector<RowMove> movesFor(const std::vector<ItemRecord> &rows, const QStringList &newNames)
{
    std::vector<RowMove> moves;
    for (size_t i = 0; i < rows.size() && qsizetype(i) < newNames.size(); ++i) {
        const ItemRecord &row = rows[i];
        if (!row.include)
            continue;
        moves.push_back({int(i), {row.path(), row.location + newNames[qsizetype(i)]}});
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
