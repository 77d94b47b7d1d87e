#include "GrepPrefetch.h"

#include "GrepReplace.h"
#include "PerlWorker.h"

#include <QHash>
#include <memory>

namespace GrepPrefetch {

namespace {

using Answers = QHash<QString, PerlWorker::Answer>;

NameComposer::GrepResult resultOf(const QString &text, const PerlWorker::Answer &answer)
{
    return answer.output ? NameComposer::GrepResult{*answer.output, {}} : NameComposer::GrepResult{text, answer.failure};
}

} // namespace

NameComposer::GrepReplace replacementFor(const RenameRule &rule, const QStringList &names)
{
    auto answers = std::make_shared<Answers>();
    if (rule.searchesByGrep() && rule.includeOriginal && !names.isEmpty()) {
        QStringList programs;
        programs.reserve(names.size());
        for (const QString &name : names)
            programs.append(GrepReplace::program(NameComposer::baseNameOf(name), rule.search, rule.replace,
                                                 rule.considerCase));
        std::vector<PerlWorker::Answer> printed = PerlWorker::shared().answersOf(programs);
        for (qsizetype i = 0; i < programs.size(); ++i)
            answers->insert(programs[i], std::move(printed[size_t(i)]));
    }
    return [answers](const QString &text, const QString &pattern, const QString &replacement, bool consideringCase) {
        const QString program = GrepReplace::program(text, pattern, replacement, consideringCase);
        const auto known = answers->constFind(program);
        if (known != answers->constEnd())
            return resultOf(text, *known);
        return resultOf(text, PerlWorker::shared().answersOf({program}).front());
    };
}

QString patternError(const RenameRule &rule)
{
    if (!rule.searchesByGrep())
        return QString();
    return PerlWorker::shared()
        .failureOf(GrepReplace::program(QString(), rule.search, rule.replace, rule.considerCase))
        .value_or(QString());
}

} // namespace GrepPrefetch
