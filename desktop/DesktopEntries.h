#pragma once

#include <QString>

// Applications are desktop entries, found by the freedesktop rules.
namespace DesktopEntries {

// The absolute path of the program the entry with this identifier
// ("org.gnome.TextEditor", with or without ".desktop") starts; "" when no
// such entry is installed or its program is not found.
QString programOf(const QString &identifier);

} // namespace DesktopEntries
