// nomen-cli against folder trees made from lists of paths; the dry-run
// table and the JSON are compared with checked-in expectations, temporary
// paths replaced by ROOT. NOMEN_WRITE_GOLDEN=1 rewrites them for review.

#include "TestPrinting.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QFile>
#include <QProcess>
#include <QSet>
#include "TemporaryFolder.h"
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <gtest/gtest.h>

namespace {

struct CliRun {
    int exitCode;
    QString out;
    QString err;
};

class Cli : public testing::Test {
protected:
    void SetUp() override
    {
        for (const char *path : {"Trip/IMG_9.jpg", "Trip/IMG_10.jpg", "Trip/IMG_100.jpg", "Trip/notes.txt", "Trip/Beach/IMG_1.jpg",
                                 "Trip/taken.jpg"}) {
            const QString full = tree.filePath(QString::fromLatin1(path));
            QDir().mkpath(QFileInfo(full).absolutePath());
            QFile file(full);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(path);
        }
    }
    CliRun cli(const QStringList &arguments, const QString &zone = QString())
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), data.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), data.path());
        if (!zone.isEmpty())
            environment.insert(QStringLiteral("TZ"), zone);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(tree.path());
        process.start(QStringLiteral(NOMEN_CLI_PATH), arguments);
        process.waitForFinished(60000);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()).replace(tree.path(), QStringLiteral("ROOT")),
                QString::fromUtf8(process.readAllStandardError())};
    }
    void expectGolden(const QString &name, const QString &actual)
    {
        const QString path = QStringLiteral(NOMEN_TEST_DATA "/") + name;
        if (qEnvironmentVariableIsSet("NOMEN_WRITE_GOLDEN")) {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(actual.toUtf8());
        }
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(actual, QString::fromUtf8(file.readAll()));
    }

    TemporaryFolder tree;
    TemporaryFolder data;
};

TEST_F(Cli, DryRunTableAndJson)
{
    const QStringList rule = {"--prefix", "«ƒ» «#» ", "--zeros", "2", "--ext-filter", "jpg", "--recursive",
                              "--grep", "--search", "IMG_(\\d+)", "--replace", "shot $1", tree.filePath("Trip")};
    const CliRun table = cli(rule);
    EXPECT_EQ(table.exitCode, 0);
    expectGolden("dry_run.txt", table.out);
    const CliRun json = cli(QStringList{QStringLiteral("--json")} + rule);
    expectGolden("dry_run.json", json.out);
    EXPECT_TRUE(QFile::exists(tree.filePath("Trip/IMG_9.jpg"))) << "a dry run renames nothing";
}

TEST_F(Cli, ConflictsApplyAndUndo)
{
    // Every photo would become notes.txt: the first collides with the note,
    // which is not in the batch, and the rest are numbered after it.
    const QStringList rule = {"--no-original", "--prefix", "notes", "--extension", "txt", "--ext-filter", "jpg", tree.filePath("Trip")};
    const CliRun conflicted = cli(rule);
    EXPECT_EQ(conflicted.exitCode, 1) << "conflicts have their own exit code";
    expectGolden("conflicts.txt", conflicted.out);

    const CliRun applied = cli({"--prefix", "x ", "--ext-filter", "jpg", "--apply", tree.filePath("Trip")});
    EXPECT_EQ(applied.exitCode, 0);
    EXPECT_TRUE(QFile::exists(tree.filePath("Trip/x IMG_9.jpg")));
    EXPECT_TRUE(QFile::exists(tree.filePath("Trip/notes.txt")));
    EXPECT_EQ(cli({"--undo"}).exitCode, 0);
    EXPECT_TRUE(QFile::exists(tree.filePath("Trip/IMG_9.jpg")));
    EXPECT_FALSE(QFile::exists(tree.filePath("Trip/x IMG_9.jpg")));
    EXPECT_EQ(cli({"--sort", "sideways", tree.filePath("Trip")}).exitCode, 64);
}

