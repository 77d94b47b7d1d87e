#include "DatesTaken.h"

#include <QRegularExpression>
#include <QTimeZone>
#include <cstdio>
#include <functional>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <memory>
#include <vector>
#include <mutex>

// exiv2 0.27 hands images out in std::auto_ptr, deprecated since C++11.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <exiv2/exiv2.hpp>
#pragma GCC diagnostic pop

#include <libexif/exif-data.h>
#include <libexif/exif-loader.h>
#include <libheif/heif.h>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/log.h>
}

QDateTime DateTaken::toDateTime() const
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, offset);
}

DateTaken DateTaken::atWallClock(const QDateTime &wallClock, std::optional<qint32> recordedOffset)
{
    const QDateTime asUtc(wallClock.date(), wallClock.time(), Qt::UTC);
    qint32 offset = 0;
    if (recordedOffset) {
        offset = *recordedOffset;
    } else {
        // The local offset of that wall clock; in the hour a clock change
        // skips there is none, and the offset just after it serves: the
        // date is shown at whatever offset it keeps, so it reads the same.
        const QDateTime local(wallClock.date(), wallClock.time(), Qt::LocalTime);
        offset = local.isValid() && local.time() == wallClock.time() ? local.offsetFromUtc()
                                                                      : asUtc.toLocalTime().offsetFromUtc();
    }
    return {asUtc.toMSecsSinceEpoch() - qint64(offset) * 1000, offset};
}

DateTaken DateTaken::inLocalTime(qint64 milliseconds)
{
    return {milliseconds, QDateTime::fromMSecsSinceEpoch(milliseconds).offsetFromUtc()};
}

namespace DatesTaken {

namespace {

// A recorded date and time: "2019:07:04 01:30:00" as EXIF writes it,
// "2022-09-10T11:12:13.000000Z" or "2022-09-10T13:12:13+0200" as recordings
// do; an offset may follow.
struct Stamp {
    QDateTime wallClock;
    std::optional<qint32> offset;
};

std::optional<qint32> offsetOf(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*(?:(Z)|([+-])(\\d{2}):?(\\d{2}))\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    if (!match.captured(1).isEmpty())
        return 0;
    const int hours = match.captured(3).toInt();
    const int minutes = match.captured(4).toInt();
    if (hours > 18 || minutes > 59)
        return std::nullopt;
    return (hours * 3600 + minutes * 60) * (match.captured(2) == QLatin1String("-") ? -1 : 1);
}

std::optional<Stamp> stampOf(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        "^\\s*(\\d{4})[:-](\\d{2})[:-](\\d{2})[T ](\\d{2}):(\\d{2}):(\\d{2})(?:[.,](\\d+))?\\s*(Z|[+-]\\d{2}:?\\d{2})?\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QDate date(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
    const int milliseconds = match.captured(7).isEmpty() ? 0 : match.captured(7).left(3).leftJustified(3, u'0').toInt();
    const QTime time(match.captured(4).toInt(), match.captured(5).toInt(), match.captured(6).toInt(), milliseconds);
    // "0000:00:00 00:00:00" is how a camera says it does not know.
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    Stamp stamp{QDateTime(date, time, Qt::UTC), std::nullopt};
    if (!match.captured(8).isEmpty()) {
        stamp.offset = offsetOf(match.captured(8));
        if (!stamp.offset)
            return std::nullopt;
    }
    return stamp;
}

void prepareExiv2()
{
    static std::once_flag ready;
    std::call_once(ready, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize(); // before images are read on several threads
        Exiv2::enableBMFF(true);        // CR3 is read only when asked for
    });
}

// DateTimeOriginal, else DateTimeDigitized, each with its own offset tag,
// from the EXIF IFD as `textOf` reads a tag of it.
std::optional<DateTaken> chosen(const std::function<QString(uint16_t tag)> &textOf)
{
    constexpr std::pair<uint16_t, uint16_t> tags[] = {{0x9003, 0x9011}, {0x9004, 0x9012}};
    for (const auto &[stampTag, offsetTag] : tags) {
        const std::optional<Stamp> stamp = stampOf(textOf(stampTag));
        if (!stamp)
            continue;
        return DateTaken::atWallClock(stamp->wallClock, stamp->offset ? stamp->offset : offsetOf(textOf(offsetTag)));
    }
    return std::nullopt;
}

// An EXIF block ("Exif\0\0" and a TIFF structure) through libexif, which
// builds only the EXIF (exiv2 reads XMP and IPTC too, several times slower).
std::optional<DateTaken> fromExifBlock(const unsigned char *block, size_t size)
{
    std::unique_ptr<ExifData, void (*)(ExifData *)> data(exif_data_new(), exif_data_unref);
    if (!data || size == 0)
        return std::nullopt;
    // Read as it stands: nothing added, nothing "fixed", maker notes left.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_set_option(data.get(), EXIF_DATA_OPTION_DONT_CHANGE_MAKER_NOTE);
    exif_data_load_data(data.get(), block, unsigned(size));
    return chosen([&data](uint16_t tag) {
        const ExifEntry *entry = exif_content_get_entry(data->ifd[EXIF_IFD_EXIF], ExifTag(tag));
        if (!entry || entry->format != EXIF_FORMAT_ASCII || !entry->data)
            return QString();
        const char *text = reinterpret_cast<const char *>(entry->data);
        return QString::fromLatin1(text, qstrnlen(text, entry->size));
    });
}

std::optional<DateTaken> fromExif(const QByteArray &path)
{
    prepareExiv2();
    try {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        const Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(path.toStdString());
#pragma GCC diagnostic pop
        if (!image.get())
            return std::nullopt;
        image->readMetadata();
        const Exiv2::ExifData &data = image->exifData();
        return chosen([&data](uint16_t tag) {
            const auto found = data.findKey(Exiv2::ExifKey(tag, "Photo"));
            return found == data.end() ? QString() : QString::fromStdString(found->toString());
        });
    } catch (const std::exception &) {
        // Not an image exiv2 can read, a damaged one, or no such file.
    }
    return std::nullopt;
}

// The open file as libheif reads it: only what it asks for (the boxes that
// describe the file and the EXIF block, not the picture), in blocks, since
// it asks a few bytes at a time.
struct HeifInput {
    int descriptor;
    int64_t position;
    int64_t size;
    std::vector<char> block;
    int64_t blockStart = 0;

