// Composing 10,000 names with a literal rule and with a GREP rule, beside
// spawning /usr/bin/perl -e for the same 10,000 GREP programs.

#include "GrepReplace.h"
#include "RenameEngine.h"

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>

extern char **environ;

namespace {

constexpr int nameCount = 10000;

QStringList names()
{
    QStringList list;
    for (int i = 0; i < nameCount; ++i)
        list.append(QStringLiteral("IMG_%1 crème brûlée.JPG").arg(i, 5, 10, QLatin1Char('0')));
    return list;
}

RenameEngine &engine()
{
    static RenameEngine shared;
    return shared;
}

RenameRule ruleFor(bool grep)
{
    RenameRule rule = RenameRule::blank();
    rule.prefix.text = QStringLiteral("«#»_");
    rule.prefix.start = 1;
    rule.prefix.step = 1;
    rule.includeOriginal = true;
    rule.searchKind = grep ? RenameRule::Search::Grep : RenameRule::Search::Literal;
    rule.search = grep ? QStringLiteral("IMG_(\\d+)") : QStringLiteral("IMG_");
    rule.replace = grep ? QStringLiteral("Photo $1") : QStringLiteral("Photo ");
    rule.nameCase = RenameRule::Case::Title;
    rule.stripAccents = true;
    return rule;
}

void compose(benchmark::State &state, bool grep)
{
    const QStringList list = names();
    RenameEngine &e = engine();
    for (auto _ : state) {
        // As a batch pass does: the rule, an empty duplicate list, and the
        // GREP answers for all names in one exchange.
        e.useRule(ruleFor(grep));
        e.composer.duplicate_check_list.clear();
        e.prefetchGrep(list);
        for (const QString &name : list)
            benchmark::DoNotOptimize(e.composer.generateNewName({name, nameCount, true, QStringLiteral("/photos/"), {}, {}}));
    }
    state.SetItemsProcessed(state.iterations() * list.size());
}

void ComposeLiteral(benchmark::State &state)
{
    compose(state, false);
}

void ComposeGrep(benchmark::State &state)
{
    compose(state, true);
}

void SpawnPerlForEachName(benchmark::State &state)
{
    const QStringList list = names();
    for (auto _ : state) {
        for (const QString &name : list) {
            QByteArray program =
                GrepReplace::program(name.section(u'.', 0, 0), QStringLiteral("IMG_(\\d+)"), QStringLiteral("Photo $1"), false)
                    .toUtf8();
            char perl[] = "/usr/bin/perl";
            char flag[] = "-e";
            char *argv[] = {perl, flag, program.data(), nullptr};
            posix_spawn_file_actions_t actions;
            posix_spawn_file_actions_init(&actions);
            posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", 01, 0);
            pid_t pid = -1;
            posix_spawn(&pid, perl, &actions, nullptr, argv, environ);
            posix_spawn_file_actions_destroy(&actions);
            int status = 0;
            waitpid(pid, &status, 0);
        }
    }
    state.SetItemsProcessed(state.iterations() * list.size());
}

} // namespace

BENCHMARK(ComposeLiteral)->Unit(benchmark::kMillisecond);
BENCHMARK(ComposeGrep)->Unit(benchmark::kMillisecond);
BENCHMARK(SpawnPerlForEachName)->Unit(benchmark::kMillisecond)->Iterations(1);