TEST_F(Cli, FoldersAreRenamedAfterTheirContents)
{
    const CliRun applied = cli({"--prefix", "x ", "--recursive", "--folders", "--ext-filter", "jpg", "--apply", tree.filePath("Trip")});
    EXPECT_EQ(applied.exitCode, 0) << applied.out.toStdString();
    EXPECT_TRUE(QFile::exists(tree.filePath("Trip/x Beach/x IMG_1.jpg")));
    EXPECT_TRUE(QFile::exists(tree.filePath("Trip/notes.txt"))) << "no filter picks it";
    EXPECT_EQ(cli({"--undo"}).exitCode, 0);
    EXPECT_TRUE(QFile::exists(tree.filePath("Trip/Beach/IMG_1.jpg")));
}

TEST_F(Cli, AMapFileIsABatchLikeAnyOther)
{
    // A swap, a name already taken by a file outside the map, a file that is
    // not there, a relative path and an absolute one.
    QFile map(tree.filePath("map.tsv"));
    ASSERT_TRUE(map.open(QIODevice::WriteOnly));
    map.write("# photos\nold\tnew\nTrip/IMG_9.jpg\tIMG_10.jpg\n" + tree.filePath("Trip/IMG_10.jpg").toUtf8() +
              "\tTrip/IMG_9.jpg\nTrip/IMG_100.jpg\tnotes.txt\nTrip/gone.jpg\tthere.jpg\n");
    map.close();
    const CliRun dryRun = cli({"--map", "map.tsv"});
    EXPECT_EQ(dryRun.exitCode, 2) << "a missing file is a failure";
    expectGolden("map.txt", dryRun.out);

    const CliRun applied = cli({"--map", "map.tsv", "--apply"});
    EXPECT_EQ(applied.exitCode, 2);
    const auto photoNine = [this] {
        QFile file(tree.filePath("Trip/IMG_9.jpg"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    EXPECT_EQ(photoNine(), "Trip/IMG_10.jpg");
    EXPECT_EQ(cli({"--undo"}).exitCode, 0);
    EXPECT_EQ(photoNine(), "Trip/IMG_9.jpg");

    // Without its header the first line would be lost: refused instead.
    ASSERT_TRUE(map.open(QIODevice::WriteOnly));
    map.write("Trip/IMG_9.jpg\tx.jpg\nTrip/IMG_10.jpg\ty.jpg\n");
    map.close();
    const CliRun headless = cli({"--map", "map.tsv"});
    EXPECT_EQ(headless.exitCode, 66);
    EXPECT_TRUE(headless.err.contains("map.tsv: entry 1 has no old name or no new name")) << headless.err.toStdString();
    EXPECT_EQ(cli({"--map", "map.tsv", tree.filePath("Trip")}).exitCode, 64);
}

TEST_F(Cli, ASavedRuleRenamesAsItsOptionsDidAndOptionsBesideItWin)
{
    const QStringList options = {"--prefix", "«#» ", "--zeros", "2", "--ext-filter", "jpg", "--ext-case", "UPPERCASE"};
    EXPECT_EQ(cli(options + QStringList{"--save-rule", "../Photos"}).exitCode, 64) << "a name is not a path";
    const CliRun saved = cli(options + QStringList{"--save-rule", "Photos"});
    ASSERT_EQ(saved.exitCode, 0) << saved.err.toStdString();
    EXPECT_EQ(cli({"--list-rules"}).out, "Photos\n");
    EXPECT_EQ(cli({"--rule", "Photos", tree.filePath("Trip")}).out, cli(options + QStringList{tree.filePath("Trip")}).out);
    EXPECT_TRUE(cli({"--rule", "Photos", "--start", "7", tree.filePath("Trip")}).out.contains("-> 07 IMG_9.JPG"));

    QFile broken(data.filePath("nomen/rules/Broken.json"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write(R"({"prefix": {"digits": "two"}})");
    broken.close();
    const CliRun refused = cli({"--rule", "Broken", tree.filePath("Trip")});
    EXPECT_EQ(refused.exitCode, 66);
    EXPECT_TRUE(refused.err.contains("Broken.json: \"prefix.digits\" must be a whole number")) << refused.err.toStdString();
}

// Rules work on characters: a rule that would write half of one is a
// conflict and nothing is written for it; GREP matches letters in any
// script, and says why when it cannot run.
TEST_F(Cli, NamesInEveryScript)
{
    const QString folder = tree.filePath("Script");
    ASSERT_TRUE(QDir().mkpath(folder));
    for (const QString name : {"📷7.jpg", "Über.jpg", "ΟΔΟΣ 0.jpg"}) {
        QFile file(folder + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const CliRun split = cli({"--trim-start", "1", "--apply", folder});
    EXPECT_EQ(split.exitCode, 1);
    EXPECT_TRUE(split.out.contains("conflict   ROOT/Script/📷7.jpg -> ")) << split.out.toStdString();
    EXPECT_TRUE(split.out.contains("(the new name would split a character")) << split.out.toStdString();
    const QStringList after = QDir(folder).entryList(QDir::Files);
    EXPECT_EQ(QSet<QString>(after.cbegin(), after.cend()), QSet<QString>({"ber.jpg", "ΔΟΣ 0.jpg", "📷7.jpg"}));
    ASSERT_EQ(cli({"--undo"}).exitCode, 0);

    const CliRun folded = cli({"--grep", "--search", "ü", "--replace", "ue", "--ignore-case", folder});
    EXPECT_TRUE(folded.out.contains("ROOT/Script/Über.jpg -> ueber.jpg")) << folded.out.toStdString();

    const CliRun uncompiled = cli({"--grep", "--search", "IMG_(\\d", folder});
    EXPECT_EQ(uncompiled.exitCode, 64);
    EXPECT_TRUE(uncompiled.err.startsWith("nomen-cli: the search pattern cannot be used: Unmatched ( in regex")) << uncompiled.err.toStdString();

    const CliRun failing = cli({"--json", "--grep", "--search", "(\\d+)", "--replace", "${\\ (100 % $1)}", "--apply", folder});
    EXPECT_EQ(failing.exitCode, 0);
    EXPECT_TRUE(failing.out.contains(R"("from": "ROOT/Script/ΟΔΟΣ 0.jpg", "to": "ROOT/Script/ΟΔΟΣ 0.jpg", "status": "unchanged", )"
                                     R"("reason": "Perl: Illegal modulus zero")")) << failing.out.toStdString();
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/📷2.jpg"))) << "the other rows are renamed";
}

// The date each file was taken as exiftool reads it in that time zone: a
// photograph's DateTimeOriginal or CreateDate as its camera's clock read, a
// phone's own clock in a recording, else QuickTime's creation time (UTC,
// shown in local time); none for QuickTime's zero date.
QMap<QString, QString> exiftoolDates(const QString &folder, const QString &zone)
{
    QProcess exiftool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TZ"), zone);
    exiftool.setProcessEnvironment(environment);
    exiftool.start(QStringLiteral("exiftool"), {"-api", "QuickTimeUTC", "-j", "-G", "-d", "%Y-%m-%d %H.%M.%S", "-EXIF:DateTimeOriginal",
                                                "-EXIF:CreateDate", "-Keys:CreationDate", "-QuickTime:CreateDate", folder});
    exiftool.waitForFinished(60000);
    QMap<QString, QString> dates;
    for (const QJsonValue &file : QJsonDocument::fromJson(exiftool.readAllStandardOutput()).array()) {
        const QJsonObject tags = file.toObject();
        for (const char *tag : {"EXIF:DateTimeOriginal", "EXIF:CreateDate", "QuickTime:CreationDate", "QuickTime:CreateDate"}) {
            const QString date = tags.value(QLatin1String(tag)).toString();
            if (!date.isEmpty() && date.left(4).toInt() > 1904) {
                dates.insert(QFileInfo(tags.value("SourceFile").toString()).fileName(), date);
                break;
            }
        }
    }
    return dates;
}

// Each row's date as nomen-cli gives it, by file name.
QMap<QString, QString> namedDates(const QString &table)
{
    static const QRegularExpression row(QStringLiteral("^rename +ROOT/Dates/(\\S+) -> (\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d) "),
                                        QRegularExpression::MultilineOption);
    QMap<QString, QString> dates;
    for (auto match = row.globalMatch(table); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        dates.insert(found.captured(1), found.captured(2));
    }
    return dates;
}

// Photographs and recordings of every format people shoot in, made by the
// tools that make them, read in two time zones: each date is exiftool's,
// and a file without a readable date keeps its own creation date.
TEST_F(Cli, DatesTakenAsExiftoolReadsThemInEveryZone)
{
    const QString folder = tree.filePath("Dates");
    QProcess make;
    make.start(QStringLiteral(NOMEN_TEST_DATA "/dates/make-fixtures.sh"), {folder});
    ASSERT_TRUE(make.waitForFinished(120000));
    ASSERT_EQ(make.exitCode(), 0) << make.readAllStandardError().toStdString();
    const QStringList rule = {"--date-source", "created", "--prefix", "«date %Y-%m-%d %H.%M.%S» ", folder};
    for (const QString zone : {"UTC", "America/Los_Angeles"}) {
        const QMap<QString, QString> expected = exiftoolDates(folder, zone);
        ASSERT_GE(expected.size(), 23) << zone.toStdString();
        const QMap<QString, QString> taken = namedDates(cli(QStringList{"--exif"} + rule, zone).out);
        const QMap<QString, QString> own = namedDates(cli(rule, zone).out);
        ASSERT_EQ(taken.size(), 27) << zone.toStdString();
        for (auto file = taken.cbegin(); file != taken.cend(); ++file)
            EXPECT_EQ(file.value(), expected.value(file.key(), own.value(file.key())))
                << file.key().toStdString() << " in " << zone.toStdString();
        // The rows of the table that started this, as the camera's clock read.
        EXPECT_EQ(taken.value("jpeg_offset_east.jpg"), "2019-07-04 01.30.00");
        EXPECT_EQ(taken.value("jpeg_new_years_eve.jpg"), "2021-12-31 23.15.00");
        EXPECT_EQ(taken.value("heic_phone.heic"), "2023-04-05 06.07.08");
        EXPECT_EQ(taken.value("mov_phone.mov"), "2022-09-10 13.12.13");
        for (const char *undated : {"jpeg_no_date.jpg", "jpeg_damaged.jpg", "mp4_no_date.mp4", "notes.txt"})
            EXPECT_FALSE(expected.contains(undated)) << undated;
    }
    EXPECT_EQ(namedDates(cli({"--date-taken", "--date-source", "created", "--prefix", "«date %Y-%m-%d %H.%M.%S» ", folder}, "UTC")
                             .out)
                  .value("mp4_utc.mp4"),
              "2022-09-10 11.12.13");
    // The offset recorded beside a date is what %z shows.
    const QString zones = cli({"--exif", "--date-source", "created", "--prefix", "«date %z» ", folder}, "America/Los_Angeles").out;
    EXPECT_TRUE(zones.contains("ROOT/Dates/jpeg_offset_east.jpg -> +0900 ")) << zones.toStdString();
    EXPECT_TRUE(zones.contains("ROOT/Dates/mov_phone.mov -> +0200 ")) << zones.toStdString();
    EXPECT_TRUE(zones.contains("ROOT/Dates/jpeg_original.jpg -> -0700 ")) << "none recorded: the local one";
    // A saved rule keeps the choice.
    ASSERT_EQ(cli(QStringList{"--exif", "--save-rule", "Taken"} + rule.mid(0, 4)).exitCode, 0);
    EXPECT_EQ(cli({"--rule", "Taken", folder}, "UTC").out, cli(QStringList{"--exif"} + rule, "UTC").out);
}

TEST_F(Cli, AFolderNamedInBytesThatAreNotUtf8IsFound)
{
    ASSERT_EQ(mkdir((tree.path().toUtf8() + "/odd\xff").constData(), 0700), 0);
    const int photo = creat((tree.path().toUtf8() + "/odd\xff/a.jpg").constData(), 0600);
    ASSERT_GE(photo, 0);
    close(photo);
    // The shell hands the bytes over as they are.
    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), data.path());
    shell.setProcessEnvironment(environment);
    shell.setWorkingDirectory(tree.path());
    shell.start(QStringLiteral("/bin/sh"), {"-c", "exec \"$0\" --prefix 'x ' --apply \"$(printf 'odd\\377')\"", NOMEN_CLI_PATH});
    ASSERT_TRUE(shell.waitForFinished(30000));
    EXPECT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().toStdString();
    EXPECT_EQ(access((tree.path().toUtf8() + "/odd\xff/x a.jpg").constData(), F_OK), 0);
}

} // namespace
