#pragma once

#include <QString>

// The user's base folders as the XDG base directory rules give them: the
// variable when it holds an absolute path, else the default under $HOME.
namespace UserFolders {

QString configHome(); // $XDG_CONFIG_HOME, ~/.config
QString dataHome();   // $XDG_DATA_HOME, ~/.local/share
QString cacheHome();  // $XDG_CACHE_HOME, ~/.cache

} // namespace UserFolders
