#include "FileKinds.h"

namespace FileKinds {

Sniffed sniff(QByteArrayView head)
{
    const auto at = [&head](qsizetype offset, QByteArrayView expected) {
        return head.size() >= offset + expected.size() && head.sliced(offset, expected.size()) == expected;
    };
    if (at(0, "\xFF\xD8\xFF"))
        return {Kind::Jpeg};
    if (at(4, "ftyp") && head.size() >= 12) {
        const QByteArrayView brand = head.sliced(8, 4);
        if (brand == "crx ")
            return {Kind::Still}; // Canon's CR3, a raw exiv2 reads
        for (const char *picture : {"heic", "heix", "heim", "heis", "hevc", "hevx", "mif1", "msf1", "avif", "avis"})
            if (brand == picture)
                return {Kind::Heif};
        for (const char *audio : {"M4A ", "M4B ", "M4P "})
            if (brand == audio)
                return {Kind::AudioMp4};
        return {Kind::QuickTime};
    }
    for (const char *quickTime : {"moov", "mdat", "wide", "free", "skip", "pnot"})
        if (at(4, quickTime))
            return {Kind::QuickTime};
    using Format = MusicTags::Format;
    if (at(0, "ID3"))
        return {Kind::Music, Format::Mpeg};
    if (at(0, "fLaC"))
        return {Kind::Music, Format::Flac};
    if (at(0, "OggS")) {
        // The codec names itself in the first packet.
        if (at(28, "\x01vorbis"))
            return {Kind::Music, Format::OggVorbis};
        if (at(28, "OpusHead"))
            return {Kind::Music, Format::OggOpus};
        if (at(28, "\x7F" "FLAC"))
            return {Kind::Music, Format::OggFlac};
        if (at(28, "Speex   "))
            return {Kind::Music, Format::OggSpeex};
        return {Kind::Container};
    }
    if (at(0, "RIFF") && at(8, "WAVE"))
        return {Kind::Music, Format::Wav};
    if (at(0, "RIFF") && at(8, "AVI "))
        return {Kind::Container};
    if (at(0, "FORM") && (at(8, "AIFF") || at(8, "AIFC")))
        return {Kind::Music, Format::Aiff};
    if (at(0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"))
        return {Kind::Music, Format::Asf};
    if (at(0, "MAC "))
        return {Kind::Music, Format::Ape};
    if (at(0, "\x1A\x45\xDF\xA3"))
        return {Kind::Container}; // Matroska, WebM
    // An MPEG audio frame without a tag before it (layer bits set, so not AAC).
    if (head.size() >= 2 && uchar(head[0]) == 0xFF && (uchar(head[1]) & 0xE0) == 0xE0 && (uchar(head[1]) & 0x06) != 0)
        return {Kind::Music, Format::Mpeg};
    return {Kind::Still};
}

} // namespace FileKinds
