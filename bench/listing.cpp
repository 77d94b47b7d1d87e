// The listing over 100,000 files against a bare readdir + lstat walk of the
// same tree (the engine's records, and parseItems: with the records made for
// a script), and the batch pass over 100,000 rows; in one run. Also the
// full-table preview of 10,000 rows, against a frame of 16 ms.

#include "BatchPass.h"
#include "FolderListing.h"
#include "ItemRecordValues.h"
#include "NameComposer.h"
#include "PathCodec.h"

#include <QDir>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int fileCount = 100000;

const QString &tree()
{
    static QTemporaryDir dir;
    static const bool made = [] {
        for (int i = 0; i < fileCount; ++i) {
            const QString folder = dir.path() + QStringLiteral("/Roll %1").arg(i / 1000, 3, 10, QLatin1Char('0'));
            if (i % 1000 == 0)
                QDir().mkpath(folder);
            const int fd = open(PathCodec::encode(folder + QStringLiteral("/IMG_%1.jpg").arg(i, 6, 10, QLatin1Char('0'))).constData(),
                                O_CREAT | O_WRONLY, 0644);
            if (fd >= 0)
                close(fd);
        }
        return true;
    }();
    Q_UNUSED(made);
    static const QString path = dir.path();
    return path;
}

const ClampedDates &dates()
{
    static const ClampedDates fixed;
    return fixed;
}

long walk(const QByteArray &folder)
{
    long count = 0;
    DIR *directory = opendir(folder.constData());
    if (!directory)
        return 0;
    while (const dirent *entry = readdir(directory)) {
        if (entry->d_name[0] == '.')
            continue;
        const QByteArray path = folder + '/' + entry->d_name;
        struct stat info;
        if (lstat(path.constData(), &info) == 0) {
            ++count;
            if (S_ISDIR(info.st_mode))
                count += walk(path);
        }
    }
    closedir(directory);
    return count;
}

void BareReaddirLstatWalk(benchmark::State &state)
{
    const QByteArray root = PathCodec::encode(tree());
    for (auto _ : state)
        benchmark::DoNotOptimize(walk(root));
    state.SetItemsProcessed(state.iterations() * fileCount);
}

ListingRequest everyPhotograph()
{
    ListingRequest request;
    request.paths = {tree()};
    request.root = tree();
    request.descend = true;
    request.extensions = {"jpg"};
    request.typeCodes = {""};
    return request;
}

void Listing100k(benchmark::State &state)
{
    std::atomic<bool> stop{true};
    FolderListing listing(dates(), stop);
    const ListingRequest request = everyPhotograph();
    for (auto _ : state)
        benchmark::DoNotOptimize(listing.list(request));
    state.SetItemsProcessed(state.iterations() * fileCount);
}

void ParseItemsForAScript100k(benchmark::State &state)
{
    std::atomic<bool> stop{true};
    FolderListing listing(dates(), stop);
    const ListingRequest request = everyPhotograph();
    for (auto _ : state)
        benchmark::DoNotOptimize(ItemRecordValues::toScript(listing.list(request), dates()));
    state.SetItemsProcessed(state.iterations() * fileCount);
}

std::vector<ItemRecord> rows(int count)
{
    std::vector<ItemRecord> list(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        list[size_t(i)].name = QStringLiteral("IMG_%1 crème.jpg").arg(i, 6, 10, QLatin1Char('0'));
        list[size_t(i)].location = QStringLiteral("/photos/Roll %1/").arg(i / 1000);
        list[size_t(i)].size = 1000;
    }
    return list;
}

// The records a script receives for 100,000 rows, made from the engine's.
void RecordsForAScript100k(benchmark::State &state)
{
    std::vector<ItemRecord> table = rows(fileCount);
    for (ItemRecord &row : table)
        row.created = row.modified = 1234567890123;
    for (auto _ : state)
        benchmark::DoNotOptimize(ItemRecordValues::toScript(table, dates()));
    state.SetItemsProcessed(state.iterations() * fileCount);
}

NameComposer rule()
{
    RenameRule rule = RenameRule::blank();
    rule.prefix.text = QStringLiteral("«ƒ» «#» ");
    rule.prefix.start = 1;
    rule.prefix.step = 1;
    rule.includeOriginal = true;
    rule.search = QStringLiteral("IMG_");
    rule.nameCase = RenameRule::Case::Title;
    rule.stripAccents = true;
    NameComposer composer;
    composer.useRule(rule);
    return composer;
}

void BatchPass100k(benchmark::State &state)
{
    const std::vector<ItemRecord> table = rows(fileCount);
    for (auto _ : state) {
        NameComposer composer = rule();
        benchmark::DoNotOptimize(BatchPass::newNames(composer, table, {}, dates()));
    }
    state.SetItemsProcessed(state.iterations() * fileCount);
}

void TablePreview10k(benchmark::State &state)
{
    const std::vector<ItemRecord> table = rows(10000);
    for (auto _ : state) {
        NameComposer composer = rule();
        benchmark::DoNotOptimize(BatchPass::newNames(composer, table, {}, dates()));
    }
    state.SetItemsProcessed(state.iterations() * 10000);
}

// As in the window while the user types: the treated base names are kept
// between keystrokes, since only the prefix or suffix changed.
void TablePreview10kWhileTyping(benchmark::State &state)
{
    const std::vector<ItemRecord> table = rows(10000);
    const NameComposer typed = [] {
        NameComposer composer = rule();
        composer.baseNameCache = std::make_shared<NameComposer::BaseNameCache>();
        return composer;
    }();
    for (auto _ : state) {
        NameComposer composer = typed; // the window previews on a copy
        benchmark::DoNotOptimize(BatchPass::newNames(composer, table, {}, dates()));
    }
    state.SetItemsProcessed(state.iterations() * 10000);
}

} // namespace

BENCHMARK(BareReaddirLstatWalk)->Unit(benchmark::kMillisecond);
BENCHMARK(Listing100k)->Unit(benchmark::kMillisecond);
BENCHMARK(ParseItemsForAScript100k)->Unit(benchmark::kMillisecond);
BENCHMARK(RecordsForAScript100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BatchPass100k)->Unit(benchmark::kMillisecond);
BENCHMARK(TablePreview10k)->Unit(benchmark::kMillisecond);
BENCHMARK(TablePreview10kWhileTyping)->Unit(benchmark::kMillisecond);
