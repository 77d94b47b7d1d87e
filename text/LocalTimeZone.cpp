#include "LocalTimeZone.h"

#include "FileBytes.h"
#include "PathCodec.h"

#include <QList>
#include <climits>
#include <unistd.h>

#include <cstdlib>
#include <ctime>

void pinLocalTimeZone()
{
    if (std::getenv("TZ") == nullptr) {
        setenv("TZ", ":/etc/localtime", 0);
        tzset();
    }
}

namespace SystemTimeZone {

namespace {

const QString ZoneFolderMark = QStringLiteral("zoneinfo/");

QString zoneInPath(const QString &path)
{
    const qsizetype at = path.lastIndexOf(ZoneFolderMark);
    return at < 0 ? QString() : path.mid(at + ZoneFolderMark.size());
}

QString linkTarget(const QString &link)
{
    char target[PATH_MAX];
    const ssize_t length = ::readlink(PathCodec::encode(link).constData(), target, sizeof target - 1);
    return length > 0 ? PathCodec::decode(QByteArray(target, length)) : QString();
}

QString canonicalPath(const QString &path)
{
    char resolved[PATH_MAX];
    return ::realpath(PathCodec::encode(path).constData(), resolved) ? PathCodec::decode(resolved) : QString();
}

QString countryInTable(const QString &zone, const QString &table)
{
    if (zone.isEmpty())
        return QString();
    const auto contents = FileBytes::read(table);
    if (!contents.bytes)
        return QString();
    // Lines read "CC<tab>coordinates<tab>Zone/Name[<tab>comment]".
    for (const QByteArray &line : contents.bytes->split('\n')) {
        if (line.startsWith('#'))
            continue;
        const QList<QByteArray> fields = line.split('\t');
        if (fields.size() >= 3 && PathCodec::decode(fields[2]) == zone)
            return PathCodec::decode(fields[0]);
    }
    return QString();
}

} // namespace

QString zoneName(const QString &timezoneFile, const QString &localtimeLink)
{
    if (const auto named = FileBytes::read(timezoneFile); named.bytes) {
        const QString first = PathCodec::decode(named.bytes->left(named.bytes->indexOf('\n'))).trimmed();
        if (!first.isEmpty())
            return first;
    }
    return zoneInPath(linkTarget(localtimeLink));
}

QString countryOfZone(const QString &zone, const QString &zoneTable)
{
    const QString country = countryInTable(zone, zoneTable);
    if (!country.isEmpty() || zone.isEmpty())
        return country;
    const QString folder = zoneTable.left(zoneTable.lastIndexOf(u'/') + 1);
    const QString linked = zoneInPath(canonicalPath(folder + zone));
    return linked.isEmpty() || linked == zone ? QString() : countryInTable(linked, zoneTable);
}

} // namespace SystemTimeZone
