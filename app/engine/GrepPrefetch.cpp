#include "GrepPrefetch.h"

#include "GrepReplace.h"
#include "PathCodec.h"
#include "PerlWorker.h"

#include <QHash>
#include <QRegularExpression>
#include <memory>

namespace GrepPrefetch {

NameComposer::GrepReplace replacementFor(const RenameSettings &settings, const QStringList &names)
{
    auto answers = std::make_shared<QHash<QByteArray, std::optional<QByteArray>>>();
    const bool grep = settings._search_type_1 == QLatin1String("GREP") && !settings._filename_search_1.isEmpty()
                      && settings._inc_original_name;
    if (grep && !names.isEmpty()) {
        std::vector<QByteArray> programs;
        programs.reserve(size_t(names.size()));
        for (const QString &name : names)
            programs.push_back(PathCodec::encode(GrepReplace::program(NameComposer::baseNameOf(name), settings._filename_search_1,
                                                                      settings._filename_replace_1,
                                                                      settings._snr_consider_case_1)));
        const auto printed = PerlWorker::shared().runAll(programs);
        for (size_t i = 0; i < programs.size(); ++i)
            answers->insert(programs[i], printed[i]);
    }
    // Bytes to Perl and back through the path codec: a name that is not
    // UTF-8 keeps its bytes.
    return [answers](const QString &text, const QString &pattern, const QString &replacement, bool consideringCase) {
        const QByteArray program = PathCodec::encode(GrepReplace::program(text, pattern, replacement, consideringCase));
        const auto known = answers->constFind(program);
        const std::optional<QByteArray> answer = known != answers->constEnd() ? *known : PerlWorker::shared().run(program);
        return answer ? PathCodec::decode(*answer) : text;
    };
}

QString patternError(const RenameSettings &settings)
{
    if (settings._search_type_1 != QLatin1String("GREP") || settings._filename_search_1.isEmpty())
        return QString();
    const std::optional<QByteArray> failure = PerlWorker::shared().failureOf(PathCodec::encode(GrepReplace::program(
        QString(), settings._filename_search_1, settings._filename_replace_1, settings._snr_consider_case_1)));
    if (!failure)
        return QString();
    // The first line, without where in the worker's program it was found.
    QString message = PathCodec::decode(failure->left(failure->indexOf('\n') < 0 ? failure->size() : failure->indexOf('\n')));
    static const QRegularExpression where(QStringLiteral("\\s+at \\(eval \\d+\\) line \\d+\\.?$"));
    message.remove(where);
    return message.trimmed();
}

} // namespace GrepPrefetch
