#include "ExifBlock.h"

#include "ThreadArena.h"
#include "ValueTexts.h"

#include <libexif/exif-data.h>
#include <libexif/exif-mem.h>

#include <algorithm>
#include <cmath>
#include <memory>

using Metadata::Field;

namespace {

// libexif's allocator for this thread, over the thread's arena. It
// outlives every file, so it is made before a file's use of the arena
// begins: from the heap.
ExifMem *arenaMemory()
{
    struct Held {
        ExifMem *memory = nullptr;
        Held()
        {
            memory = exif_mem_new([](ExifLong size) { return ThreadArena::allocate(size); },
                                  [](void *data, ExifLong size) { return ThreadArena::reallocate(data, size); },
                                  ThreadArena::release);
        }
        ~Held() { exif_mem_unref(memory); }
    };
    thread_local Held held;
    return held.memory;
}

class Block {
public:
    explicit Block(ExifData *data) : m_data(data), m_order(exif_data_get_byte_order(data)) {}

    const ExifEntry *entry(ExifIfd ifd, ExifTag tag) const { return exif_content_get_entry(m_data->ifd[ifd], tag); }

    QString text(ExifIfd ifd, ExifTag tag) const
    {
        const ExifEntry *found = entry(ifd, tag);
        if (!found || !found->data || (found->format != EXIF_FORMAT_ASCII && found->format != EXIF_FORMAT_UNDEFINED))
            return QString();
        return ValueTexts::decoded(reinterpret_cast<const char *>(found->data), found->size);
    }
    std::optional<double> number(ExifIfd ifd, ExifTag tag) const
    {
        const ExifEntry *found = entry(ifd, tag);
        if (!found || !found->data || found->components < 1)
            return std::nullopt;
        const size_t size = exif_format_get_size(found->format);
        if (size == 0 || found->size < size)
            return std::nullopt;
        switch (found->format) {
        case EXIF_FORMAT_SHORT:
            return exif_get_short(found->data, m_order);
        case EXIF_FORMAT_LONG:
            return exif_get_long(found->data, m_order);
        case EXIF_FORMAT_RATIONAL: {
            const ExifRational value = exif_get_rational(found->data, m_order);
            return value.denominator ? std::optional<double>(double(value.numerator) / value.denominator) : std::nullopt;
        }
        case EXIF_FORMAT_SRATIONAL: {
            const ExifSRational value = exif_get_srational(found->data, m_order);
            return value.denominator ? std::optional<double>(double(value.numerator) / value.denominator) : std::nullopt;
        }
        default:
            return std::nullopt;
        }
    }

private:
    ExifData *m_data;
    ExifByteOrder m_order;
};

// DateTimeOriginal (in the EXIF directory, or the first as older cameras
// put it), else DateTimeDigitized, each with its own offset.
std::optional<DateTaken> dateOf(const Block &block)
{
    struct Source {
        ExifIfd ifd;
        unsigned stamp;
        unsigned offset;
    };
    constexpr Source sources[] = {{EXIF_IFD_EXIF, 0x9003, 0x9011}, {EXIF_IFD_0, 0x9003, 0x9011}, {EXIF_IFD_EXIF, 0x9004, 0x9012}};
    for (const Source &source : sources) {
        const auto stamp = RecordedStamp::parse(block.text(source.ifd, ExifTag(source.stamp)));
        if (stamp)
            return stamp->taken(RecordedStamp::parseOffset(block.text(EXIF_IFD_EXIF, ExifTag(source.offset))));
    }
    return std::nullopt;
}

void setIfMissing(Metadata::Values &values, Field field, const QString &text)
{
    if (!values.has(field) && !text.isEmpty())
        values.set(field, text);
}

// Whether libexif read the maker note and found the entry with this tag.
std::optional<bool> makerNoteHolds(ExifData *data, unsigned tag)
{
    ExifMnoteData *note = exif_data_get_mnote_data(data);
    if (!note)
        return std::nullopt;
    for (unsigned i = 0; i < exif_mnote_data_count(note); ++i)
        if (exif_mnote_data_get_id(note, i) == tag)
            return true;
    return false;
}

ExifBlock::MakerNote makerNoteOf(ExifData *data, const Block &block)
{
    ExifBlock::MakerNote note;
    if (!block.entry(EXIF_IFD_EXIF, EXIF_TAG_MAKER_NOTE))
        return note;
    const QString make = block.text(EXIF_IFD_0, EXIF_TAG_MAKE).toLower();
    const auto madeBy = [&make](std::initializer_list<const char *> makers) {
        return std::any_of(makers.begin(), makers.end(), [&make](const char *maker) { return make.contains(QLatin1String(maker)); });
    };
    note.readable = madeBy({"canon", "nikon", "pentax", "asahi", "ricoh", "minolta", "sony", "olympus", "om digital",
                            "panasonic", "leica", "samsung", "fujifilm", "casio", "sigma"});
    // The makers whose maker notes exiv2 names lenses from; a Nikon's only
    // when it holds lens data (a compact's does not).
    if (madeBy({"nikon"}))
        note.mayHoldLens = makerNoteHolds(data, 0x0098).value_or(true);
    else
        note.mayHoldLens = madeBy({"canon", "pentax", "asahi", "ricoh", "minolta", "sony", "olympus", "om digital",
                                   "panasonic", "leica", "samsung"});
    return note;
}

// The block as libexif reads it, as it stands (nothing added, nothing
// "fixed", maker notes left), into the thread's arena, which the caller
// holds in use; none for an empty block.
using Loaded = std::unique_ptr<ExifData, void (*)(ExifData *)>;
Loaded load(const QByteArray &block, ExifMem *memory)
{
    Loaded data(block.isEmpty() ? nullptr : exif_data_new_mem(memory), exif_data_unref);
    if (!data)
        return data;
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_set_option(data.get(), EXIF_DATA_OPTION_DONT_CHANGE_MAKER_NOTE);
    exif_data_load_data(data.get(), reinterpret_cast<const unsigned char *>(block.constData()), unsigned(block.size()));
    return data;
}

} // namespace

