// Reading what the folder listing needs about 100,000 files, against a bare
// lstat loop over the same files in the same run.

#include "MiscMethods.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int fileCount = 100000;

const QStringList &files()
{
    static QTemporaryDir dir;
    static const QStringList paths = [] {
        QStringList made;
        made.reserve(fileCount);
        for (int i = 0; i < fileCount; ++i) {
            const QString folder = dir.path() + QStringLiteral("/f%1").arg(i / 1000);
            if (i % 1000 == 0)
                QDir().mkpath(folder);
            const QString path = folder + QStringLiteral("/IMG_%1.jpg").arg(i, 6, 10, QLatin1Char('0'));
            const int fd = open(QFile::encodeName(path).constData(), O_CREAT | O_WRONLY, 0644);
            if (fd >= 0)
                close(fd);
            made.append(path);
        }
        return made;
    }();
    return paths;
}

template <typename Read>
void overFiles(benchmark::State &state, Read read)
{
    const QStringList &paths = files();
    for (auto _ : state)
        for (const QString &path : paths)
            benchmark::DoNotOptimize(read(path));
    state.SetItemsProcessed(state.iterations() * paths.size());
}

void BareLstat(benchmark::State &state)
{
    overFiles(state, [](const QString &path) {
        struct stat info;
        return lstat(QFile::encodeName(path).constData(), &info);
    });
}

void ReturnItemIsFolder(benchmark::State &state)
{
    overFiles(state, [](const QString &path) { return MiscMethods::returnItemIsFolder(path); });
}

void ReturnItemVisiblity(benchmark::State &state)
{
    overFiles(state, [](const QString &path) { return MiscMethods::returnItemVisiblity(path); });
}

void AttributesOfItem(benchmark::State &state)
{
    overFiles(state, [](const QString &path) { return MiscMethods::attributesOfItem(path); });
}

} // namespace

BENCHMARK(BareLstat)->Unit(benchmark::kMillisecond);
BENCHMARK(ReturnItemIsFolder)->Unit(benchmark::kMillisecond);
BENCHMARK(ReturnItemVisiblity)->Unit(benchmark::kMillisecond);
BENCHMARK(AttributesOfItem)->Unit(benchmark::kMillisecond);
