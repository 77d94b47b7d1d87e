// Names made from what files say, through nomen-cli as a user would make
// them, held to what the tools trusted for each kind read in the same files:
// exiftool for photographs, exiv2 for tags by key, ffprobe for lengths and
// picture sizes, mutagen for music tags.

#include "CliRunner.h"
#include "TestPrinting.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>

namespace {

const QStringList tokens = {"make",  "model", "camera", "lens", "iso",   "aperture", "exposure",    "focal",
                            "width", "height", "artist", "albumartist", "album", "title", "track", "disc",
                            "year",  "genre",  "duration", "resolution", "tag Exif.Photo.LensModel",
                            "tag Exif.Photo.ExposureTime", "tag Xmp.dc.title", "tag Iptc.Application2.City"};
const QString between = QStringLiteral("¦"); // in no value

// The rows of a dry run as JSON, by the old name.
QMap<QString, QJsonObject> rowsByName(const CliRun &run)
{
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    QMap<QString, QJsonObject> found;
    for (const QJsonValue &row : QJsonDocument::fromJson(run.out.toUtf8()).array())
        found.insert(QFileInfo(row.toObject().value("from").toString()).fileName(), row.toObject());
    return found;
}

// The files, made once for every test here (they only read them).
class Metadata : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        files = new TemporaryFolder;
        QProcess make;
        make.start(QStringLiteral(NOMEN_SHARED_TEST_DATA "/metadata_fixtures.py"), {"make", files->path()});
        make.waitForFinished(120000);
        made = make.exitCode() == 0 ? QString() : QString::fromUtf8(make.readAllStandardError());
        for (const QString &name : QDir(QStringLiteral(NOMEN_SHARED_TEST_DATA "/cameras")).entryList(QDir::Files)) {
            if (name != QLatin1String("README"))
                QFile::copy(QStringLiteral(NOMEN_SHARED_TEST_DATA "/cameras/") + name, files->filePath(name));
        }
    }
    static void TearDownTestSuite() { delete files; }
    void SetUp() override
    {
        ASSERT_TRUE(made.isEmpty()) << made.toStdString();
        cli.environment.insert(QStringLiteral("XDG_CONFIG_HOME"), cli.data.path());
    }

    static QString folder() { return files->path(); }

    // Each file's values as the trusted tools read them.
    QJsonObject expected() const
    {
        QProcess oracle;
        oracle.start(QStringLiteral(NOMEN_SHARED_TEST_DATA "/metadata_fixtures.py"), {"expect", folder()});
        oracle.waitForFinished(120000);
        return QJsonDocument::fromJson(oracle.readAllStandardOutput()).object();
    }

    // nomen-cli's dry run as JSON, its rows by the old name.
    QMap<QString, QJsonObject> rows(const QStringList &arguments, const QString &zone = QStringLiteral("UTC"))
    {
        cli.environment.insert(QStringLiteral("TZ"), zone);
        return rowsByName(cli.run(QStringList{"--json"} + arguments + QStringList{folder()}));
    }

    static inline TemporaryFolder *files = nullptr;
    static inline QString made;
    CliRunner cli;
};

QString newNameOf(const QJsonObject &row)
{
    return QFileInfo(row.value("to").toString()).fileName();
}

// Every token over photographs (made and real), music in many encodings and
// scripts, and recordings: each value is the trusted tool's, and each row
// tells the tokens its file has no value for.
TEST_F(Metadata, EveryTokenGivesWhatTheTrustedToolsRead)
{
    QStringList written;
    for (const QString &token : tokens)
        written.append(u'«' + token + u'»');
    const QJsonObject oracle = expected();
    ASSERT_GE(oracle.size(), 30);
    const auto found = rows({"--no-original", "--prefix", written.join(between) + between});
    ASSERT_EQ(found.size(), oracle.size());
    for (auto file = oracle.begin(); file != oracle.end(); ++file) {
        if (file.key() == QLatin1String("long.flac"))
            continue; // its title makes too long a name: below
        const QJsonObject row = found.value(file.key());
        const QStringList values = newNameOf(row).split(between);
        ASSERT_EQ(values.size(), tokens.size() + 1) << file.key().toStdString();
        const QJsonObject truth = file.value().toObject();
        for (qsizetype i = 0; i < tokens.size(); ++i) {
            if (tokens[i] == QLatin1String("camera"))
                continue; // no tool has it: below
            const QString want = truth.value(tokens[i]).toString();
            EXPECT_EQ(values[i], want) << file.key().toStdString() << " «" << tokens[i].toStdString() << "»";
            const QString missing = QStringLiteral("no %1 recorded").arg(QString(tokens[i]).remove(QStringLiteral("tag ")));
            EXPECT_EQ(row.value("warning").toString().contains(missing), want.isEmpty())
                << file.key().toStdString() << ": " << row.value("warning").toString().toStdString();
        }
        EXPECT_EQ(row.value("status").toString(), "rename") << "a missing value does not stop the rename";
    }
    const auto camera = [&](const char *file) { return newNameOf(found.value(file)).section(between, 2, 2); };
    EXPECT_EQ(camera("camera.jpg"), "Canon EOS 5D Mark IV");
    EXPECT_EQ(camera("phone.jpg"), "Apple iPhone 13 Pro Max");
    EXPECT_EQ(camera("night.jpg"), "NIKON D850");
    EXPECT_EQ(camera("xmp_only.jpg"), "FUJIFILM X-T4");
    EXPECT_EQ(camera("Kodak_CX7530.jpg"), "KODAK CX7530 ZOOM DIGITAL CAMERA");
    EXPECT_EQ(camera("Olympus_C8080WZ.jpg"), "OLYMPUS C8080WZ");
    EXPECT_EQ(camera("scripts.jpg"), "Зенит ET");
}

