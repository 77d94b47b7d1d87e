#pragma once

#include "MetadataValues.h"

class FileSource;

// Music and other recordings' tags through TagLib, the field's library for
// them: ID3v1 and ID3v2 (MP3), Vorbis comments (FLAC, Ogg Vorbis, Opus),
// MP4 atoms (M4A, and tags on MP4 video), RIFF INFO and ID3 (WAV, AIFF),
// ASF (WMA) and APE; each text decoded from the encoding its tag declares.
// Also the length of an audio recording.
namespace MusicTags {

enum class Format { Mpeg, Flac, OggVorbis, OggOpus, OggFlac, OggSpeex, Mp4, Wav, Aiff, Asf, Ape };

void read(const FileSource &file, Format format, const Metadata::Request &request, Metadata::Values &values);

} // namespace MusicTags
