#pragma once

#include <QString>

// Colon-separated (HFS-style) paths and POSIX paths. The first component of
// a colon path is a volume: the root file system's volume name (a setting,
// by default the root file system's label or "Nomen HD"), or a volume
// mounted at /media/USER/NAME or /mnt/NAME. Inside names "/" and ":" swap.
namespace ROZ_PathConversion {

QString pathHFS(const QString &self);
QString pathPOSIX(const QString &self);

QString rootVolumeName();
// For tests and for the setting: an empty name brings back the default.
void setRootVolumeName(const QString &name);

} // namespace ROZ_PathConversion
