#include "BatchRenaming.h"
#include "FileMoves.h"
#include "NameComposer.h"
#include "NamedException.h"
#include "PathCodec.h"
#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QVariantMap row(const QString &name, const QString &location, bool include = true)
{
    return {{"include", include}, {"original", name}, {"location", location},
            {"creation", QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6), Qt::LocalTime)},
            {"modification", QDateTime(QDate(2002, 3, 4), QTime(5, 6, 7), Qt::LocalTime)}, {"size", 10u}};
}

QStringList newNames(const QVariantList &records)
{
    QStringList names;
    for (const QVariant &record : records)
        names.append(record.toMap().value("new").toString());
    return names;
}

NameComposer counting()
{
    NameComposer composer;
    composer.settings._prefix = "P«#»_";
    composer.settings._prefix_start_num = 1;
    composer.settings._prefix_ai_counter = 1;
    composer.settings._suffix = "_S«#»";
    composer.settings._suffix_start_num = 10;
    composer.settings._suffix_ai_counter = 10;
    composer.settings._inc_original_name = true;
    return composer;
}

BatchRequest request(int rows, bool advanceExcluded = false)
{
    BatchRequest r;
    r.rowCount = rows;
    r.advanceExcluded = advanceExcluded;
    r.word = QStringLiteral("files");
    r.upperText = QStringLiteral("Composing");
    r.lowerFormat = QStringLiteral("%d of %d %@");
    return r;
}

TEST(Batch, DuplicatesAreNumberedWithinAFolderNotAcrossFolders)
{
    NameComposer composer;
    composer.settings._prefix = "same";
    const QVariantList rows = {row("a.jpg", "/one/"), row("b.jpg", "/one/"), row("c.jpg", "/two/"), row("d.png", "/one/")};
    EXPECT_EQ(newNames(BatchRenaming::makeReplacementNames(composer, request(4), rows, {})),
              QStringList({"same.jpg", "same 1.jpg", "same.jpg", "same.png"}));
}

TEST(Batch, ExcludedRowsKeepTheirNameAndMayUseUpCounters)
{
    const QVariantList rows = {row("a.jpg", "/f/"), row("b.jpg", "/f/", false), row("c.jpg", "/f/")};
    NameComposer still = counting();
    EXPECT_EQ(newNames(BatchRenaming::makeReplacementNames(still, request(3), rows, {})),
              QStringList({"P1_a_S10.jpg", "b.jpg", "P2_c_S20.jpg"}));
    // With entry 7 the excluded row advances the counters, the prefix one
    // from the suffix counter: 20 + 1 = 21, as it always has.
    NameComposer advancing = counting();
    EXPECT_EQ(newNames(BatchRenaming::makeReplacementNames(advancing, request(3, true), rows, {})),
              QStringList({"P1_a_S10.jpg", "b.jpg", "P21_c_S30.jpg"}));
}

TEST(Batch, RecordsCarryTheRowAndProgressIsReported)
{
    NameComposer composer;
    composer.settings._inc_original_name = true;
    composer.settings._prefix = "«YYYY-MM-DD» ";
    QList<QString> lower;
    double maximum = -1;
    BatchProgress progress{[&](double m) { maximum = m; },
                           [&](double, double, const QString &upper, const QString &text) {
                               EXPECT_EQ(upper, QStringLiteral("Composing"));
                               lower.append(text);
                           }};
    BatchRequest r = request(2);
    r.prefixChoice = 2; // the row's creation date
    const QVariantList records = BatchRenaming::makeReplacementNames(composer, r, {row("a.jpg", "/f/"), row("b.jpg", "/f/")}, progress);
    EXPECT_EQ(maximum, 2);
    EXPECT_EQ(lower, QList<QString>({"1 of 2 files", "2 of 2 files"}));
    const QVariantMap first = records[0].toMap();
    EXPECT_EQ(first.value("new"), QVariant(QStringLiteral("2001-02-03 a.jpg")));
    EXPECT_EQ(first.value("size"), QVariant(10u));
    EXPECT_EQ(first.keys(), QStringList({"creation", "include", "location", "modification", "new", "original", "size"}));
    EXPECT_TRUE(BatchRenaming::makeReplacementNames(composer, request(0), {}, progress).isEmpty());
    EXPECT_EQ(maximum, 0);
}