// A value is made safe in a name; one that would make the name too long is
// cut at a character; the table tells the missing ones too; a saved rule
// keeps its tokens.
TEST_F(Metadata, ValuesAreMadeSafeInNamesAndRulesKeepThem)
{
    const auto found = rows({"--prefix", "«artist» - «title» "});
    EXPECT_EQ(newNameOf(found.value("slash.flac")), "AC_DC - Back in Black slash.flac");
    EXPECT_EQ(newNameOf(found.value("id3v1.mp3")), "Sigur Rós - Hoppípolla id3v1.mp3");
    const QString cut = newNameOf(found.value("long.flac"));
    EXPECT_TRUE(cut.startsWith("Björk - Ünïcödé Ünïcödé ")) << "a tab and a line break go, blanks trimmed";
    EXPECT_TRUE(cut.endsWith(".flac"));
    EXPECT_LE(cut.toUtf8().size(), 255);
    EXPECT_GT(cut.toUtf8().size(), 250) << "cut where it would pass 255 bytes, at a character";
    EXPECT_EQ(found.value("long.flac").value("status").toString(), "rename");

    const CliRun table = cli.run({"--prefix", "«lens» ", folder()});
    EXPECT_EQ(table.exitCode, 0);
    EXPECT_TRUE(table.out.contains("Canon_40D.jpg ->  Canon_40D.jpg  (warning: no lens recorded; the new name starts with a space)\n"))
        << table.out.toStdString();
    EXPECT_TRUE(table.out.contains("Nikon_D70.jpg -> 100.0 mm f_2.8 Nikon_D70.jpg\n")) << "XMP's lens";

    ASSERT_EQ(cli.run({"--prefix", "«camera» «tag Exif.Photo.ExposureTime» ", "--save-rule", "Shots"}).exitCode, 0);
    const auto saved = rows({"--rule", "Shots"});
    EXPECT_EQ(newNameOf(saved.value("camera.jpg")), "Canon EOS 5D Mark IV 1_250 s camera.jpg");

    // Renaming goes ahead where values are missing.
    const TemporaryFolder renamed;
    for (const char *name : {"hour.mkv", "id3v23.mp3"})
        ASSERT_TRUE(QFile::copy(folder() + u'/' + QLatin1String(name), renamed.filePath(QLatin1String(name))));
    ASSERT_EQ(cli.run({"--no-original", "--prefix", "«duration» «resolution»", "--apply", renamed.path()}).exitCode, 0);
    EXPECT_EQ(QDir(renamed.path()).entryList(QDir::Files), QStringList({"1.02.06 32x32.mkv", "1.07 .mp3"}));
}

