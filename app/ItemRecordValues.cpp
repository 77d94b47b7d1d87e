#include "ItemRecordValues.h"

#include "DictionaryAdditions.h"

namespace ItemRecordValues {

namespace {

const QString Include = QStringLiteral("include");
const QString Original = QStringLiteral("original");
const QString Location = QStringLiteral("location");
const QString Creation = QStringLiteral("creation");
const QString Modification = QStringLiteral("modification");
const QString Size = QStringLiteral("size");
const QString New = QStringLiteral("new");

qint64 millisecondsOf(const QVariant &value)
{
    return value.typeId() == QMetaType::QDateTime && value.toDateTime().isValid() ? value.toDateTime().toMSecsSinceEpoch()
                                                                                   : ItemRecord::NoDate;
}

} // namespace

QVariant field(const ItemRecord &record, const QString &identifier, const ClampedDates &dates)
{
    if (identifier == Include)
        return record.include;
    if (identifier == Original)
        return record.name;
    if (identifier == Location)
        return record.location;
    if (identifier == Creation || identifier == Modification) {
        const qint64 date = identifier == Creation ? record.created : record.modified;
        const std::optional<qint32> offset = identifier == Creation ? record.takenOffset() : std::nullopt;
        return date == ItemRecord::NoDate ? QVariant() : QVariant(dates.toDateTime(date, offset));
    }
    if (identifier == Size)
        return record.size ? QVariant::fromValue(qulonglong(*record.size)) : QVariant(QStringLiteral("-"));
    if (identifier == New)
        return record.newName;
    return QVariant();
}

bool setField(ItemRecord &record, const QString &identifier, const QVariant &value)
{
    if (identifier == Include)
        record.include = value.toBool();
    else if (identifier == Original)
        record.name = value.toString();
    else if (identifier == Location)
        record.location = value.toString();
    else if (identifier == Creation) {
        record.created = millisecondsOf(value);
        const bool taken = value.typeId() == QMetaType::QDateTime && value.toDateTime().timeSpec() == Qt::OffsetFromUTC;
        record.createdOffset = taken ? value.toDateTime().offsetFromUtc() : ItemRecord::NoOffset;
    }
    else if (identifier == Modification)
        record.modified = millisecondsOf(value);
    else if (identifier == Size)
        record.size = DictionaryAdditions::isNumber(value) ? std::optional(quint64(value.toULongLong())) : std::nullopt;
    else if (identifier == New)
        record.newName = value.toString();
    else
        return false;
    return true;
}

QVariantMap toScript(const ItemRecord &record, const ClampedDates &dates)
{
    QVariantMap map;
    for (const QString &key : {Include, Original, Location, Creation, Modification, Size, New})
        if (const QVariant value = field(record, key, dates); value.isValid())
            map.insert(key, value);
    return map;
}

QVariantList toScript(const std::vector<ItemRecord> &records, const ClampedDates &dates)
{
    QVariantList list;
    list.reserve(qsizetype(records.size()));
    for (const ItemRecord &record : records)
        list.append(toScript(record, dates));
    return list;
}

QVariant toScript(const Listing &listing, const ClampedDates &dates)
{
    if (listing.stopped)
        return false;
    QVariantList list;
    list.reserve(qsizetype(listing.items.size() + listing.stoppedInside.size()));
    auto stop = listing.stoppedInside.cbegin();
    for (size_t i = 0; i <= listing.items.size(); ++i) {
        for (; stop != listing.stoppedInside.cend() && *stop == i; ++stop)
            list.append(false);
        if (i < listing.items.size())
            list.append(toScript(listing.items[i], dates));
    }
    return list;
}

std::vector<ItemRecord> fromScript(const QVariantList &rows)
{
    std::vector<ItemRecord> records;
    records.reserve(size_t(rows.size()));
    for (const QVariant &row : rows) {
        if (row.typeId() != QMetaType::QVariantMap)
            continue;
        const QVariantMap map = row.toMap();
        ItemRecord record;
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
            setField(record, entry.key(), entry.value());
        record.include = map.value(Include).toBool();
        records.push_back(std::move(record));
    }
    return records;
}

} // namespace ItemRecordValues
