#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// A whole file's bytes, opened by its name's own bytes (see PathCodec), so
// a name that is not UTF-8 is read as it is on disk.
namespace FileBytes {

struct Contents {
    std::optional<QByteArray> bytes;
    QString reason; // why the bytes could not be read
    QString error;  // "PATH: reason"
};

Contents read(const QString &path);

} // namespace FileBytes