// A picture whose only dates are in XMP is named by the wall clock its XMP
// records, wherever it is renamed.
TEST_F(Metadata, XmpDatesNameAPictureInEveryZone)
{
    for (const QString zone : {"UTC", "America/Los_Angeles", "Asia/Tokyo"}) {
        const auto found = rows({"--exif", "--date-source", "created", "--prefix", "«date %Y-%m-%d %H.%M.%S %z» "}, zone);
        EXPECT_EQ(newNameOf(found.value("xmp_only.jpg")), "2005-09-07 15.07.40 -0700 xmp_only.jpg") << zone.toStdString();
        EXPECT_EQ(newNameOf(found.value("BlueSquare.jpg")), "2005-09-07 15.07.40 -0700 BlueSquare.jpg") << zone.toStdString();
        EXPECT_EQ(newNameOf(found.value("camera.jpg")).left(19), "2024-05-01 10.11.12") << zone.toStdString();
    }
    // --exif alone has the date tokens use the dates taken; a date chosen
    // with it stays chosen.
    EXPECT_EQ(newNameOf(rows({"--exif", "--prefix", "«date %Y-%m-%d» "}).value("BlueSquare.jpg")), "2005-09-07 BlueSquare.jpg");
    EXPECT_NE(newNameOf(rows({"--exif", "--date-source", "modified", "--prefix", "«date %Y» "}).value("BlueSquare.jpg")).left(4), "2005");
}

// A run over photographs and music maps no codec, window, video-acceleration
// or network library; those come with the reader of HEIF pictures or of
// recordings, and only when such a file is read. The dynamic loader tells
// what it mapped (LD_DEBUG).
TEST_F(Metadata, LibrariesForOtherKindsOfFileAreMappedOnlyWhenOneIsRead)
{
    TemporaryFolder mixed;
    TemporaryFolder traces;
    for (const char *name : {"Canon_40D.jpg", "Nikon_D70.jpg", "Panasonic_DMC-FZ30.jpg", "BlueSquare.jpg", "id3v24.mp3"})
        ASSERT_TRUE(QFile::copy(files->filePath(QLatin1String(name)), mixed.filePath(QLatin1String(name)))) << name;
    int runs = 0;
    const auto mapped = [&] {
        const QString trace = traces.filePath(QStringLiteral("run%1").arg(++runs));
        cli.environment.insert(QStringLiteral("LD_DEBUG"), QStringLiteral("files"));
        cli.environment.insert(QStringLiteral("LD_DEBUG_OUTPUT"), trace);
        const CliRun run = cli.run({"--exif", "--prefix", "«camera» «lens» «artist» «duration» «date %Y» ", mixed.path()});
        cli.environment.remove(QStringLiteral("LD_DEBUG"));
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        QStringList libraries;
        for (const QFileInfo &written : QDir(traces.path()).entryInfoList({QStringLiteral("run%1.*").arg(runs)})) {
            QFile file(written.filePath());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            for (const QByteArray &line : file.readAll().split('\n'))
                if (const qsizetype at = line.indexOf("calling init: "); at >= 0)
                    libraries.append(QString::fromUtf8(line.mid(at + 14)).section(u'/', -1));
        }
        return libraries.join(u' ');
    };
    const QRegularExpression heavy(QStringLiteral(
        "\\b(libav\\w+|libsw\\w+|libheif|libde265|libx26[45]|libdav1d|libaom|libvpx|libX11|libxcb|libva[-\\w]*|libOpenCL|libgnutls|libzmq|libssh[\\w]*|libvdpau)\\.so"));

    const QString photographs = mapped();
    EXPECT_TRUE(photographs.contains(QLatin1String("libexif.so"))) << "the trace names what was mapped: " << photographs.toStdString();
    EXPECT_FALSE(heavy.match(photographs).hasMatch()) << heavy.match(photographs).captured().toStdString();

    ASSERT_TRUE(QFile::copy(files->filePath(QStringLiteral("IMG_5195.HEIC")), mixed.filePath(QStringLiteral("IMG_5195.HEIC"))));
    const QString withHeif = mapped();
    EXPECT_TRUE(withHeif.contains(QLatin1String("libheif.so"))) << withHeif.toStdString();
    EXPECT_FALSE(withHeif.contains(QLatin1String("libavformat.so")));

    ASSERT_TRUE(QFile::copy(files->filePath(QStringLiteral("hd.mp4")), mixed.filePath(QStringLiteral("hd.mp4"))));
    const QString withRecording = mapped();
    EXPECT_TRUE(withRecording.contains(QLatin1String("libavformat.so"))) << withRecording.toStdString();
    EXPECT_TRUE(heavy.match(withRecording).hasMatch()) << "what the first run was held to";
}

// A JPEG holding only this XMP packet.
bool writeXmpPicture(const QString &path, const QByteArray &packet)
{
    const QByteArray body = QByteArray("http://ns.adobe.com/xap/1.0/", 29) + packet;
    QByteArray jpeg("\xff\xd8\xff\xe1");
    jpeg.append(char((body.size() + 2) >> 8)).append(char((body.size() + 2) & 0xff)).append(body).append("\xff\xd9");
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(jpeg) == jpeg.size();
}

