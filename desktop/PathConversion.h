#pragma once

#include "Descriptor.h"

#include <QByteArray>
#include <QString>
#include <optional>

// Colon-separated (HFS-style) paths and POSIX paths. The first component of
// a colon path is a volume: the root file system's volume name (a setting,
// by default the root file system's label or "Nomen HD"), or a volume
// mounted at /media/USER/NAME or /mnt/NAME. Inside names "/" and ":" swap.
namespace PathConversion {

QString pathHFS(const QString &self);
QString pathPOSIX(const QString &self);

// Linux keeps no alias records: the minimal record of an item is its path's
// bytes. nullopt when nothing is at the path.
std::optional<QByteArray> aliasData(const QString &self);
// The record in a descriptor of type 'alis', which converts back to the path.
std::optional<Descriptor> alias(const QString &self);
// A file reference has no twin here: always the unset 80-byte reference.
QByteArray fsRef(const QString &self);

QString rootVolumeName();
// For tests and for the setting: an empty name brings back the default.
void setRootVolumeName(const QString &name);

} // namespace PathConversion
