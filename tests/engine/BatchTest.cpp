#include "BatchPass.h"
#include "FileMoves.h"
#include "NameComposer.h"
#include "PathCodec.h"
#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include "TemporaryFolder.h"
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
    RenameRule rule = RenameRule::blank();
    rule.prefix.text = "P«#»_";
    rule.prefix.start = 1;
    rule.prefix.step = 1;
    rule.suffix.text = "_S«#»";
    rule.suffix.start = 10;
    rule.suffix.step = 10;
    rule.includeOriginal = true;
    NameComposer composer;
    composer.useRule(rule);
    return composer;
}

TEST(Batch, DuplicatesAreNumberedWithinAFolderNotAcrossFolders)
{
    NameComposer composer;
    composer.rule.prefix.text = "same";
    const std::vector<ItemRecord> rows = {row("a.jpg", "/one/"), row("b.jpg", "/one/"), row("c.jpg", "/two/"), row("d.png", "/one/")};
    EXPECT_EQ(BatchPass::newNames(composer, rows, {}, dates).names, QStringList({"same.jpg", "same 1.jpg", "same.jpg", "same.png"}));
}

TEST(Batch, ExcludedRowsKeepTheirNameAndMayUseUpCounters)
{
    const std::vector<ItemRecord> rows = {row("a.jpg", "/f/"), row("b.jpg", "/f/", false), row("c.jpg", "/f/")};
    NameComposer still = counting();
    EXPECT_EQ(BatchPass::newNames(still, rows, {}, dates).names, QStringList({"P1_a_S10.jpg", "b.jpg", "P2_c_S20.jpg"}));
    // Advancing on excluded rows, the prefix counter follows the suffix
    // counter: 20 + 1 = 21.
    NameComposer advancing = counting();
    PassRequest request;
    request.advanceExcluded = true;
    EXPECT_EQ(BatchPass::newNames(advancing, rows, request, dates).names, QStringList({"P1_a_S10.jpg", "b.jpg", "P21_c_S30.jpg"}));
}

TEST(Batch, ThePassCoversTheRowsAskedForWithTheirDatesAndTellsEachRow)
{
    NameComposer composer;
    composer.rule.includeOriginal = true;
    composer.rule.prefix.text = "«YYYY-MM-DD» ";
    QList<std::pair<qint32, qint32>> told;
    PassRequest request;
    request.prefixChoice = 2; // the row's creation date
    request.rowCount = 2;
    request.progress = [&](qint32 row, qint32 count) { told.append({row, count}); };
    const std::vector<ItemRecord> rows = {row("a.jpg", "/f/"), row("b.jpg", "/f/"), row("c.jpg", "/f/")};
    EXPECT_EQ(BatchPass::newNames(composer, rows, request, dates).names, QStringList({"2001-02-03 a.jpg", "2001-02-03 b.jpg"}));
    EXPECT_EQ(told, (QList<std::pair<qint32, qint32>>{{1, 2}, {2, 2}}));
    request.prefixChoice = 3;
    EXPECT_EQ(BatchPass::newNames(composer, rows, request, dates).names.first(), "2002-03-04 a.jpg");
    request.rowCount = 0;
    EXPECT_TRUE(BatchPass::newNames(composer, rows, request, dates).names.isEmpty());
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
    TemporaryFolder dir;
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