// An XMP packet's values by their precedence, wherever each stands in the
// packet: a date taken before a creation date, a lens model before a lens,
// as attributes or elements of any description, and a name met only in
// another property's text stands for nothing.
TEST(XmpPackets, ValuesAreTakenByPrecedenceWhereverTheyStand)
{
    const QByteArray head = "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                            "<rdf:Description rdf:about='' xmlns:xap='http://ns.adobe.com/xap/1.0/'"
                            " xmlns:aux='http://ns.adobe.com/exif/1.0/aux/' xmlns:dc='http://purl.org/dc/elements/1.1/'";
    const QByteArray tail = "</rdf:RDF></x:xmpmeta>";
    const QByteArray later = "<rdf:Description rdf:about='' xmlns:exif='http://ns.adobe.com/exif/1.0/'"
                             " xmlns:exifEX='http://cipa.jp/exif/1.0/'>"
                             "<exif:DateTimeOriginal>2011-12-13T14:15:16</exif:DateTimeOriginal>"
                             "<exifEX:LensModel>XF35mmF1.4 R</exifEX:LensModel></rdf:Description>";
    const struct {
        const char *name;
        QByteArray packet;
        const char *named;
    } rows[] = {
        {"later.jpg", head + " xap:CreateDate='2001-02-03T04:05:06' aux:Lens='35mm'></rdf:Description>" + later + tail,
         "20111213 XF35mmF1.4 R later.jpg"},
        {"first.jpg", head + " xap:CreateDate='2001-02-03T04:05:06' aux:Lens='35mm'></rdf:Description>" + tail,
         "20010203 35mm first.jpg"},
        {"text.jpg", head + " xap:CreateDate='2001-02-03T04:05:06'><dc:description><rdf:Alt><rdf:li xml:lang='x-default'>"
                            "no DateTimeOriginal, no LensModel</rdf:li></rdf:Alt></dc:description></rdf:Description>" + tail,
         "20010203  text.jpg"},
    };
    TemporaryFolder pictures;
    for (const auto &row : rows)
        ASSERT_TRUE(writeXmpPicture(pictures.filePath(QLatin1String(row.name)), row.packet)) << row.name;
    CliRunner cli;
    cli.environment.insert(QStringLiteral("XDG_CONFIG_HOME"), cli.data.path());
    const auto found = rowsByName(cli.run({"--json", "--exif", "--date-source", "created", "--prefix", "«date %Y%m%d» «lens» ",
                                           pictures.path()}));
    for (const auto &row : rows)
        EXPECT_EQ(newNameOf(found.value(QLatin1String(row.name))), QLatin1String(row.named)) << row.name;
}

// Files are read on several threads. A thousand pictures, each declaring a
// namespace of its own under a prefix another already uses, are decoded at
// once: each keeps its own title (the XMP toolkit's namespace table is one
// for the process, and a decode that met it half-made lost every value).
TEST(MetadataOnThreads, PacketsDecodedAtOnceEachKeepTheirValues)
{
    TemporaryFolder pictures;
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) {
        const QByteArray packet = QStringLiteral(
            "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
            "<rdf:Description rdf:about='' xmlns:dc='http://purl.org/dc/elements/1.1/'"
            " xmlns:xap='http://ns.adobe.com/xap/1.0/' xmlns:MicrosoftPhoto='http://ns.example.com/photo/%1'>"
            "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Title %1</rdf:li></rdf:Alt></dc:title>"
            "<MicrosoftPhoto:Rating>%1</MicrosoftPhoto:Rating>"
            "</rdf:Description></rdf:RDF></x:xmpmeta>").arg(i).toUtf8();
        ASSERT_TRUE(writeXmpPicture(pictures.filePath(QStringLiteral("f%1.jpg").arg(i)), packet));
    }
    CliRunner cli;
    cli.environment.insert(QStringLiteral("XDG_CONFIG_HOME"), cli.data.path());
    for (int run = 0; run < 3; ++run) { // a fresh table each run
        const auto rows = rowsByName(cli.run({"--json", "--no-original", "--prefix", "«tag Xmp.dc.title»", pictures.path()}));
        ASSERT_EQ(rows.size(), count);
        int lost = 0;
        for (auto row = rows.begin(); row != rows.end(); ++row)
            lost += newNameOf(row.value()) != QStringLiteral("Title %1.jpg").arg(QFileInfo(row.key()).completeBaseName().mid(1));
        EXPECT_EQ(lost, 0) << "of " << count << " in run " << run + 1;
    }
}

} // namespace
