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

QString missingWarning(const QStringList &tokens)
{
    QStringList said;
    for (const QString &token : tokens)
        said.append(Metadata::missingText(token));
    return said.join(QStringLiteral("; "));
}

Composed newNames(NameComposer &composer, const std::vector<ItemRecord> &rows, const PassRequest &request,
                  const ClampedDates &dates)
{
    const qint32 count = request.rowCount < 0 ? qint32(rows.size()) : std::min(request.rowCount, qint32(rows.size()));
    composer.duplicate_check_list.clear();
    composer.duplicate_check_list.reserve(count);
    const RenameRule &rule = composer.rule;
    // A date is worked out for a row only where a text can show it.
    const bool prefixDated = rule.prefix.text.contains(u'«');
    const bool suffixDated = rule.suffix.text.contains(u'«');
    Composed composed;
    QStringList &names = composed.names;
    names.reserve(count);
    // One entry per row once the first row has one.
    const auto note = [count](QStringList &list, qint32 row, const QString &text) {
        if (list.isEmpty())
            list.resize(count);
        list[row] = text;
    };
    for (qint32 n = 0; n < count; ++n) {
        if (request.progress)
            request.progress(n + 1, count);
        const ItemRecord &row = rows[size_t(n)];
        if (row.include) {
            const QString name = composer.generateNewName(
                {row.name, request.rowCount < 0 ? count : request.rowCount, true, row.location,
                 prefixDated ? dateFor(request.prefixChoice, request.supplied, row, dates) : QDateTime(),
                 suffixDated ? dateFor(request.suffixChoice, request.supplied, row, dates) : QDateTime(),
                 row.metadata.get()});
            // Half a rule is not what was asked for: the row stays as it is.
            if (composer.lastFailure.isEmpty()) {
                names.append(name);
                if (!composer.lastMissing.isEmpty())
                    note(composed.warnings, n, missingWarning(composer.lastMissing));
            } else {
                names.append(row.name);
                note(composed.grepFailures, n, composer.lastFailure);
            }
            continue;
        }
        names.append(row.name);
        if (request.advanceExcluded) {
            composer.prefixCounter = composer.suffixCounter + rule.prefix.step;
            composer.suffixCounter += rule.suffix.step;
        }
    }
    return composed;
}

} // namespace BatchPass