namespace ExifBlock {

MakerNote read(const QByteArray &block, const Metadata::Request &request, Metadata::Values &values)
{
    ExifMem *memory = arenaMemory();
    const ThreadArena::Use arena;
    const Loaded data = load(block, memory);
    if (!data)
        return {};
    const Block exif(data.get());

    if (request.dateTaken && !values.taken)
        values.taken = dateOf(exif);
    const Metadata::Fields fields = request.fields;
    if (fields.intersects(Metadata::Fields::photograph())) {
        setIfMissing(values, Field::Make, exif.text(EXIF_IFD_0, EXIF_TAG_MAKE));
        setIfMissing(values, Field::Model, exif.text(EXIF_IFD_0, EXIF_TAG_MODEL));
        setIfMissing(values, Field::Lens, exif.text(EXIF_IFD_EXIF, ExifTag(0xA434)));
        if (const auto iso = exif.number(EXIF_IFD_EXIF, EXIF_TAG_ISO_SPEED_RATINGS); iso && *iso > 0)
            setIfMissing(values, Field::Iso, QString::number(qint64(*iso)));
        // The APEX values stand in where the plain ones are missing.
        if (const auto fNumber = exif.number(EXIF_IFD_EXIF, EXIF_TAG_FNUMBER))
            setIfMissing(values, Field::Aperture, ValueTexts::aperture(*fNumber));
        else if (const auto apex = exif.number(EXIF_IFD_EXIF, EXIF_TAG_APERTURE_VALUE))
            setIfMissing(values, Field::Aperture, ValueTexts::aperture(std::pow(2.0, *apex / 2)));
        if (const auto time = exif.number(EXIF_IFD_EXIF, EXIF_TAG_EXPOSURE_TIME))
            setIfMissing(values, Field::Exposure, ValueTexts::exposure(*time));
        else if (const auto apex = exif.number(EXIF_IFD_EXIF, EXIF_TAG_SHUTTER_SPEED_VALUE))
            setIfMissing(values, Field::Exposure, ValueTexts::exposure(std::pow(2.0, -*apex)));
        if (const auto focal = exif.number(EXIF_IFD_EXIF, EXIF_TAG_FOCAL_LENGTH))
            setIfMissing(values, Field::Focal, ValueTexts::focalLength(*focal));
    }
    return makerNoteOf(data.get(), exif);
}

Thumbnail thumbnail(const QByteArray &block)
{
    ExifMem *memory = arenaMemory();
    const ThreadArena::Use arena;
    const Loaded data = load(block, memory);
    if (!data || !data->data || data->size == 0)
        return {};
    const auto orientation = Block(data.get()).number(EXIF_IFD_0, EXIF_TAG_ORIENTATION);
    return {QByteArray(reinterpret_cast<const char *>(data->data), qsizetype(data->size)),
            orientation && *orientation >= 1 && *orientation <= 8 ? int(*orientation) : 1};
}

} // namespace ExifBlock
