#include "ScriptRequests.h"

#include "DictionaryAdditions.h"
#include "NamedException.h"

namespace ScriptRequests {

namespace {

// A number or text read as an integer and as a yes or no.
qint32 intValueOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return DictionaryAdditions::intValue(value.toString());
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return qint32(static_cast<long long>(value.toDouble()));
    return qint32(value.toLongLong());
}

bool boolValueOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        return DictionaryAdditions::intValue(text) != 0 || text.startsWith(u'y', Qt::CaseInsensitive)
               || text.startsWith(u't', Qt::CaseInsensitive);
    }
    return intValueOf(value) != 0 || (value.typeId() == QMetaType::Double && value.toDouble() != 0);
}

RenameRule::Part partFrom(const QVariantList &e, int first)
{
    RenameRule::Part part;
    part.text = e[first].toString();
    part.start = intValueOf(e[first + 1]);
    part.step = intValueOf(e[first + 2]);
    part.leadingZeros = boolValueOf(e[first + 3]);
    part.digits = intValueOf(e[first + 4]);
    return part;
}

// A case named exactly; any other name (or the change off) leaves the case.
std::optional<RenameRule::Case> caseFrom(const QVariant &change, const QVariant &name)
{
    return boolValueOf(change) ? RenameRule::caseNamed(name.toString()) : std::nullopt;
}

QVariant dateOf(qint64 milliseconds, std::optional<qint32> offset, const ClampedDates &dates)
{
    return dates.toDateTime(milliseconds, offset);
}

} // namespace

RenameRule ruleFromSettings(const QVariantList &e)
{
    if (e.size() < SettingsCount)
        throw arrayIndexBeyondBounds(e.size(), e.size());
    RenameRule rule = RenameRule::blank();
    rule.prefix = partFrom(e, 0);
    rule.includeOriginal = boolValueOf(e[5]);
    rule.search = e[6].toString();
    rule.replace = e[7].toString();
    rule.searchKind = e[8].toString() == QLatin1String("GREP") ? RenameRule::Search::Grep : RenameRule::Search::Literal;
    rule.considerCase = boolValueOf(e[9]);
    rule.trimStart = intValueOf(e[10]);
    rule.trimEnd = intValueOf(e[11]);
    rule.nameCase = caseFrom(e[12], e[13]);
    rule.stripAccents = boolValueOf(e[14]);
    rule.suffix = partFrom(e, 15);
    if (boolValueOf(e[21]))
        rule.newExtension = e[20].toString();
    rule.extensionCase = caseFrom(e[22], e[23]);
    return rule;
}

CompositionRequest compositionRequest(const QVariantList &e)
{
    CompositionRequest request;
    request.name = e.value(0).toString();
    request.rowCount = qint32(e.value(1).toLongLong());
    request.numberDuplicates = e.value(2).toBool();
    request.location = e.value(3).toString();
    request.prefixDate = e.value(4).toDateTime();
    request.suffixDate = e.value(5).toDateTime();
    return request;
}

ListingRequest listingRequest(const QVariantList &e)
{
    ListingRequest request;
    request.paths = e.value(0).toStringList();
    request.typeCodes = e.value(1).toStringList();
    request.extensions = e.value(2).toStringList();
    request.longNames = e.value(3).toBool();
    request.descend = e.value(4).toBool();
    request.folderRows = e.value(5).toBool();
    request.listUnmatched = e.value(6).toBool();
    request.honourStop = e.value(7).toBool();
    request.root = e.value(8).toString();
    return request;
}

BatchRequest batchRequest(const QVariantList &e)
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

QVariantMap fileInfo(const FolderListing::ItemInfo &info, const ClampedDates &dates)
{
    return {{QStringLiteral("the_extension"), info.extension},
            {QStringLiteral("type_code"), QVariant::fromValue(info.typeCode)},
            {QStringLiteral("creation"), dateOf(info.created, info.createdOffset, dates)},
            {QStringLiteral("modification"), dateOf(info.modified, std::nullopt, dates)},
            {QStringLiteral("file_size"), QVariant::fromValue(qulonglong(info.size))}};
}

QVariantMap folderInfo(const FolderListing::ItemInfo &info, const ClampedDates &dates)
{
    return {{QStringLiteral("creation"), dateOf(info.created, std::nullopt, dates)},
            {QStringLiteral("modification"), dateOf(info.modified, std::nullopt, dates)}};
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

} // namespace ScriptRequests
