// How long the composer's text operations take over a folder's worth of
// names: 10,000 names a batch, the size of a large photo folder.

#include "StringAdditions.h"

#include <benchmark/benchmark.h>

using namespace StringAdditions;

namespace {

QStringList sampleNames()
{
    static const QStringList stems = {
        QStringLiteral("the lord of the rings - part %1"), QStringLiteral("IMG_%1 crème brûlée"),
        QStringLiteral("  holiday   in   the alps %1  "), QStringLiteral("Scan-%1 (copy).pdf"),
        QStringLiteral("002-rock-n-roll %1.mp3")};
    QStringList names;
    for (int i = 0; i < 10000; ++i)
        names.append(stems[i % stems.size()].arg(i, 4, 10, QLatin1Char('0')));
    return names;
}

template <typename Operation>
void overNames(benchmark::State &state, Operation operation)
{
    const QStringList names = sampleNames();
    for (auto _ : state)
        for (const QString &name : names)
            benchmark::DoNotOptimize(operation(name));
    state.SetItemsProcessed(state.iterations() * names.size());
}

void TitleCase(benchmark::State &state)
{
    overNames(state, [](const QString &name) { return titleCaseString(name); });
}

void StripDiacritical(benchmark::State &state)
{
    overNames(state, [](const QString &name) { return stripDiacritical(name); });
}

void CleanAndTrim(benchmark::State &state)
{
    static const QStringList spaces = {QStringLiteral(" "), QStringLiteral("-")};
    overNames(state, [](const QString &name) {
        return trimFromBoth(clean(name, QStringLiteral("abcdefghijklmnopqrstuvwxyz0123456789 -")), spaces);
    });
}

void Words(benchmark::State &state)
{
    overNames(state, [](const QString &name) { return words(name); });
}

void RegexGroups(benchmark::State &state)
{
    overNames(state, [](const QString &name) {
        return substringsMatchingRegularExpression(name, QStringLiteral("([a-z]+)[^0-9]*([0-9]+)"), 2, 2, nullptr,
                                                   nullptr);
    });
}

} // namespace

BENCHMARK(TitleCase)->Unit(benchmark::kMillisecond);
BENCHMARK(StripDiacritical)->Unit(benchmark::kMillisecond);
BENCHMARK(CleanAndTrim)->Unit(benchmark::kMillisecond);
BENCHMARK(Words)->Unit(benchmark::kMillisecond);
BENCHMARK(RegexGroups)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
