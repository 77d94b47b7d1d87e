#include "TablePreview.h"

#include "BatchRenaming.h"
#include "GrepReplace.h"
#include "PathCodec.h"
#include "PerlWorker.h"

#include <QHash>
#include <memory>

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
    std::vector<QByteArray> programs;
    QStringList texts;
    for (const QVariant &row : rows) {
        const QString base = NameComposer::baseNameOf(row.toMap().value(QStringLiteral("original")).toString());
        programs.push_back(PathCodec::encode(GrepReplace::program(base, settings._filename_search_1, settings._filename_replace_1,
                                                settings._snr_consider_case_1)));
    }
    auto answers = std::make_shared<QHash<QByteArray, std::optional<QByteArray>>>();
    const auto printed = PerlWorker::shared().runAll(programs);
    for (size_t i = 0; i < programs.size(); ++i)
        answers->insert(programs[i], printed[i]);
    return [answers](const QString &text, const QString &pattern, const QString &replacement, bool consideringCase) {
        const QByteArray program = PathCodec::encode(GrepReplace::program(text, pattern, replacement, consideringCase));
        auto known = answers->constFind(program);
        const std::optional<QByteArray> answer =
            known != answers->constEnd() ? *known : PerlWorker::shared().run(program);
        return answer ? PathCodec::decode(*answer) : text;
    };
}

} // namespace TablePreview
