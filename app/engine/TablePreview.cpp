#include "TablePreview.h"

#include "BatchRenaming.h"
#include "GrepPrefetch.h"

namespace TablePreview {

// The batch pass's names, without building its records: what it composes
// for included rows, and the original name for the others.
QStringList newNames(NameComposer composer, const QVariantList &rows, qint32 prefixChoice, qint32 suffixChoice,
                     const QDateTime &supplied)
{
    composer.duplicate_check_list.clear();
    composer.duplicate_check_list.reserve(rows.size());
    const qint32 count = qint32(rows.size());
    auto dateFor = [&supplied](qint32 choice, const QVariantMap &row) {
        return choice == 1   ? supplied
               : choice == 2 ? row.value(QStringLiteral("creation")).toDateTime()
               : choice == 3 ? row.value(QStringLiteral("modification")).toDateTime()
                             : QDateTime();
    };
    QStringList names;
    names.reserve(rows.size());
    for (const QVariant &value : rows) {
        const QVariantMap row = value.toMap();
        const QString original = row.value(QStringLiteral("original")).toString();
        if (!row.value(QStringLiteral("include")).toBool()) {
            names.append(original);
            continue;
        }
        names.append(composer.generateNewName({original, count, true, row.value(QStringLiteral("location")).toString(),
                                               dateFor(prefixChoice, row), dateFor(suffixChoice, row)}));
    }
    return names;
}

NameComposer::GrepReplace prefetchedGrep(const RenameSettings &settings, const QVariantList &rows)
{
    QStringList names;
    names.reserve(rows.size());
    for (const QVariant &row : rows)
        names.append(row.toMap().value(QStringLiteral("original")).toString());
    return GrepPrefetch::replacementFor(settings, names);
}

} // namespace TablePreview
