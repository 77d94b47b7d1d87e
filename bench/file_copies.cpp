// Copying a folder of 10,000 small files (100 subfolders of 100 files of
// 1 KiB, each with a user extended attribute): copyItem:toPath:withReplacing:
// against `cp -a` of the same folder in the same run. Each iteration copies
// to a fresh name; removing the copy is not timed. NOMEN_BENCH_FILES changes
// the count.

#include "MiscMethods.h"
#include "PathCodec.h"

#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

int fileCount()
{
    const int configured = qEnvironmentVariableIntValue("NOMEN_BENCH_FILES");
    return configured > 0 ? configured : 10000;
}

struct Tree {
    QTemporaryDir folder;
    QString source;

    Tree() : source(folder.filePath(QStringLiteral("source")))
    {
        const QByteArray root = PathCodec::encode(source);
        mkdir(root.constData(), 0755);
        const QByteArray kibibyte(1024, 'x');
        for (int i = 0; i < fileCount(); ++i) {
            const QByteArray sub = root + "/folder " + QByteArray::number(i / 100);
            if (i % 100 == 0)
                mkdir(sub.constData(), 0755);
            const QByteArray name = sub + "/file " + QByteArray::number(i) + ".txt";
            const int fd = open(name.constData(), O_CREAT | O_WRONLY, 0644);
            if (fd < 0 || write(fd, kibibyte.constData(), size_t(kibibyte.size())) != kibibyte.size())
                std::abort();
            close(fd);
            setxattr(name.constData(), "user.note", "bench", 5, 0);
        }
    }
};

Tree &tree()
{
    static Tree shared;
    return shared;
}

template <typename Copy>
void copyEachIteration(benchmark::State &state, Copy copy)
{
    int round = 0;
    for (auto _ : state) {
        const QString target = tree().folder.filePath(QStringLiteral("copy %1").arg(++round));
        if (!copy(target))
            state.SkipWithError("the copy failed");
        state.PauseTiming();
        MiscMethods::deleteItem(target);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * fileCount());
}

void CopyItem(benchmark::State &state)
{
    copyEachIteration(state, [](const QString &target) {
        return MiscMethods::copyItem(tree().source, target, false);
    });
}

void CpDashA(benchmark::State &state)
{
    copyEachIteration(state, [](const QString &target) {
        return QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-a"), tree().source, target}) == 0;
    });
}

BENCHMARK(CopyItem)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(CpDashA)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