    bool read(char *data, size_t length)
    {
        if (length == 0)
            return true;
        if (position < blockStart || position + int64_t(length) > blockStart + int64_t(block.size())) {
            block.resize(std::max<size_t>(length, 64 * 1024));
            size_t got = 0;
            while (got < block.size()) {
                const ssize_t n = pread(descriptor, block.data() + got, block.size() - got, position + off_t(got));
                if (n < 0 && errno == EINTR)
                    continue;
                if (n <= 0)
                    break;
                got += size_t(n);
            }
            block.resize(got);
            blockStart = position;
            if (got < length)
                return false;
        }
        std::memcpy(data, block.data() + (position - blockStart), length);
        position += int64_t(length);
        return true;
    }
};

const heif_reader heifReader = {
    1,
    [](void *input) -> int64_t { return static_cast<HeifInput *>(input)->position; },
    [](void *data, size_t size, void *input) -> int { return static_cast<HeifInput *>(input)->read(static_cast<char *>(data), size) ? 0 : 1; },
    [](int64_t position, void *input) -> int {
        static_cast<HeifInput *>(input)->position = position;
        return 0;
    },
    [](int64_t target, void *input) {
        return target <= static_cast<HeifInput *>(input)->size ? heif_reader_grow_status_size_reached
                                                                : heif_reader_grow_status_size_beyond_eof;
    },
};

// HEIF and AVIF: libheif finds the primary image's EXIF block (exiv2 0.27
// misreads where some phones put it).
std::optional<DateTaken> fromHeif(int descriptor)
{
    prepareExiv2();
    struct stat status;
    if (fstat(descriptor, &status) != 0)
        return std::nullopt;
    HeifInput input{descriptor, 0, int64_t(status.st_size), {}, 0};
    std::unique_ptr<heif_context, void (*)(heif_context *)> context(heif_context_alloc(), heif_context_free);
    if (!context || heif_context_read_from_reader(context.get(), &heifReader, &input, nullptr).code != heif_error_Ok)
        return std::nullopt;
    heif_image_handle *primary = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &primary).code != heif_error_Ok)
        return std::nullopt;
    std::unique_ptr<heif_image_handle, void (*)(const heif_image_handle *)> handle(primary, heif_image_handle_release);
    heif_item_id block = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(handle.get(), "Exif", &block, 1) < 1)
        return std::nullopt;
    std::vector<uint8_t> exif(heif_image_handle_get_metadata_size(handle.get(), block));
    // The block opens with where its TIFF header lies, after these four bytes.
    if (exif.size() < 4 || heif_image_handle_get_metadata(handle.get(), block, exif.data()).code != heif_error_Ok)
        return std::nullopt;
    const size_t start = 4 + ((size_t(exif[0]) << 24) | (size_t(exif[1]) << 16) | (size_t(exif[2]) << 8) | exif[3]);
    if (start >= exif.size())
        return std::nullopt;
    static const std::string header("Exif\0\0", 6);
    std::vector<uint8_t> tiff(header.cbegin(), header.cend());
    tiff.insert(tiff.end(), exif.cbegin() + qsizetype(start), exif.cend());
    return fromExifBlock(tiff.data(), tiff.size());
}

