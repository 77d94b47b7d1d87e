#pragma once

// What a reader module offers: a reader whose library brings codecs, X11,
// VA-API or TLS with it is built as a module of its own and loaded the first
// time a file of its kind is met, so a run that meets none never maps them.
// Plain types only cross between a module and the program.

#include <string>
#include <vector>

namespace ReaderModule {

// A HEIF or AVIF file's primary picture: its EXIF block ("Exif\0\0" and the
// TIFF structure), its XMP packet, and its size as stored.
struct Picture {
    std::string exif;
    std::string xmp;
    int width = -1;
    int height = -1;
};

// A recording: its dates as recorded, its length and its picture's size,
// and the tags its container holds.
struct Recording {
    std::string creationTime;  // the container's, in UTC ("2022-09-10T11:12:13.000000Z")
    std::string phoneDate;     // a phone's own clock with its offset (com.apple.quicktime.creationdate)
    long long durationMs = -1;
    int width = -1;
    int height = -1;
    // Tags by the container's names: title, artist, album_artist, album,
    // track, disc, date, genre.
    std::string title, artist, albumArtist, album, track, disc, date, genre;
};

// A picture to show small, decoded and turned as the file asks: RGBA, a
// byte a channel, rows of `stride` bytes.
struct Pixels {
    int width = 0;
    int height = 0;
    int stride = 0;
    std::vector<unsigned char> rgba;
};

// Each reads from an open descriptor, never by name; false when the file
// is not of its kind or cannot be read.
using ReadPicture = bool (*)(int descriptor, Picture &picture);
using ReadRecording = bool (*)(int descriptor, Recording &recording);
// The file's own thumbnail, else its picture, at most `side` pixels long.
using ReadSmallPicture = bool (*)(int descriptor, int side, Pixels &pixels);

constexpr int version = 2;

struct Api {
    int version;
    ReadPicture readPicture;           // null in a module that reads no pictures
    ReadRecording readRecording;       // null in a module that reads no recordings
    ReadSmallPicture readSmallPicture; // null in a module that shows no pictures
};

} // namespace ReaderModule

// Every module exports this one function.
extern "C" const ReaderModule::Api *nomen_reader_module();
