// Whole-list work at the size of a large folder: reading a 100,000-line
// tab-separated table from disk, and sorting 100,000 item records by two
// keys the way scripts ask for it.

#include "Collections.h"
#include "MiscMethods.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int Lines = 100000;

void ReadTsvFile(benchmark::State &state)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("table.tsv"));
    {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write("# old name, new name, when, size\nold\tnew\twhen\tsize\n");
        for (int i = 0; i < Lines; ++i)
            file.write(QStringLiteral("IMG_%1.JPG\tTrip %1 — Alps.jpg\t2024-06-%2 10:%3\t%4\n")
                           .arg(i)
                           .arg(1 + i % 28)
                           .arg(i % 60, 2, 10, QLatin1Char('0'))
                           .arg(i * 37 % 9000000)
                           .toUtf8());
    }
    qsizetype records = 0;
    for (auto _ : state) {
        const QVariant table = MiscMethods::dictionaryArrayFromTSVFile(path);
        records = table.toList().size();
        benchmark::DoNotOptimize(records);
    }
    state.counters["records"] = double(records);
    state.SetItemsProcessed(state.iterations() * Lines);
}

QVariantList itemRecords()
{
    static const QStringList folders{QStringLiteral("/home/ann/Pictures/Trip"), QStringLiteral("/home/ann/Scans"),
                                     QStringLiteral("/media/ann/Card/DCIM/100CANON")};
    QVariantList records;
    records.reserve(Lines);
    const QDateTime start(QDate(2020, 1, 1), QTime(0, 0));
    for (int i = 0; i < Lines; ++i) {
        const int shuffled = int((qint64(i) * 7919) % Lines);
        records.append(QVariantMap{{QStringLiteral("name"), QStringLiteral("IMG_%1.JPG").arg(shuffled)},
                                   {QStringLiteral("container"), folders[i % folders.size()]},
                                   {QStringLiteral("size"), qlonglong(shuffled) * 1013},
                                   {QStringLiteral("modified"), start.addSecs(shuffled * 61)}});
    }
    return records;
}

void SortItemRecordsByTwoKeys(benchmark::State &state)
{
    const QVariantList records = itemRecords();
    const QStringList keys{QStringLiteral("container"), QStringLiteral("name")};
    for (auto _ : state)
        benchmark::DoNotOptimize(Collections::sortDictionaries(records, keys));
    state.SetItemsProcessed(state.iterations() * Lines);
}

} // namespace

BENCHMARK(ReadTsvFile)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(SortItemRecordsByTwoKeys)->Unit(benchmark::kMillisecond)->MinTime(2.0);
