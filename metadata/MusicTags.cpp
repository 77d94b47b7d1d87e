#include "MusicTags.h"

#include "FileSource.h"
#include "ValueTexts.h"

#include <taglib/aifffile.h>
#include <taglib/apefile.h>
#include <taglib/asffile.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/oggflacfile.h>
#include <taglib/opusfile.h>
#include <taglib/speexfile.h>
#include <taglib/tdebuglistener.h>
#include <taglib/tiostream.h>
#include <taglib/tpropertymap.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>

#include <memory>
#include <mutex>

using Metadata::Field;

namespace {

// The open file as TagLib reads it: read-only, through the one descriptor.
class SourceStream final : public TagLib::IOStream {
public:
    explicit SourceStream(const FileSource &file) : m_file(file) {}

    TagLib::FileName name() const override { return ""; }
    TagLib::ByteVector readBlock(unsigned long length) override
    {
        const QByteArray read = m_file.bytes(m_position, qint64(length));
        m_position += read.size();
        return TagLib::ByteVector(read.constData(), unsigned(read.size()));
    }
    void writeBlock(const TagLib::ByteVector &) override {}
    void insert(const TagLib::ByteVector &, unsigned long, unsigned long) override {}
    void removeBlock(unsigned long, unsigned long) override {}
    bool readOnly() const override { return true; }
    bool isOpen() const override { return m_file.isOpen(); }
    void seek(long offset, Position from) override
    {
        const qint64 base = from == Beginning ? 0 : from == Current ? m_position : m_file.size();
        m_position = std::max<qint64>(0, base + offset);
    }
    void clear() override {}
    long tell() const override { return long(m_position); }
    long length() override { return long(m_file.size()); }
    void truncate(long) override {}

private:
    const FileSource &m_file;
    qint64 m_position = 0;
};

// TagLib tells of damaged files on standard error; a listing says nothing.
class Quiet final : public TagLib::DebugListener {
public:
    void printMessage(const TagLib::String &) override {}
};

std::unique_ptr<TagLib::File> open(TagLib::IOStream *stream, MusicTags::Format format)
{
    using Format = MusicTags::Format;
    constexpr auto style = TagLib::AudioProperties::Average;
    switch (format) {
    case Format::Mpeg:
        return std::make_unique<TagLib::MPEG::File>(stream, TagLib::ID3v2::FrameFactory::instance(), true, style);
    case Format::Flac:
        return std::make_unique<TagLib::FLAC::File>(stream, TagLib::ID3v2::FrameFactory::instance(), true, style);
    case Format::OggVorbis:
        return std::make_unique<TagLib::Ogg::Vorbis::File>(stream, true, style);
    case Format::OggOpus:
        return std::make_unique<TagLib::Ogg::Opus::File>(stream, true, style);
    case Format::OggFlac:
        return std::make_unique<TagLib::Ogg::FLAC::File>(stream, true, style);
    case Format::OggSpeex:
        return std::make_unique<TagLib::Ogg::Speex::File>(stream, true, style);
    case Format::Mp4:
        return std::make_unique<TagLib::MP4::File>(stream, true, style);
    case Format::Wav:
        return std::make_unique<TagLib::RIFF::WAV::File>(stream, true, style);
    case Format::Aiff:
        return std::make_unique<TagLib::RIFF::AIFF::File>(stream, true, style);
    case Format::Asf:
        return std::make_unique<TagLib::ASF::File>(stream, true, style);
    case Format::Ape:
        return std::make_unique<TagLib::APE::File>(stream, true, style);
    }
    return nullptr;
}

QString textOf(const TagLib::StringList &texts)
{
    QStringList parts;
    for (const TagLib::String &text : texts) {
        const QString part = QString::fromStdString(text.to8Bit(true)).trimmed();
        if (!part.isEmpty())
            parts.append(part);
    }
    // Several artists (or genres) are all named.
    return parts.join(QStringLiteral(", "));
}

} // namespace

namespace MusicTags {

void read(const FileSource &file, Format format, const Metadata::Request &request, Metadata::Values &values)
{
    static std::once_flag quiet;
    std::call_once(quiet, [] {
        static Quiet listener;
        TagLib::setDebugListener(&listener);
    });
    SourceStream stream(file);
    const std::unique_ptr<TagLib::File> tagged = open(&stream, format);
    if (!tagged || !tagged->isValid())
        return;
    if (request.fields.intersects(Metadata::Fields::music())) {
        const TagLib::PropertyMap properties = tagged->properties();
        const auto value = [&properties](const char *key) {
            const auto found = properties.find(key);
            return found == properties.end() ? QString() : textOf(found->second);
        };
        // A file's fullest tag gives its values; what it lacks, another tag
        // of the file gives (an MP3's ID3v1 beside an ID3v2 that holds
        // only the encoder's name).
        const TagLib::Tag *any = tagged->tag();
        const auto either = [&](const char *key, TagLib::String (TagLib::Tag::*basic)() const) {
            const QString text = value(key);
            return text.isEmpty() && any ? textOf(TagLib::StringList((any->*basic)())) : text;
        };
        const auto number = [&](const char *key, unsigned (TagLib::Tag::*basic)() const) {
            const QString text = value(key);
            return text.isEmpty() && any && (any->*basic)() > 0 ? QString::number((any->*basic)()) : text;
        };
        values.set(Field::Artist, either("ARTIST", &TagLib::Tag::artist));
        values.set(Field::AlbumArtist, value("ALBUMARTIST"));
        values.set(Field::Album, either("ALBUM", &TagLib::Tag::album));
        values.set(Field::Title, either("TITLE", &TagLib::Tag::title));
        values.set(Field::Track, ValueTexts::track(number("TRACKNUMBER", &TagLib::Tag::track)));
        values.set(Field::Disc, ValueTexts::disc(value("DISCNUMBER")));
        values.set(Field::Year, ValueTexts::year(number("DATE", &TagLib::Tag::year)));
        values.set(Field::Genre, either("GENRE", &TagLib::Tag::genre));
    }
    if (const TagLib::AudioProperties *audio = tagged->audioProperties(); audio && values.durationMs < 0) {
        const int length = audio->lengthInMilliseconds();
        if (length > 0)
            values.durationMs = length;
    }
}

} // namespace MusicTags
