#pragma once

#include "MusicTags.h"

#include <QByteArrayView>

// What kind a file is, told from its first bytes, never from its name.
namespace FileKinds {

enum class Kind { Jpeg, Heif, QuickTime, AudioMp4, Container, Music, Still };

struct Sniffed {
    Kind kind;
    MusicTags::Format format = MusicTags::Format::Mpeg; // of music
};

Sniffed sniff(QByteArrayView head);

} // namespace FileKinds
