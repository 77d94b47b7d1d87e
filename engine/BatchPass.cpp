#include "BatchPass.h"

namespace BatchPass {

QDateTime dateFor(qint32 choice, const QDateTime &supplied, const ItemRecord &row, const ClampedDates &dates)
{
    const auto stored = [&](qint64 milliseconds, std::optional<qint32> offset) {
        return milliseconds == ItemRecord::NoDate ? QDateTime() : dates.toDateTime(milliseconds, offset);
    };
    switch (choice) {
    case 1:
        return supplied;
    case 2:
        return stored(row.created, row.takenOffset());
    case 3:
        return stored(row.modified, std::nullopt);
    default:
        return QDateTime();
    }
}

QStringList newNames(NameComposer &composer, const std::vector<ItemRecord> &rows, const PassRequest &request,
                     const ClampedDates &dates, QStringList *failures)
{
    const qint32 count = request.rowCount < 0 ? qint32(rows.size()) : std::min(request.rowCount, qint32(rows.size()));
    composer.duplicate_check_list.clear();
    composer.duplicate_check_list.reserve(count);
    const RenameRule &rule = composer.rule;
    // A date is worked out for a row only where a text can show it.
    const bool prefixDated = rule.prefix.text.contains(u'«');
    const bool suffixDated = rule.suffix.text.contains(u'«');
    QStringList names;
    names.reserve(count);
    if (failures)
        failures->clear();
    for (qint32 n = 0; n < count; ++n) {
        if (request.progress)
            request.progress(n + 1, count);
        const ItemRecord &row = rows[size_t(n)];
        if (row.include) {
            const QString composed = composer.generateNewName(
                {row.name, request.rowCount < 0 ? count : request.rowCount, true, row.location,
                 prefixDated ? dateFor(request.prefixChoice, request.supplied, row, dates) : QDateTime(),
                 suffixDated ? dateFor(request.suffixChoice, request.supplied, row, dates) : QDateTime()});
            // Half a rule is not what was asked for: the row stays as it is.
            if (composer.lastFailure.isEmpty()) {
                names.append(composed);
            } else {
                names.append(row.name);
                if (failures) {
                    if (failures->isEmpty())
                        failures->resize(count);
                    (*failures)[n] = composer.lastFailure;
                }
            }
            continue;
        }
        names.append(row.name);
        if (request.advanceExcluded) {
            composer.prefixCounter = composer.suffixCounter + rule.prefix.step;
            composer.suffixCounter += rule.suffix.step;
        }
    }
    return names;
}

} // namespace BatchPass
