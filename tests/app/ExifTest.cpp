#include "ExifDates.h"
#include "TestPrinting.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <exiv2/exiv2.hpp>

namespace {

// A small JPEG with the given EXIF tags, written the way a camera would.
QString photo(const QTemporaryDir &dir, const QString &name, const std::map<std::string, std::string> &tags)
{
    const QString path = dir.filePath(name);
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::blue);
    EXPECT_TRUE(image.save(path, "JPEG"));
    auto file = Exiv2::ImageFactory::open(path.toStdString());
    file->readMetadata();
    Exiv2::ExifData data;
    for (const auto &[key, value] : tags)
        data[key] = value;
    file->setExifData(data);
    file->writeMetadata();
    return path;
}

TEST(Exif, TheDateThePhotographWasTaken)
{
    QTemporaryDir dir;
    const QString local = photo(dir, "local.jpg", {{"Exif.Photo.DateTimeOriginal", "2005:03:07 14:05:09"}});
    EXPECT_EQ(ExifDates::imageCreatedDate(local), QVariant(QDateTime(QDate(2005, 3, 7), QTime(14, 5, 9), Qt::LocalTime)));

    const QString offset = photo(dir, "offset.jpg",
                                 {{"Exif.Photo.DateTimeOriginal", "2005:03:07 14:05:09"}, {"Exif.Photo.OffsetTimeOriginal", "-05:00"}});
    EXPECT_EQ(ExifDates::imageCreatedDate(offset).toDateTime().toUTC(),
              QDateTime(QDate(2005, 3, 7), QTime(19, 5, 9), Qt::UTC));

    const QString digitized = photo(dir, "digitized.jpg", {{"Exif.Photo.DateTimeDigitized", "2010:12:31 23:59:58"}});
    EXPECT_EQ(ExifDates::imageCreatedDate(digitized).toDateTime().date(), QDate(2010, 12, 31));

    const QString original = photo(dir, "both.jpg", {{"Exif.Photo.DateTimeDigitized", "2010:12:31 23:59:58"},
                                                     {"Exif.Photo.DateTimeOriginal", "2001:01:01 00:00:01"}});
    EXPECT_EQ(ExifDates::imageCreatedDate(original).toDateTime().date(), QDate(2001, 1, 1)) << "the original first";
}

TEST(Exif, FilesWithoutADateAnswerANonDate)
{
    QTemporaryDir dir;
    EXPECT_EQ(ExifDates::imageCreatedDate(photo(dir, "none.jpg", {{"Exif.Image.Make", "Nomen"}})), QVariant(false));
    EXPECT_EQ(ExifDates::imageCreatedDate(photo(dir, "bad.jpg", {{"Exif.Photo.DateTimeOriginal", "not a date"}})), QVariant(false));
    QFile text(dir.filePath("notes.txt"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("hello");
    text.close();
    EXPECT_EQ(ExifDates::imageCreatedDate(text.fileName()), QVariant(false));
    EXPECT_EQ(ExifDates::imageCreatedDate(dir.filePath("missing.jpg")), QVariant(false));
}

} // namespace

#pragma GCC diagnostic pop