TEST(Batch, CleanDataFillsMissingDates)
{
    const QDateTime date1904(QDate(1904, 1, 1), QTime(0, 0), Qt::LocalTime);
    const QVariantList cleaned = BatchRenaming::cleanData({QVariantMap{{"original", "a"}}, QVariantMap{{"creation", date1904.addYears(100)}}}, date1904);
    EXPECT_EQ(cleaned[0].toMap().value("creation"), QVariant(date1904));
    EXPECT_EQ(cleaned[0].toMap().value("modification"), QVariant(date1904));
    EXPECT_EQ(cleaned[1].toMap().value("creation").toDateTime().date().year(), 2004);
}

TEST(Batch, RunCommandReadsBothStreamsAsText)
{
    EXPECT_EQ(BatchRenaming::runCommand("/bin/sh", {"-c", "echo out; echo err >&2"}), QStringLiteral("out\nerr\n"));
    EXPECT_THROW(BatchRenaming::runCommand("/no/such/tool", {}), NamedException);
}

class Moves : public testing::Test {
protected:
    QString make(const QString &name, const QByteArray &contents)
    {
        QFile file(dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return file.fileName();
    }
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QTemporaryDir dir;
};

TEST_F(Moves, NeverOntoAnExistingFile)
{
    const QString mine = make("mine.jpg", "mine");
    const QString theirs = make("theirs.jpg", "theirs");
    EXPECT_EQ(FileMoves::moveWithoutReplacing(mine, theirs), EEXIST);
    EXPECT_EQ(read(mine), QByteArray("mine"));
    EXPECT_EQ(read(theirs), QByteArray("theirs")) << "nothing lost";
    EXPECT_EQ(FileMoves::moveWithoutReplacing(mine, dir.filePath("new.jpg")), 0);
    EXPECT_EQ(read(dir.filePath("new.jpg")), QByteArray("mine"));
    EXPECT_NE(FileMoves::moveWithoutReplacing(dir.filePath("gone.jpg"), dir.filePath("x.jpg")), 0);
    EXPECT_NE(FileMoves::moveWithoutReplacing(dir.filePath("new.jpg"), dir.filePath(QString(300, u'n'))), 0)
        << "a name the file system refuses fails cleanly";
    EXPECT_EQ(read(dir.filePath("new.jpg")), QByteArray("mine"));
}

TEST_F(Moves, NamesThatAreNotUtf8SurviveByteForByte)
{
    const QByteArray raw = PathCodec::encode(dir.path()) + "/raw\xff.jpg";
    FILE *file = fopen(raw.constData(), "w");
    ASSERT_NE(file, nullptr);
    fclose(file);
    const QString source = PathCodec::decode(raw);
    const QString destination = PathCodec::decode(PathCodec::encode(dir.path()) + "/still\xfe.jpg");
    EXPECT_EQ(FileMoves::moveWithoutReplacing(source, destination), 0);
    EXPECT_EQ(access((PathCodec::encode(dir.path()) + "/still\xfe.jpg").constData(), F_OK), 0);
}

TEST_F(Moves, AcrossFileSystemsByCopyThenRemove)
{
    // /dev/shm is a different file system from most temporary folders.
    QTemporaryDir other(QStringLiteral("/dev/shm/nomen-XXXXXX"));
    if (!other.isValid())
        GTEST_SKIP() << "no second file system to move to";
    const QString file = make("a.txt", "contents");
    QDir().mkpath(dir.filePath("Folder/Inner"));
    make("Folder/Inner/b.txt", "b");
    EXPECT_EQ(FileMoves::moveWithoutReplacing(file, other.filePath("a.txt")), 0);
    EXPECT_EQ(read(other.filePath("a.txt")), QByteArray("contents"));
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_EQ(FileMoves::moveWithoutReplacing(dir.filePath("Folder"), other.filePath("Folder")), 0);
    EXPECT_EQ(read(other.filePath("Folder/Inner/b.txt")), QByteArray("b"));
    const QString again = make("a.txt", "second");
    EXPECT_EQ(FileMoves::moveWithoutReplacing(again, other.filePath("a.txt")), EEXIST);
    EXPECT_EQ(read(again), QByteArray("second"));
}

} // namespace
