#include "Exiv2Reading.h"

#include "ValueTexts.h"

#include <cmath>
#include <mutex>

// exiv2 0.27 hands images out in std::auto_ptr, deprecated since C++11.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <exiv2/exiv2.hpp>
#pragma GCC diagnostic pop

using Metadata::Field;

namespace {

std::mutex xmpLock;

// The XMP toolkit parses without a lock of its own and registers the
// namespaces a packet declares in one table for the process: two packets
// decoded at once can see each other's half-made entries ("namespace URI and
// prefix mismatch") and lose every XMP value. Every decode goes one at a time.
std::mutex decodeLock;

void prepare()
{
    static std::once_flag ready;
    std::call_once(ready, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        // Files are read on several threads; the toolkit's namespace
        // registry is shared, so registering is done under a lock.
        Exiv2::XmpParser::initialize(
            [](void *, bool lock) {
                if (lock)
                    xmpLock.lock();
                else
                    xmpLock.unlock();
            },
            nullptr);
        Exiv2::enableBMFF(true); // CR3 is read only when asked for
    });
}

QString textOf(const std::string &text)
{
    return ValueTexts::decoded(text.data(), text.size());
}

// A number written as "28/10" or "2.8", as XMP keeps rationals.
std::optional<double> numberOf(const QString &text)
{
    const qsizetype slash = text.indexOf(u'/');
    bool ok = false, ok2 = true;
    const double value = slash < 0 ? text.toDouble(&ok) : text.left(slash).toDouble(&ok) / text.mid(slash + 1).toDouble(&ok2);
    return ok && ok2 && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

// The metadata of one file as exiv2 read it; any part may be missing.
struct Found {
    const Exiv2::ExifData *exif = nullptr;
    const Exiv2::XmpData *xmp = nullptr;
    const Exiv2::IptcData *iptc = nullptr;

    const Exiv2::Exifdatum *exifDatum(uint16_t tag, const char *group) const
    {
        if (!exif)
            return nullptr;
        const auto found = exif->findKey(Exiv2::ExifKey(tag, group));
        return found == exif->end() ? nullptr : &*found;
    }
    QString exifText(uint16_t tag, const char *group) const
    {
        const Exiv2::Exifdatum *datum = exifDatum(tag, group);
        return datum ? textOf(datum->toString()) : QString();
    }
    // A key exiv2 knows, as exiv2 prints it; "" when missing.
    QString exifPrinted(const char *key) const
    {
        return safely([&] {
            const auto found = exif->findKey(Exiv2::ExifKey(key));
            return found == exif->end() ? QString() : textOf(found->print(exif));
        }, exif);
    }
    QString xmpText(const char *key) const
    {
        return safely([&] {
            const auto found = xmp->findKey(Exiv2::XmpKey(key));
            return found == xmp->end() ? QString() : textOf(found->toString(0));
        }, xmp);
    }
    QString iptcText(const char *key) const
    {
        return safely([&] {
            const auto found = iptc->findKey(Exiv2::IptcKey(key));
            return found == iptc->end() ? QString() : textOf(found->toString());
        }, iptc);
    }
    // A key exiv2 does not know (it throws) is not recorded, as is one
    // the file lacks.
    template <typename Read>
    static QString safely(Read read, const void *data)
    {
        if (!data)
            return QString();
        try {
            return read();
        } catch (const std::exception &) {
            return QString();
        }
    }
    // What an easy-access finder of exiv2's (which knows the maker notes
    // too) finds, as a number.
    std::optional<double> easy(Exiv2::ExifData::const_iterator (*finder)(const Exiv2::ExifData &)) const
    {
        if (!exif)
            return std::nullopt;
        const auto found = finder(*exif);
        if (found == exif->end() || found->count() == 0)
            return std::nullopt;
        const double value = found->toFloat(0);
        return std::isfinite(value) ? std::optional(value) : std::nullopt;
    }
};

std::optional<DateTaken> dateOf(const Found &found)
{
    // EXIF: when the picture was taken, else when it was digitized.
    struct ExifSource {
        uint16_t stamp;
        const char *group;
        uint16_t offset;
    };
    constexpr ExifSource exifSources[] = {{0x9003, "Photo", 0x9011}, {0x9003, "Image", 0x9011}, {0x9004, "Photo", 0x9012}};
    for (const ExifSource &source : exifSources)
        if (const auto stamp = RecordedStamp::parse(found.exifText(source.stamp, source.group)))
            return stamp->taken(RecordedStamp::parseOffset(found.exifText(source.offset, "Photo")));
    // Pictures exported, edited or scanned often keep dates in XMP only.
    for (const char *key : {"Xmp.exif.DateTimeOriginal", "Xmp.photoshop.DateCreated", "Xmp.xmp.CreateDate", "Xmp.exif.DateTimeDigitized"})
        if (const auto stamp = RecordedStamp::parse(found.xmpText(key)))
            return stamp->taken();
    const QString iptcDay = found.iptcText("Iptc.Application2.DateCreated");
    if (!iptcDay.isEmpty()) {
        const QString time = found.iptcText("Iptc.Application2.TimeCreated");
        if (const auto stamp = RecordedStamp::parse(time.isEmpty() ? iptcDay : iptcDay + u'T' + time))
            return stamp->taken();
    }
    // Maker notes exiv2 reads a date from.
    for (const char *group : {"Pentax", "PentaxDng"}) {
        const QString day = found.exifPrinted(QStringLiteral("Exif.%1.Date").arg(QLatin1String(group)).toLatin1().constData());
        const QString time = found.exifPrinted(QStringLiteral("Exif.%1.Time").arg(QLatin1String(group)).toLatin1().constData());
        if (const auto stamp = RecordedStamp::parse(day + u' ' + time))
            return stamp->taken();
    }
    return std::nullopt;
}

void setIfMissing(Metadata::Values &values, Field field, const QString &text)
{
    if (!values.has(field) && !text.isEmpty())
        values.set(field, text);
}

// A lens name exiv2 could not look up reads "(65535)": no name at all.
bool namesSomething(const QString &printed)
{
    return !printed.isEmpty() && !(printed.startsWith(u'(') && printed.endsWith(u')'));
}

QString tagOf(const Found &found, const QString &key)
{
    const std::string name = key.toStdString();
    if (key.startsWith(QLatin1String("Exif.")))
        return found.exifPrinted(name.c_str());
    if (key.startsWith(QLatin1String("Xmp.")) && found.xmp) {
        const auto datum = found.xmp->findKey(Exiv2::XmpKey(name));
        if (datum == found.xmp->end())
            return QString();
        // A text in several languages: its default one.
        if (datum->typeId() == Exiv2::langAlt)
            return textOf(static_cast<const Exiv2::LangAltValue &>(datum->value()).toString("x-default"));
        return textOf(datum->print());
    }
    if (key.startsWith(QLatin1String("Iptc.")) && found.iptc) {
        const auto datum = found.iptc->findKey(Exiv2::IptcKey(name));
        return datum == found.iptc->end() ? QString() : textOf(datum->print());
    }
    return QString();
}

void fill(const Found &found, const Metadata::Request &request, Metadata::Values &values)
{
    if (request.dateTaken && !values.taken)
        values.taken = dateOf(found);
    if (request.fields.intersects(Metadata::Fields::photograph())) {
        setIfMissing(values, Field::Make, found.exifText(0x010F, "Image"));
        setIfMissing(values, Field::Make, found.xmpText("Xmp.tiff.Make"));
        setIfMissing(values, Field::Model, found.exifText(0x0110, "Image"));
        setIfMissing(values, Field::Model, found.xmpText("Xmp.tiff.Model"));
        setIfMissing(values, Field::Lens, found.exifText(0xA434, "Photo"));
        setIfMissing(values, Field::Lens, found.xmpText("Xmp.exifEX.LensModel"));
        setIfMissing(values, Field::Lens, found.xmpText("Xmp.aux.Lens"));
        if (!values.has(Field::Lens) && found.exif) {
            const auto lens = Exiv2::lensName(*found.exif);
            if (lens != found.exif->end()) {
                const QString printed = textOf(lens->print(found.exif));
                if (namesSomething(printed))
                    values.set(Field::Lens, printed);
            }
        }
        if (const auto iso = found.easy(Exiv2::isoSpeed); iso && *iso > 0)
            setIfMissing(values, Field::Iso, QString::number(qint64(*iso)));
        else if (const auto xmpIso = numberOf(found.xmpText("Xmp.exif.ISOSpeedRatings")); xmpIso && *xmpIso > 0)
            setIfMissing(values, Field::Iso, QString::number(qint64(*xmpIso)));
        if (const auto fNumber = found.easy(Exiv2::fNumber))
            setIfMissing(values, Field::Aperture, ValueTexts::aperture(*fNumber));
        else if (const auto apex = found.easy(Exiv2::apertureValue))
            setIfMissing(values, Field::Aperture, ValueTexts::aperture(std::pow(2.0, *apex / 2)));
        else if (const auto xmpNumber = numberOf(found.xmpText("Xmp.exif.FNumber")))
            setIfMissing(values, Field::Aperture, ValueTexts::aperture(*xmpNumber));
        if (const auto time = found.easy(Exiv2::exposureTime))
            setIfMissing(values, Field::Exposure, ValueTexts::exposure(*time));
        else if (const auto apex = found.easy(Exiv2::shutterSpeedValue))
            setIfMissing(values, Field::Exposure, ValueTexts::exposure(std::pow(2.0, -*apex)));
        else if (const auto xmpTime = numberOf(found.xmpText("Xmp.exif.ExposureTime")))
            setIfMissing(values, Field::Exposure, ValueTexts::exposure(*xmpTime));
        if (const auto focal = found.easy(Exiv2::focalLength))
            setIfMissing(values, Field::Focal, ValueTexts::focalLength(*focal));
        else if (const auto xmpFocal = numberOf(found.xmpText("Xmp.exif.FocalLength")))
            setIfMissing(values, Field::Focal, ValueTexts::focalLength(*xmpFocal));
    }
    for (const QString &key : request.tags)
        if (values.tag(key).isEmpty()) {
            try {
                const QString text = tagOf(found, key);
                if (!text.isEmpty())
                    values.setTag(key, text);
            } catch (const std::exception &) {
                // A key exiv2 does not know: nothing is recorded under it.
            }
        }
}

} // namespace

