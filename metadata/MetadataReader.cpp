#include "MetadataReader.h"

#include "ExifBlock.h"
#include "FileKinds.h"
#include "Exiv2Reading.h"
#include "FileSource.h"
#include "JpegSegments.h"
#include "MusicTags.h"
#include "ReaderModules.h"
#include "ValueTexts.h"
#include "XmpPacket.h"

using Metadata::Field;
using Metadata::Fields;
using Metadata::Request;
using Metadata::Values;
using FileKinds::Kind;

namespace {

constexpr Fields stillFields = {Field::Make, Field::Model, Field::Lens, Field::Iso, Field::Aperture, Field::Exposure, Field::Focal};
constexpr Fields sizeFields = {Field::Width, Field::Height, Field::Resolution};

// What a request asks of the values the files record, «camera» being the
// make and model.
Request normalized(Request request)
{
    if (request.fields.has(Field::Camera))
        request.fields = request.fields | Fields{Field::Make, Field::Model};
    return request;
}

// The fields of a photograph asked and not yet found.
Fields missingStill(const Request &request, const Values &values)
{
    Fields missing;
    for (int i = 0; i < Metadata::FieldCount; ++i) {
        const Field field = Field(i);
        if (stillFields.has(field) && request.fields.has(field) && !values.has(field))
            missing.add(field);
    }
    return missing;
}

// A photograph from its EXIF block and XMP packet: the EXIF first, then
// the XMP, then what exiv2 reads of maker notes or, for a JPEG, of the
// whole file (IPTC, any tag).
void readStill(FileSource &file, const QByteArray &exif, const QByteArray &xmp, bool jpeg, const Request &request,
               Values &values)
{
    const ExifBlock::MakerNote makerNote = ExifBlock::read(exif, request, values);
    XmpPacket::read(xmp, request, values);
    const bool dateMissing = request.dateTaken && !values.taken;
    if (jpeg && (dateMissing || !request.tags.isEmpty())) {
        Exiv2Reading::fromImage(file.mapped(), size_t(file.size()), request, values);
        return;
    }
    const Fields missing = missingStill(request, values);
    const bool inMakerNote = (missing.has(Field::Lens) && makerNote.mayHoldLens)
                             || (!(missing - Fields{Field::Lens}).isEmpty() && makerNote.readable);
    if (dateMissing || !request.tags.isEmpty() || inMakerNote)
        Exiv2Reading::fromExifBlock(exif, request, values);
    if (!request.tags.isEmpty())
        Exiv2Reading::fromXmpPacket(xmp, request, values);
}

void readJpeg(FileSource &file, const Request &request, Values &values)
{
    const bool still = request.dateTaken || request.fields.intersects(stillFields) || !request.tags.isEmpty();
    const JpegSegments segments = JpegSegments::read(file, {still, still, request.fields.intersects(sizeFields)});
    values.width = segments.width;
    values.height = segments.height;
    if (still)
        readStill(file, segments.exif, segments.xmp, true, request, values);
}

void readHeif(FileSource &file, const Request &request, Values &values)
{
    const ReaderModule::Api *module = ReaderModules::load(ReaderModules::Module::Heif);
    ReaderModule::Picture picture;
    if (!module || !module->readPicture || !module->readPicture(file.descriptor(), picture))
        return;
    values.width = picture.width;
    values.height = picture.height;
    readStill(file, QByteArray::fromStdString(picture.exif), QByteArray::fromStdString(picture.xmp), false, request, values);
}

void setIfMissing(Values &values, Field field, const QString &text)
{
    if (!values.has(field) && !text.isEmpty())
        values.set(field, text);
}

QString textOf(const std::string &text)
{
    return ValueTexts::decoded(text.data(), text.size());
}

// A recording through libavformat: its date (a phone's own clock with its
// offset, else the container's time in UTC, shown in local time; QuickTime's
// zero date of 1904 is none), length, picture size and tags.
void readRecording(FileSource &file, const Request &request, Values &values)
{
    const ReaderModule::Api *module = ReaderModules::load(ReaderModules::Module::Media);
    ReaderModule::Recording recording;
    if (!module || !module->readRecording || !module->readRecording(file.descriptor(), recording))
        return;
    if (request.dateTaken && !values.taken) {
        if (const auto phone = RecordedStamp::parse(textOf(recording.phoneDate)))
            values.taken = phone->taken();
        else if (const auto utc = RecordedStamp::parse(textOf(recording.creationTime)); utc && utc->wallClock.date().year() > 1904)
            values.taken = DateTaken::inLocalTime(utc->wallClock.toMSecsSinceEpoch() - qint64(utc->offset.value_or(0)) * 1000);
    }
    if (values.durationMs < 0)
        values.durationMs = recording.durationMs;
    if (values.width <= 0) {
        values.width = recording.width;
        values.height = recording.height;
    }
    if (request.fields.intersects(Fields::music())) {
        setIfMissing(values, Field::Title, textOf(recording.title));
        setIfMissing(values, Field::Artist, textOf(recording.artist));
        setIfMissing(values, Field::AlbumArtist, textOf(recording.albumArtist));
        setIfMissing(values, Field::Album, textOf(recording.album));
        setIfMissing(values, Field::Track, ValueTexts::track(textOf(recording.track)));
        setIfMissing(values, Field::Disc, ValueTexts::disc(textOf(recording.disc)));
        setIfMissing(values, Field::Year, ValueTexts::year(textOf(recording.date)));
        setIfMissing(values, Field::Genre, textOf(recording.genre));
    }
}

// MP4 and QuickTime: tags and an audio file's length through TagLib, dates
// and the picture through libavformat, each only when asked for.
void readQuickTime(FileSource &file, bool audio, const Request &request, Values &values)
{
    const bool length = request.fields.has(Field::Duration);
    if (request.fields.intersects(Fields::music()) || (audio && length))
        MusicTags::read(file, MusicTags::Format::Mp4, request, values);
    if (request.dateTaken || request.fields.intersects(sizeFields) || (length && values.durationMs < 0))
        readRecording(file, request, values);
}

} // namespace

namespace MetadataReader {

Values read(const QByteArray &path, const Request &asked)
{
    Values values;
    values.answered = asked;
    if (asked.isEmpty())
        return values;
    FileSource file(path);
    if (!file.isOpen())
        return values;
    const Request request = normalized(asked);
    const FileKinds::Sniffed kind = FileKinds::sniff(file.head());
    switch (kind.kind) {
    case Kind::Jpeg:
        readJpeg(file, request, values);
        break;
    case Kind::Heif:
        readHeif(file, request, values);
        break;
    case Kind::QuickTime:
    case Kind::AudioMp4:
        readQuickTime(file, kind.kind == Kind::AudioMp4, request, values);
        break;
    case Kind::Container:
        readRecording(file, request, values);
        break;
    case Kind::Music:
        if (request.fields.intersects(Fields::music() | Fields{Field::Duration}))
            MusicTags::read(file, kind.format, request, values);
        break;
    case Kind::Still:
        if (request.dateTaken || request.fields.intersects(stillFields | sizeFields) || !request.tags.isEmpty())
            Exiv2Reading::fromImage(file.mapped(), size_t(file.size()), request, values);
        break;
    }
    values.complete();
    return values;
}

} // namespace MetadataReader