// A JPEG's EXIF segment, found by libexif's loader, which reads only as far
// as that segment. `head` is the start of the file, already read; the
// loader is fed from there.
std::optional<DateTaken> fromJpeg(FILE *file, const char *head, size_t headSize)
{
    std::unique_ptr<ExifLoader, void (*)(ExifLoader *)> loader(exif_loader_new(), exif_loader_unref);
    if (!loader)
        return std::nullopt;
    unsigned char buffer[4096];
    size_t size = headSize;
    std::memcpy(buffer, head, headSize);
    while (size > 0 && exif_loader_write(loader.get(), buffer, unsigned(size)))
        size = std::fread(buffer, 1, sizeof buffer, file);
    const unsigned char *exif = nullptr;
    unsigned int exifSize = 0;
    exif_loader_get_buf(loader.get(), &exif, &exifSize);
    return exif ? fromExifBlock(exif, exifSize) : std::nullopt;
}

// The QuickTime family (MP4, MOV, M4V, 3GP, M4A) begins with one of these
// boxes; HEIF, AVIF and CR3 share the form but are photographs.
enum class Kind { Jpeg, Photograph, Heif, Recording };

Kind kindOf(const char *head, size_t size)
{
    if (size >= 3 && std::memcmp(head, "\xFF\xD8\xFF", 3) == 0)
        return Kind::Jpeg;
    if (size < 12)
        return Kind::Photograph;
    const QByteArrayView box(head + 4, 4);
    const QByteArrayView brand(head + 8, 4);
    if (box == "ftyp") {
        if (brand == "crx ")
            return Kind::Photograph;
        for (const char *image : {"heic", "heix", "heim", "heis", "hevc", "hevx", "mif1", "msf1", "avif", "avis"})
            if (brand == image)
                return Kind::Heif;
        return Kind::Recording;
    }
    for (const char *quickTime : {"moov", "mdat", "wide", "free", "skip", "pnot"})
        if (box == quickTime)
            return Kind::Recording;
    return Kind::Photograph;
}

std::optional<DateTaken> fromRecording(const QByteArray &path)
{
    static std::once_flag quiet;
    std::call_once(quiet, [] { av_log_set_level(AV_LOG_QUIET); });
    AVFormatContext *context = nullptr;
    // Named as a file, so a name holding ":" is not taken for a protocol.
    const QByteArray url = "file:" + path;
    if (avformat_open_input(&context, url.constData(), av_find_input_format("mov"), nullptr) != 0)
        return std::nullopt;
    const auto value = [context](const char *key) -> QString {
        const AVDictionaryEntry *entry = av_dict_get(context->metadata, key, nullptr, 0);
        for (unsigned i = 0; !entry && i < context->nb_streams; ++i)
            entry = av_dict_get(context->streams[i]->metadata, key, nullptr, 0);
        return entry ? QString::fromUtf8(entry->value) : QString();
    };
    std::optional<DateTaken> taken;
    // A phone's own record of its clock, with the offset it was at.
    if (const auto stamp = stampOf(value("com.apple.quicktime.creationdate")))
        taken = DateTaken::atWallClock(stamp->wallClock, stamp->offset);
    else if (const auto utc = stampOf(value("creation_time")); utc && utc->wallClock.date().year() > 1904)
        taken = DateTaken::inLocalTime(utc->wallClock.toMSecsSinceEpoch() - qint64(utc->offset.value_or(0)) * 1000);
    avformat_close_input(&context);
    return taken;
}

} // namespace

std::optional<DateTaken> read(const QByteArray &path)
{
    FILE *file = std::fopen(path.constData(), "rbe");
    if (!file)
        return std::nullopt;
    char head[4096];
    const size_t size = std::fread(head, 1, sizeof head, file);
    const Kind kind = kindOf(head, size);
    std::optional<DateTaken> taken = kind == Kind::Jpeg ? fromJpeg(file, head, size)
                                     : kind == Kind::Heif ? fromHeif(fileno(file))
                                                          : std::nullopt;
    std::fclose(file);
    switch (kind) {
    case Kind::Jpeg:
    case Kind::Heif:
        return taken;
    case Kind::Recording:
        return fromRecording(path);
    case Kind::Photograph:
        break;
    }
    return fromExif(path);
}

} // namespace DatesTaken
