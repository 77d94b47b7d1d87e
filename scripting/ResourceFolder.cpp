#include "ResourceFolder.h"

#include "PathCodec.h"

#include <unistd.h>

namespace ResourceFolder {

QString path()
{
    const QByteArray configured = qgetenv("NOMEN_RESOURCES");
    return configured.isEmpty() ? PathCodec::decode(NOMEN_RESOURCE_DIR) : PathCodec::decode(configured);
}

QString infoPlistPath()
{
    const QString beside = path() + QStringLiteral("/Info.plist");
    if (::access(PathCodec::encode(beside).constData(), F_OK) == 0)
        return beside;
    return PathCodec::decode(NOMEN_BUILT_INFO_PLIST);
}

} // namespace ResourceFolder
