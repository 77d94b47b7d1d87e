#include "PathConversion.h"
#include "PathCodec.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace PathConversion {

namespace {

QString configuredRootName;

// The label of the device mounted at "/", found among /dev/disk/by-label.
QString rootFileSystemLabel()
{
    struct stat root {};
    if (stat("/", &root) != 0)
        return QString();
    const QDir labels(QStringLiteral("/dev/disk/by-label"));
    for (const QFileInfo &entry : labels.entryInfoList(QDir::System | QDir::Files | QDir::NoDotAndDotDot)) {
        struct stat device {};
        if (stat(PathCodec::encode(entry.absoluteFilePath()).constData(), &device) == 0
            && S_ISBLK(device.st_mode) && device.st_rdev == root.st_dev)
            return entry.fileName().replace(QStringLiteral("\\x20"), QStringLiteral(" "));
    }
    return QString();
}

QString userName()
{
    const QString user = PathCodec::decode(qgetenv("USER"));
    return user.isEmpty() ? QStringLiteral("root") : user;
}

// A name's "/" and ":" trade places between the two forms.
QString swapSeparators(const QString &name)
{
    QString swapped = name;
    for (QChar &c : swapped) {
        if (c == u'/')
            c = u':';
        else if (c == u':')
            c = u'/';
    }
    return swapped;
}

// Where a volume is mounted, and how many leading POSIX components that is.
struct Volume {
    QString name;
    QString mountPoint; // without trailing slash; "" for the root
};

Volume volumeOf(const QStringList &components)
{
    if (components.size() >= 3 && components[0] == QLatin1String("media") && !components[2].isEmpty())
        return {components[2], QStringLiteral("/media/") + components[1] + u'/' + components[2]};
    if (components.size() >= 2 && components[0] == QLatin1String("mnt") && !components[1].isEmpty())
        return {components[1], QStringLiteral("/mnt/") + components[1]};
    return {rootVolumeName(), QString()};
}

QString mountPointOf(const QString &volume)
{
    if (volume == rootVolumeName())
        return QString();
    const QString media = QStringLiteral("/media/%1/%2").arg(userName(), volume);
    if (QFileInfo(media).isDir())
        return media;
    const QString mnt = QStringLiteral("/mnt/") + volume;
    if (QFileInfo(mnt).isDir())
        return mnt;
    return media;
}

} // namespace

QString rootVolumeName()
{
    if (!configuredRootName.isEmpty())
        return configuredRootName;
    static const QString fromSettingOrLabel = [] {
        const QString setting = QSettings(QStringLiteral("Nomen"), QStringLiteral("Nomen"))
                                    .value(QStringLiteral("RootVolumeName"))
                                    .toString();
        if (!setting.isEmpty())
            return setting;
        const QString label = rootFileSystemLabel();
        return label.isEmpty() ? QStringLiteral("Nomen HD") : label;
    }();
    return fromSettingOrLabel;
}

void setRootVolumeName(const QString &name)
{
    configuredRootName = name;
}

QString pathHFS(const QString &self)
{
    if (self.isEmpty() || self.contains(u':'))
        return self;
    const bool folder = self.endsWith(u'/');
    const QString absolute = QDir::cleanPath(QDir::current().absoluteFilePath(self));
    const QStringList components = absolute.split(u'/', Qt::SkipEmptyParts);
    const Volume volume = volumeOf(components);
    const qsizetype skip = volume.mountPoint.isEmpty() ? 0 : volume.mountPoint.count(u'/');
    QStringList hfs = {volume.name};
    for (qsizetype i = skip; i < components.size(); ++i)
        hfs.append(swapSeparators(components[i]));
    QString result = hfs.join(u':');
    // A volume on its own is written with its colon; folders keep their
    // trailing separator.
    if ((folder || hfs.size() == 1) && !result.endsWith(u':'))
        result += u':';
    return result;
}

QString pathPOSIX(const QString &self)
{
    if (self.isEmpty() || !self.contains(u':'))
        return self;
    // A leading colon makes the path relative to the current folder.
    const bool relative = self.startsWith(u':');
    QStringList components = self.split(u':');
    if (relative)
        components.removeFirst();
    if (!components.isEmpty() && components.last().isEmpty())
        components.removeLast();
    QStringList posix;
    QString prefix;
    if (!relative) {
        prefix = mountPointOf(components.isEmpty() ? QString() : components.takeFirst());
    }
    for (const QString &component : components)
        posix.append(swapSeparators(component));
    if (relative)
        return posix.join(u'/');
    const QString path = prefix + u'/' + posix.join(u'/');
    return path.size() > 1 && path.endsWith(u'/') ? path.chopped(1) : path;
}

} // namespace PathConversion

namespace PathConversion {

std::optional<QByteArray> aliasData(const QString &self)
{
    const QByteArray path = PathCodec::encode(pathPOSIX(self));
    struct stat status;
    if (path.isEmpty() || lstat(path.constData(), &status) != 0)
        return std::nullopt;
    return path;
}

std::optional<Descriptor> alias(const QString &self)
{
    const std::optional<QByteArray> record = aliasData(self);
    if (!record)
        return std::nullopt;
    return Descriptor(fourCharCode("alis"), *record);
}

QByteArray fsRef(const QString &)
{
    return QByteArray(80, '\0');
}

} // namespace PathConversion
