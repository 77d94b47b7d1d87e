#include "ExifDates.h"
#include "PathCodec.h"

#include <QDateTime>
#include <QFile>
#include <QTimeZone>
// exiv2 0.27 hands images out in std::auto_ptr, deprecated since C++11.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <exiv2/exiv2.hpp>

namespace ExifDates {

namespace {

std::optional<QDateTime> parse(const std::string &stamp, const std::string &offset)
{
    QDateTime date = QDateTime::fromString(QString::fromStdString(stamp).trimmed(), QStringLiteral("yyyy:MM:dd HH:mm:ss"));
    if (!date.isValid())
        return std::nullopt;
    const QString zone = QString::fromStdString(offset).trimmed();
    if (zone.size() == 6 && (zone[0] == u'+' || zone[0] == u'-') && zone[3] == u':') {
        const int seconds = (zone.mid(1, 2).toInt() * 3600 + zone.mid(4, 2).toInt() * 60) * (zone[0] == u'-' ? -1 : 1);
        date.setTimeZone(QTimeZone(seconds));
        return date.toLocalTime();
    }
    return date; // local time
}

std::string valueOf(const Exiv2::ExifData &data, const char *key)
{
    const auto found = data.findKey(Exiv2::ExifKey(key));
    return found == data.end() ? std::string() : found->toString();
}

} // namespace

QVariant imageCreatedDate(const QString &path)
{
    static const bool quiet = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        return true;
    }();
    Q_UNUSED(quiet);
    try {
        auto image = Exiv2::ImageFactory::open(PathCodec::encode(path).toStdString());
        if (!image.get())
            return false;
        image->readMetadata();
        const Exiv2::ExifData &data = image->exifData();
        const std::pair<const char *, const char *> tags[] = {
            {"Exif.Photo.DateTimeOriginal", "Exif.Photo.OffsetTimeOriginal"},
            {"Exif.Photo.DateTimeDigitized", "Exif.Photo.OffsetTimeDigitized"}};
        for (const auto &[stamp, offset] : tags)
            if (const auto date = parse(valueOf(data, stamp), valueOf(data, offset)))
                return *date;
    } catch (const std::exception &) {
        // Not an image exiv2 can read, or no such file: no date.
    }
    return false;
}

} // namespace ExifDates

#pragma GCC diagnostic pop
