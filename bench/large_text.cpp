// How many measurements and how long the large-type size search takes for a
// one-character text on a 1920 by 1080 screen, all of it visible.

#include "LargeText.h"

#include <QApplication>
#include <benchmark/benchmark.h>

static void BM_LargeTextOneCharacter1920x1080(benchmark::State &state)
{
    const LargeText::Limits limits = LargeText::limitsFor(QRect(0, 0, 1920, 1080), std::nullopt);
    LargeText::Choice choice;
    for (auto _ : state) {
        choice = LargeText::chooseSize([](float size) { return LargeText::measure(QStringLiteral("W"), size); }, limits);
        benchmark::DoNotOptimize(choice);
    }
    state.counters["measurements"] = choice.measurements;
    state.counters["font_size"] = choice.size;
}
BENCHMARK(BM_LargeTextOneCharacter1920x1080)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
