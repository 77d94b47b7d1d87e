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
    RenameSettings &settings = composer.settings;
    settings._prefix_date_to_use = request.prefixChoice;
    settings._suffix_date_to_use = request.suffixChoice;
    // A date is worked out for a row only where a text can show it.
    const bool prefixDated = settings._prefix.contains(u'«');
    const bool suffixDated = settings._suffix.contains(u'«');
    QStringList names;
    names.reserve(count);
    if (failures) {
        failures->clear();
        failures->resize(count);
    }
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
                if (failures)
                    (*failures)[n] = composer.lastFailure;
            }
            continue;
        }
        names.append(row.name);
        if (request.advanceExcluded) {
            settings._prefix_start_num = settings._suffix_start_num + settings._prefix_ai_counter;
            settings._suffix_start_num += settings._suffix_ai_counter;
        }
    }
    return names;
}

} // namespace BatchPass
