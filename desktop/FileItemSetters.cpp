#include "MiscMethods.h"
#include "CalendarFormat.h"
#include "Collections.h"
#include "PathCodec.h"
#include "SpawnArguments.h"

#include "FileMoves.h"
#include "FileStatus.h"
#include "PathConversion.h"
#include "StringAdditions.h"
#include "DictionaryAdditions.h"

#include <QFile>
#include <QStandardPaths>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

using PathConversion::pathPOSIX;

namespace {

// A type or creator code is exactly four characters.
std::optional<quint32> codeFrom(const QString &text)
{
    if (text.size() != 4)
        return quint32(0);
    quint32 code = 0;
    for (QChar c : text) {
        if (c.unicode() > 0xFF)
            return std::nullopt;
        code = (code << 8) | c.unicode();
    }
    return code;
}

// Runs a change with administrator rights through polkit's pkexec, which
// asks for the password; answers whether the change succeeded.
bool runAsAdministrator(const QStringList &command)
{
    const QString pkexec = QStandardPaths::findExecutable(QStringLiteral("pkexec"));
    if (pkexec.isEmpty())
        return false;
    const SpawnArguments words(pkexec, command);
    pid_t pid = -1;
    if (posix_spawn(&pid, words.program(), nullptr, nullptr, words.argv(), environ) != 0)
        return false;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool setOwnership(const QString &path, const QString &owner, const QString &group)
{
    const passwd *user = getpwnam(PathCodec::encode(owner).constData());
    const struct group *team = getgrnam(PathCodec::encode(group).constData());
    // The item itself: a link put in its place is changed, never what it
    // names; and a path beginning with "-" is a path, not an option.
    if (user && team && lchown(PathCodec::encode(path).constData(), user->pw_uid, team->gr_gid) == 0)
        return true;
    return runAsAdministrator({QStringLiteral("chown"), QStringLiteral("-h"), owner + u':' + group, QStringLiteral("--"), path});
}

} // namespace

std::optional<QDateTime> MiscMethods::dateFromString(const QString &text)
{
    return CalendarFormat::parseDefault(text);
}

bool MiscMethods::setCreationDate(const QString &, const QString &)
{
    // Linux has no call that sets a birth time.
    return false;
}

bool MiscMethods::setModificationDate(const QString &path, const QString &date)
{
    const auto when = dateFromString(date);
    const QString posix = pathPOSIX(path);
    if (!when || !FileStatus::of(posix, true))
        return false;
    const qint64 ms = when->toMSecsSinceEpoch();
    const timespec times[2] = {{0, UTIME_OMIT}, {time_t(ms / 1000), long((ms % 1000) * 1000000)}};
    return utimensat(AT_FDCWD, PathCodec::encode(posix).constData(), times, 0) == 0;
}

bool MiscMethods::setCreationAndModificationDate(const QString &path, const QString &date)
{
    // Both dates change in one go or not at all, and the creation date
    // cannot be set here: nothing changes.
    Q_UNUSED(path);
    Q_UNUSED(date);
    return false;
}

QString MiscMethods::randomDateString()
{
    // No day after the 28th keeps every month valid; the zero hour, minute
    // and second are left out on purpose. Drawn in this order.
    using Collections::randomLongFrom;
    const int year = randomLongFrom(2002, 2006);
    const int month = randomLongFrom(1, 12);
    const int day = randomLongFrom(1, 28);
    const int hour = randomLongFrom(1, 23);
    const int minute = randomLongFrom(1, 59);
    const int second = randomLongFrom(1, 59);
    return QString::asprintf("%d-%02d-%02d %02d:%02d:%02d +0600", year, month, day, hour, minute, second);
}

bool MiscMethods::randomizeDate(const QString &path)
{
    return setCreationAndModificationDate(path, randomDateString());
}

bool MiscMethods::setCreatorCode(const QString &path, const QString &code)
{
    const QString posix = pathPOSIX(path);
    const auto value = codeFrom(code);
    return value && FileStatus::of(posix, true) && FinderInfo::writeCodes(posix, std::nullopt, *value);
}

bool MiscMethods::setFileType(const QString &path, const QString &type)
{
    const QString posix = pathPOSIX(path);
    const auto value = codeFrom(type);
    return value && FileStatus::of(posix, true) && FinderInfo::writeCodes(posix, *value, std::nullopt);
}

bool MiscMethods::setItemName(const QString &path, const QString &name)
{
    const QString posix = pathPOSIX(path);
    if (!FileStatus::of(posix, false) || name.isEmpty() || name.contains(u'/'))
        return false;
    const QString renamed = StringAdditions::desuffix(posix, returnItemName(posix)) + name;
    return FileMoves::moveWithoutReplacing(posix, renamed) == 0;
}

bool MiscMethods::setItemOwner(const QString &path, const QString &owner)
{
    const QString posix = pathPOSIX(path);
    const auto status = FileStatus::of(posix, true);
    if (!status)
        return false;
    if (FileStatus::ownerName(status->owner) == owner)
        return true;
    return setOwnership(posix, owner, FileStatus::groupName(status->group));
}

bool MiscMethods::setItemGroup(const QString &path, const QString &group)
{
    const QString posix = pathPOSIX(path);
    const auto status = FileStatus::of(posix, true);
    if (!status)
        return false;
    if (FileStatus::groupName(status->group) == group)
        return true;
    return setOwnership(posix, FileStatus::ownerName(status->owner), group);
}

bool MiscMethods::setItemPermissions(const QString &path, const QVariant &permissions)
{
    const QString posix = pathPOSIX(path);
    const auto status = FileStatus::of(posix, true);
    if (!status)
        return false;
    // Compared by integer value; text is read as the platform reads numbers.
    const int requested = permissions.typeId() == QMetaType::QString
                              ? DictionaryAdditions::intValue(permissions.toString())
                              : permissions.toInt();
    if (int(status->mode & 07777) == requested)
        return true;
    if (chmod(PathCodec::encode(posix).constData(), mode_t(requested) & 07777) == 0)
        return true;
    // The text form goes to chmod, which reads it as an octal mode.
    return runAsAdministrator({QStringLiteral("chmod"), QString::number(requested), QStringLiteral("--"), posix});
}