namespace Exiv2Reading {

void fromImage(const unsigned char *data, size_t size, const Metadata::Request &request, Metadata::Values &values)
{
    if (!data || size == 0)
        return;
    prepare();
    try {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        const Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(data, long(size));
#pragma GCC diagnostic pop
        if (!image.get())
            return;
        {
            const std::lock_guard decoding(decodeLock);
            image->readMetadata();
        }
        fill({&image->exifData(), &image->xmpData(), &image->iptcData()}, request, values);
        if (values.width <= 0 && request.fields.intersects({Field::Width, Field::Height, Field::Resolution})) {
            values.width = image->pixelWidth();
            values.height = image->pixelHeight();
        }
    } catch (const std::exception &) {
        // Not an image exiv2 can read, or a damaged one.
    }
}

void fromXmpPacket(const QByteArray &packet, const Metadata::Request &request, Metadata::Values &values)
{
    if (packet.isEmpty())
        return;
    prepare();
    try {
        Exiv2::XmpData xmp;
        std::unique_lock decoding(decodeLock);
        const int failed = Exiv2::XmpParser::decode(xmp, packet.toStdString());
        decoding.unlock();
        if (failed == 0)
            fill({nullptr, &xmp, nullptr}, request, values);
    } catch (const std::exception &) {
        // A packet the toolkit cannot read holds nothing for us.
    }
}

void fromExifBlock(const QByteArray &block, const Metadata::Request &request, Metadata::Values &values)
{
    constexpr qsizetype header = 6; // "Exif\0\0"
    if (block.size() <= header)
        return;
    prepare();
    try {
        Exiv2::ExifData exif;
        Exiv2::ExifParser::decode(exif, reinterpret_cast<const Exiv2::byte *>(block.constData()) + header,
                                  uint32_t(block.size() - header));
        fill({&exif, nullptr, nullptr}, request, values);
    } catch (const std::exception &) {
        // A damaged block holds nothing more.
    }
}

} // namespace Exiv2Reading
