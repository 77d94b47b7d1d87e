// Renaming 100,000 files in one folder, in one run: a bare renameat2 loop
// (the floor), `nomen-cli --apply` (listing, composing, journal and all),
// and file-rename with the same Perl substitution. Each iteration gets a
// fresh folder; making it is not timed. NOMEN_BENCH_FILES changes the count.

#include <QByteArray>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

int fileCount()
{
    const int configured = qEnvironmentVariableIntValue("NOMEN_BENCH_FILES");
    return configured > 0 ? configured : 100000;
}

QByteArray fileName(int index)
{
    return QByteArray("IMG_") + QByteArray::number(index).rightJustified(6, '0') + ".jpg";
}

// A folder of empty numbered photographs, plus a place for the journal.
struct Batch {
    QTemporaryDir folder;
    QTemporaryDir data;

    Batch()
    {
        for (int i = 0; i < fileCount(); ++i) {
            const int fd = open((folder.path().toUtf8() + '/' + fileName(i)).constData(), O_CREAT | O_WRONLY, 0644);
            if (fd >= 0)
                close(fd);
        }
    }
};

void BareRenameat2Loop(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto batch = std::make_unique<Batch>();
        const int folder = open(batch->folder.path().toUtf8().constData(), O_DIRECTORY | O_RDONLY);
        state.ResumeTiming();
        int renamed = 0;
        for (int i = 0; i < fileCount(); ++i) {
            const QByteArray from = fileName(i);
            renamed += renameat2(folder, from.constData(), folder, ("x " + from).constData(), RENAME_NOREPLACE) == 0;
        }
        state.PauseTiming();
        close(folder);
        if (renamed != fileCount())
            state.SkipWithError("renameat2 failed");
        batch.reset(); // removing the files is not timed either
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * fileCount());
}

// Runs a command over a fresh batch and checks that it renamed every file.
void runOverBatch(benchmark::State &state, const QString &program, const QStringList &arguments, bool filesOnStandardInput)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto batch = std::make_unique<Batch>();
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), batch->data.path());
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(batch->folder.path());
        process.setStandardOutputFile(QProcess::nullDevice());
        QByteArray names;
        if (filesOnStandardInput)
            for (int i = 0; i < fileCount(); ++i)
                names += fileName(i) + '\0';
        state.ResumeTiming();
        process.start(program, QStringList(arguments).replaceInStrings(QStringLiteral("FOLDER"), batch->folder.path()));
        process.write(names);
        process.closeWriteChannel();
        process.waitForFinished(-1);
        state.PauseTiming();
        if (process.exitCode() != 0 || !QFile::exists(batch->folder.filePath(QString::fromLatin1("x " + fileName(fileCount() - 1)))))
            state.SkipWithError(qPrintable(program + QStringLiteral(" did not rename every file")));
        batch.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * fileCount());
}

void NomenCliApply(benchmark::State &state)
{
    runOverBatch(state, QStringLiteral(NOMEN_CLI_PATH), {QStringLiteral("--prefix"), QStringLiteral("x "), QStringLiteral("--sort"),
                                                          QStringLiteral("none"), QStringLiteral("--apply"), QStringLiteral("FOLDER")},
                 false);
}

void FileRename(benchmark::State &state)
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("file-rename"));
    if (program.isEmpty()) {
        state.SkipWithError("file-rename is not installed");
        return;
    }
    runOverBatch(state, program, {QStringLiteral("-0"), QStringLiteral("s/^/x /")}, true);
}

} // namespace

BENCHMARK(BareRenameat2Loop)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(NomenCliApply)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(FileRename)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

BENCHMARK_MAIN();
