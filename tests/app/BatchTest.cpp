#include "BatchPass.h"
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

const ClampedDates dates;

ItemRecord row(const QString &name, const QString &location, bool include = true)
{
    ItemRecord record;
    record.name = name;
    record.location = location;
    record.include = include;
    record.created = QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6), Qt::LocalTime).toMSecsSinceEpoch();
    record.modified = QDateTime(QDate(2002, 3, 4), QTime(5, 6, 7), Qt::LocalTime).toMSecsSinceEpoch();
    record.size = 10;
    return record;
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

TEST(Batch, DuplicatesAreNumberedWithinAFolderNotAcrossFolders)
{
    NameComposer composer;
    composer.settings._prefix = "same";
    const std::vector<ItemRecord> rows = {row("a.jpg", "/one/"), row("b.jpg", "/one/"), row("c.jpg", "/two/"), row("d.png", "/one/")};
    EXPECT_EQ(BatchPass::newNames(composer, rows, {}, dates), QStringList({"same.jpg", "same 1.jpg", "same.jpg", "same.png"}));
}

TEST(Batch, ExcludedRowsKeepTheirNameAndMayUseUpCounters)
{
    const std::vector<ItemRecord> rows = {row("a.jpg", "/f/"), row("b.jpg", "/f/", false), row("c.jpg", "/f/")};
    NameComposer still = counting();
    EXPECT_EQ(BatchPass::newNames(still, rows, {}, dates), QStringList({"P1_a_S10.jpg", "b.jpg", "P2_c_S20.jpg"}));
    // Advancing on excluded rows, the prefix counter follows the suffix
    // counter: 20 + 1 = 21.
    NameComposer advancing = counting();
    PassRequest request;
    request.advanceExcluded = true;
    EXPECT_EQ(BatchPass::newNames(advancing, rows, request, dates), QStringList({"P1_a_S10.jpg", "b.jpg", "P21_c_S30.jpg"}));
}

TEST(Batch, ThePassCoversTheRowsAskedForWithTheirDatesAndTellsEachRow)
{
    NameComposer composer;
    composer.settings._inc_original_name = true;
    composer.settings._prefix = "«YYYY-MM-DD» ";
    QList<std::pair<qint32, qint32>> told;
    PassRequest request;
    request.prefixChoice = 2; // the row's creation date
    request.rowCount = 2;
    request.progress = [&](qint32 row, qint32 count) { told.append({row, count}); };
    const std::vector<ItemRecord> rows = {row("a.jpg", "/f/"), row("b.jpg", "/f/"), row("c.jpg", "/f/")};
    EXPECT_EQ(BatchPass::newNames(composer, rows, request, dates), QStringList({"2001-02-03 a.jpg", "2001-02-03 b.jpg"}));
    EXPECT_EQ(told, (QList<std::pair<qint32, qint32>>{{1, 2}, {2, 2}}));
    request.prefixChoice = 3;
    EXPECT_EQ(BatchPass::newNames(composer, rows, request, dates).first(), "2002-03-04 a.jpg");
    request.rowCount = 0;
    EXPECT_TRUE(BatchPass::newNames(composer, rows, request, dates).isEmpty());
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

} // namespace
