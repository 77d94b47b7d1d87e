#include "ResourceFolder.h"

#include "InstalledData.h"
#include "PathCodec.h"

#include <unistd.h>

namespace ResourceFolder {

QString path()
{
    const QByteArray configured = qgetenv("NOMEN_RESOURCES");
    if (!configured.isEmpty())
        return PathCodec::decode(configured);
    const QString installed = InstalledData::folder();
    return installed.isEmpty() ? PathCodec::decode(NOMEN_RESOURCE_DIR) : installed;
}

QString infoPlistPath()
{
    const QString beside = path() + QStringLiteral("/Info.plist");
    if (::access(PathCodec::encode(beside).constData(), F_OK) == 0)
        return beside;
    return PathCodec::decode(NOMEN_BUILT_INFO_PLIST);
}

} // namespace ResourceFolder
