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

void useRule(RenameSettings &s, bool grep)
{
    s = RenameSettings();
    s._prefix = QStringLiteral("«#»_");
    s._prefix_start_num = 1;
    s._prefix_ai_counter = 1;
    s._inc_original_name = true;
    s._search_type_1 = grep ? QStringLiteral("GREP") : QStringLiteral("literal");
    s._filename_search_1 = grep ? QStringLiteral("IMG_(\\d+)") : QStringLiteral("IMG_");
    s._filename_replace_1 = grep ? QStringLiteral("Photo $1") : QStringLiteral("Photo ");
    s._change_case = true;
    s._case_transformation = QStringLiteral("Title Case");
    s._orig_strip_diacriticals = true;
}

void compose(benchmark::State &state, bool grep)
{
    const QStringList list = names();
    RenameEngine &e = engine();
    for (auto _ : state) {
        // As a batch pass does: the rule, an empty duplicate list, and the
        // GREP answers for all names in one exchange.
        useRule(e.settings(), grep);
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
