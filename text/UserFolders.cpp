#include "UserFolders.h"

#include "PathCodec.h"

#include <cstdlib>

namespace UserFolders {

namespace {

QString folder(const char *variable, const char *underHome)
{
    const char *configured = getenv(variable);
    if (configured && configured[0] == '/')
        return PathCodec::decode(configured);
    const char *home = getenv("HOME");
    return PathCodec::decode(home ? home : "") + QLatin1String(underHome);
}

} // namespace

QString configHome()
{
    return folder("XDG_CONFIG_HOME", "/.config");
}

QString dataHome()
{
    return folder("XDG_DATA_HOME", "/.local/share");
}

QString cacheHome()
{
    return folder("XDG_CACHE_HOME", "/.cache");
}

} // namespace UserFolders
