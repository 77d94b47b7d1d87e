// Listing folders of 2,000 photographs or recordings with their dates taken,
// beside jhead -c (a C reader of JPEG headers) and exiftool -fast over the
// same files, in one run; each figure the best of three.
//   bench_dates_taken [DIR]   the folders are made in DIR (default /tmp)
// Needs exiftool, heif-enc, ffmpeg and jhead (all in scripts/bootstrap.sh).

#include "ClampedDates.h"
#include "MetadataReader.h"
#include "FolderListing.h"

#include <QGuiApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <cstdio>
#include <functional>

namespace {

constexpr int fileCount = 2000;

bool run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    return process.waitForFinished(600000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

// A photograph of about 125 KB with the EXIF a camera writes: its make and
// model, exposure, lens, GPS, a thumbnail and the dates.
bool makeJpeg(const QString &path)
{
    QImage image(480, 360, QImage::Format_RGB32);
    QRandomGenerator noise(7);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb((x + noise.bounded(60)) % 256, (y + noise.bounded(60)) % 256, noise.bounded(256)));
    const QString thumbnail = path + QStringLiteral(".thumb.jpg");
    if (!image.save(path, "JPEG", 88) || !image.scaled(160, 120).save(thumbnail, "JPEG", 80))
        return false;
    const bool tagged = run(QStringLiteral("exiftool"),
                            {"-q", "-overwrite_original", "-Make=Canon", "-Model=Canon EOS 5D Mark IV", "-Software=Firmware 1.0.4",
                             "-Artist=Jane Doe", "-Copyright=Jane Doe", "-ImageDescription=Harbour at dawn",
                             "-DateTimeOriginal=2019:07:04 01:30:00", "-CreateDate=2019:07:04 01:30:00",
                             "-ModifyDate=2019:07:04 01:30:00", "-OffsetTime=+09:00", "-OffsetTimeOriginal=+09:00",
                             "-OffsetTimeDigitized=+09:00", "-SubSecTimeOriginal=42", "-ExposureTime=1/125", "-FNumber=5.6",
                             "-ISO=400", "-ExposureProgram=Manual", "-MeteringMode=Multi-segment", "-Flash=No Flash",
                             "-FocalLength=50", "-FocalLengthIn35mmFormat=50", "-LensMake=Canon", "-LensModel=EF50mm f/1.8 STM",
                             "-LensSerialNumber=0000123456", "-BodySerialNumber=012345678901", "-WhiteBalance=Auto",
                             "-ExposureCompensation=0", "-ColorSpace=sRGB", "-GPSLatitude=35.6586", "-GPSLatitudeRef=N",
                             "-GPSLongitude=139.7454", "-GPSLongitudeRef=E", "-GPSAltitude=42", "-GPSAltitudeRef=0",
                             "-GPSDateStamp=2019:07:03", "-GPSTimeStamp=16:30:00", "-XMP:Rating=4", "-XMP:Subject=harbour",
                             "-IPTC:Keywords=harbour", QStringLiteral("-ThumbnailImage<=%1").arg(thumbnail), path});
    QFile::remove(thumbnail);
    return tagged;
}

// The folder holding fileCount copies of one file made by `make`.
QString folderOf(const QString &base, const QString &name, const QString &extension,
                 const std::function<bool(const QString &)> &make)
{
    const QString folder = base + QStringLiteral("/nomen-dates-") + name;
    if (QDir(folder).entryList(QDir::Files).size() == fileCount)
        return folder;
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    const QString first = folder + QStringLiteral("/0000.") + extension;
    if (!make(first)) {
        std::fprintf(stderr, "could not make %s\n", qPrintable(first));
        return QString();
    }
    for (int i = 1; i < fileCount; ++i)
        QFile::copy(first, folder + QStringLiteral("/%1.").arg(i, 4, 10, QLatin1Char('0')) + extension);
    return folder;
}

// The best of three runs, in milliseconds, after one run that warms the
// page cache.
double best(const std::function<void()> &work)
{
    work();
    double fastest = 1e12;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer clock;
        clock.start();
        work();
        fastest = std::min(fastest, clock.nsecsElapsed() / 1e6);
    }
    return fastest;
}

double listing(const QString &folder, bool datesTaken, qint64 *found = nullptr)
{
    ClampedDates dates;
    std::atomic<bool> stop{false};
    return best([&] {
        FolderListing listing(dates, stop);
        listing.metadata.dateTaken = datesTaken;
        listing.readMetadata = &MetadataReader::read;
        ListingRequest request;
        request.paths = {folder};
        request.root = folder;
        const Listing listed = listing.list(request);
        if (found)
            *found = std::count_if(listed.items.cbegin(), listed.items.cend(),
                                   [](const ItemRecord &row) { return row.takenOffset().has_value(); });
    });
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QString base = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("/tmp");
    const QString jpegs = folderOf(base, QStringLiteral("jpeg"), QStringLiteral("jpg"), makeJpeg);
    const QString heics = folderOf(base, QStringLiteral("heic"), QStringLiteral("heic"), [&](const QString &path) {
        return run(QStringLiteral("heif-enc"), {"-q", "50", jpegs + QStringLiteral("/0000.jpg"), "-o", path});
    });
    const QString clips = folderOf(base, QStringLiteral("mp4"), QStringLiteral("mp4"), [](const QString &path) {
        return run(QStringLiteral("ffmpeg"), {"-loglevel", "error", "-y", "-f", "lavfi", "-i", "color=c=blue:s=320x240:d=1", "-c:v",
                                              "mpeg4", "-metadata", "creation_time=2022-09-10T11:12:13Z", path});
    });
    if (jpegs.isEmpty() || heics.isEmpty() || clips.isEmpty())
        return 1;
    std::printf("%d files a folder; the JPEG is %lld bytes\n", fileCount, (long long)QFile(jpegs + "/0000.jpg").size());
    for (const auto &[name, folder] : {std::pair{"JPEG", jpegs}, std::pair{"HEIC", heics}, std::pair{"MP4", clips}}) {
        qint64 found = 0;
        const double taken = listing(folder, true, &found);
        std::printf("%-4s  Nomen listing with dates taken %7.1f ms (%lld dates)   without %6.1f ms\n", name, taken,
                    (long long)found, listing(folder, false));
    }
    const QString shell = QStringLiteral("/bin/sh");
    std::printf("JPEG  jhead -c                      %7.1f ms\n",
                best([&] { run(shell, {"-c", "jhead -c \"$0\"/*.jpg", jpegs}); }));
    std::printf("JPEG  exiftool -fast                %7.1f ms\n",
                best([&] { run(QStringLiteral("exiftool"), {"-fast", "-q", "-DateTimeOriginal", jpegs}); }));
    return 0;
}
