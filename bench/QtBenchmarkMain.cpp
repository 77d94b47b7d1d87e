// The main of the benchmarks that need a Qt application object: the time
// zone read once and the application made, as the programs do.

#include "LocalTimeZone.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    pinLocalTimeZone();
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
