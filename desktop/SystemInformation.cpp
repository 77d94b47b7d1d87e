#include "MiscMethods.h"
#include "PathCodec.h"

#include "StringAdditions.h"

#include <QFile>
#include <QVersionNumber>
#include <pwd.h>
#include <unistd.h>

namespace {

// The system version a user means is the distribution's release, from
// os-release (VERSION_ID, e.g. "12" or "22.04"), padded with zeros to three
// numbers; the kernel's version is not it.
QVersionNumber systemVersion()
{
    for (const char *path : {"/etc/os-release", "/usr/lib/os-release"}) {
        QFile file(QString::fromLatin1(path));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (!line.startsWith("VERSION_ID="))
                continue;
            QByteArray value = line.mid(11).trimmed();
            if (value.startsWith('"') && value.endsWith('"') && value.size() >= 2)
                value = value.mid(1, value.size() - 2);
            return QVersionNumber::fromString(QString::fromLatin1(value));
        }
    }
    return QVersionNumber(0, 0, 0);
}

const passwd *currentUser()
{
    return getpwuid(geteuid());
}

} // namespace

QString MiscMethods::returnOSVersion()
{
    const QVersionNumber version = systemVersion();
    // uname -p often says "unknown" on Linux; the machine name is what it means.
    const QString machine = runTask(QStringLiteral("/usr/bin/uname"), std::nullopt, QStringLiteral("-m"), QString());
    const QString family = StringAdditions::containsString(machine, QStringLiteral("86"), false)
                               ? QStringLiteral("Intel")
                               : QStringLiteral("PPC");
    return QStringLiteral("%1.%2.%3 (%4)")
        .arg(version.majorVersion())
        .arg(version.minorVersion())
        .arg(version.microVersion())
        .arg(family);
}

bool MiscMethods::return104Plus()
{
    return systemVersion() >= QVersionNumber(10, 4);
}

bool MiscMethods::return105Plus()
{
    return systemVersion() >= QVersionNumber(10, 5);
}

QString MiscMethods::returnHostName()
{
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0)
        return QString();
    return PathCodec::decode(name);
}

QString MiscMethods::returnShortUserName()
{
    const passwd *user = currentUser();
    return PathCodec::decode(user ? QByteArray(user->pw_name) : qgetenv("USER"));
}

QString MiscMethods::returnFullUserName()
{
    // The account's full-name field is the first comma-separated part of GECOS.
    const passwd *user = currentUser();
    if (!user || !user->pw_gecos)
        return QString(QLatin1String(""));
    return QString::fromLocal8Bit(user->pw_gecos).section(u',', 0, 0);
}

QString MiscMethods::returnFullUserNameInits()
{
    return initialsOf(returnFullUserName());
}

QString MiscMethods::initialsOf(const QString &fullName)
{
    QString initials = QLatin1String("");
    for (const QString &word : StringAdditions::words(fullName))
        initials += StringAdditions::firstCharacter(word);
    return initials;
}
