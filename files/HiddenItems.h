#pragma once

#include <QSet>
#include <QString>

// What keeps an item out of sight besides a leading "." and the invisible
// flag: the system's own folders, and the names listed in "/.hidden" and in
// a folder's own ".hidden" file (each list read again only when it changes).
namespace HiddenItems {

bool isSystemPath(const QString &path);
QSet<QString> listedIn(const QString &folder);
bool isListed(const QString &folder, const QString &name);

} // namespace HiddenItems
