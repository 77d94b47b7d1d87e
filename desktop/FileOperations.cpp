#include "MiscMethods.h"

#include "DesktopEntries.h"
#include "FileBytes.h"
#include "FileMoves.h"
#include "FileStatus.h"
#include "PathCodec.h"
#include "PathConversion.h"
#include "PathNames.h"
#include "StringAdditions.h"
#include "SystemLog.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

using PathConversion::pathPOSIX;

namespace {

enum class Transfer { Move, Copy };

std::optional<QByteArray> resolved(const QByteArray &path)
{
    char *real = ::realpath(path.constData(), nullptr);
    if (!real)
        return std::nullopt;
    QByteArray answer(real);
    ::free(real);
    return answer;
}

// The canonical form of the item a path names, a link in its last component
// left unfollowed (a trailing slash does not make it followed).
std::optional<QByteArray> canonicalItem(const QByteArray &path)
{
    const QByteArray trimmed = PathNames::withoutTrailingSlashes(path);
    const QByteArray name = trimmed.mid(trimmed.lastIndexOf('/') + 1);
    if (name.isEmpty() || name == "." || name == ".." || trimmed == "/")
        return resolved(trimmed);
    const auto folder = resolved(PathNames::folderOf(trimmed));
    if (!folder)
        return std::nullopt;
    return (*folder == "/" ? QByteArray() : *folder) + '/' + name;
}

// The root, the home folder and every folder holding it are never removed
// or replaced: a slip there would lose everything.
bool isProtected(const QByteArray &canonical)
{
    if (canonical == "/")
        return true;
    QList<QByteArray> homes;
    if (const QByteArray home = qgetenv("HOME"); !home.isEmpty())
        homes.append(home);
    if (const passwd *entry = ::getpwuid(::getuid()); entry && entry->pw_dir)
        homes.append(QByteArray(entry->pw_dir));
    for (const QByteArray &home : homes) {
        const QByteArray real = resolved(home).value_or(PathNames::withoutTrailingSlashes(home));
        if (real == canonical || real.startsWith(canonical + '/'))
            return true;
    }
    return false;
}

// Where the item goes. A move keeps its name; a copy may take a new one.
QString newPathFor(const QString &source, const QString &destination, Transfer kind)
{
    const QString name = PathNames::lastComponent(source);
    if (destination.endsWith(name))
        return destination;
    if (destination.endsWith(u'/'))
        return destination + name;
    if (kind == Transfer::Move || destination == StringAdditions::desuffix(source, name))
        return destination + u'/' + name;
    return destination;
}

// As cp -a does: an item goes where it is sent even when the destination
// cannot hold some of its extended attributes; the log says which stayed
// behind.
const FileMoves::Options &asCopyDoes()
{
    static const FileMoves::Options options = [] {
        FileMoves::Options made;
        made.attributesLeftBehind = [](const QByteArray &item, const QList<QByteArray> &names) {
            SystemLog::write(QStringLiteral("\"%1\" went without the extended attributes its new file system cannot hold: %2")
                                 .arg(PathCodec::decode(item), QString::fromLatin1(names.join(", "))));
        };
        return made;
    }();
    return options;
}

bool put(const QByteArray &from, const QByteArray &to, Transfer kind)
{
    return (kind == Transfer::Move ? FileMoves::move(from, to, asCopyDoes()) : FileMoves::copy(from, to, asCopyDoes())).error == 0;
}

// The new item is made beside the old one under a free hidden name, then
// the two change places in one step, and only then is the old one removed.
bool replaceWith(const QByteArray &from, const QByteArray &to, Transfer kind)
{
    const QByteArray staging = FileMoves::freeNameBeside(to, "replacing");
    if (staging.isEmpty() || !put(from, staging, kind))
        return false;
    if (::renameat2(AT_FDCWD, staging.constData(), AT_FDCWD, to.constData(), RENAME_EXCHANGE) == 0)
        return FileMoves::remove(staging).error == 0;
    // Without an exchange: the old item goes first. If it cannot, the new
    // one is taken back (a moved item to where it was).
    if (FileMoves::remove(to).error == 0 && ::rename(staging.constData(), to.constData()) == 0)
        return true;
    if (kind == Transfer::Move)
        FileMoves::move(staging, from, asCopyDoes());
    else
        FileMoves::remove(staging);
    return false;
}

bool isInside(const QByteArray &path, const QByteArray &folder)
{
    const auto real = resolved(folder);
    const auto container = resolved(PathNames::folderOf(path));
    return real && container && (*container == *real || container->startsWith(*real + '/'));
}

bool transfer(const QString &sourcePath, const QString &destinationPath, bool replace, Transfer kind)
{
    const QString source = pathPOSIX(sourcePath);
    const QByteArray from = PathCodec::encode(source);
    struct stat sourceInfo;
    if (from.isEmpty() || ::lstat(from.constData(), &sourceInfo) != 0)
        return false;
    const QByteArray to = PathCodec::encode(newPathFor(source, pathPOSIX(destinationPath), kind));
    if (to.isEmpty())
        return false;
    // A folder copied into itself would never be done.
    if (kind == Transfer::Copy && S_ISDIR(sourceInfo.st_mode) && isInside(to, from))
        return false;
    struct stat targetInfo;
    if (::lstat(to.constData(), &targetInfo) != 0)
        return errno == ENOENT && put(from, to, kind);
    if (!replace)
        return false;
    // Replacing an item by itself would only remove it.
    if (targetInfo.st_dev == sourceInfo.st_dev && targetInfo.st_ino == sourceInfo.st_ino)
        return false;
    const auto canonical = canonicalItem(to);
    if (!canonical || isProtected(*canonical))
        return false;
    // Nor is the folder that holds the source replaced: it would go with
    // everything else in it.
    const auto canonicalSource = canonicalItem(from);
    if (!canonicalSource || canonicalSource->startsWith(*canonical + '/') || *canonical == "/")
        return false;
    return replaceWith(from, *canonical, kind);
}

// The extension the name of the last component carries: text after its
// last dot, unless the dot begins or ends the name.
qsizetype extensionDot(const QString &path)
{
    const qsizetype dot = path.lastIndexOf(u'.');
    const qsizetype nameStart = path.lastIndexOf(u'/') + 1;
    return dot > nameStart && dot < path.size() - 1 ? dot : -1;
}

} // namespace

bool MiscMethods::moveItem(const QString &source, const QString &destination, bool replace)
{
    return transfer(source, destination, replace, Transfer::Move);
}

bool MiscMethods::copyItem(const QString &source, const QString &destination, bool replace)
{
    return transfer(source, destination, replace, Transfer::Copy);
}

bool MiscMethods::deleteItem(const QString &path)
{
    const QByteArray bytes = PathCodec::encode(pathPOSIX(path));
    if (bytes.isEmpty())
        return false;
    const auto canonical = canonicalItem(bytes);
    if (!canonical || isProtected(*canonical))
        return false;
    return FileMoves::remove(*canonical).error == 0;
}

bool MiscMethods::writeToFile(const QString &path, const QString &content, bool append, const QString &creatorCode,
                                  const QString &fileType, bool randomize)
{
    const QString posix = pathPOSIX(path);
    const QByteArray encoded = PathCodec::encode(posix);
    struct stat info;
    const bool exists = !encoded.isEmpty() && ::stat(encoded.constData(), &info) == 0;
    if (exists && S_ISDIR(info.st_mode))
        return false;
    // An append goes at the end of the file itself, and so does a write to
    // what is not a plain file of one name (a pipe, a device, a file with
    // hard links): they stay what they are. A plain file is replaced in one
    // step, keeping its permissions and attributes.
    QString failure;
    if (exists && append)
        failure = FileBytes::writeInPlace(posix, content.toUtf8(), FileBytes::InPlace::Append);
    else if (exists && (!S_ISREG(info.st_mode) || info.st_nlink > 1))
        failure = FileBytes::writeInPlace(posix, content.toUtf8(), FileBytes::InPlace::Overwrite);
    else
        failure = FileBytes::replaceContents(posix, content.toUtf8());
    if (!failure.isEmpty())
        return false;
    if (!StringAdditions::isBlankString(creatorCode))
        setCreatorCode(posix, creatorCode);
    if (!StringAdditions::isBlankString(fileType))
        setFileType(posix, fileType);
    if (randomize)
        randomizeDate(posix);
    return itemExists(posix);
}

QVariant MiscMethods::makeTargetFolder(const QString &path)
{
    const QString posix = pathPOSIX(path);
    const QByteArray bytes = PathCodec::encode(posix);
    if (bytes.isEmpty())
        return QVariant(false);
    QByteArray partial = bytes.startsWith('/') ? QByteArray("/") : QByteArray();
    for (const QByteArray &component : bytes.split('/')) {
        if (component.isEmpty())
            continue;
        if (!partial.isEmpty() && !partial.endsWith('/'))
            partial += '/';
        partial += component;
        struct stat info;
        if (::stat(partial.constData(), &info) == 0)
            continue;
        // Another run may have made it meanwhile; that is as good.
        if (::mkdir(partial.constData(), 0777) != 0 && errno != EEXIST)
            return QVariant(false);
    }
    const auto alias = PathConversion::alias(posix);
    return alias ? QVariant::fromValue(*alias) : QVariant(false);
}

QString MiscMethods::returnUniquePath(const QString &path)
{
    QString posix = pathPOSIX(path);
    while (posix.size() > 1 && posix.endsWith(u'/'))
        posix.chop(1);
    if (!FileStatus::of(posix, false))
        return posix;
    const qsizetype dot = extensionDot(posix);
    const QString base = dot < 0 ? posix : posix.left(dot);
    const QString extension = dot < 0 ? QString() : posix.mid(dot);
    for (qlonglong n = 1;; ++n) {
        const QString candidate = base + u' ' + QString::number(n) + extension;
        if (!FileStatus::of(candidate, false))
            return candidate;
    }
}

quint32 MiscMethods::osType(const QString &code)
{
    // As four-character codes are read: the first character in the highest
    // byte ("TEXT" is 0x54455854), a short code filled with spaces.
    const QByteArray bytes = code.leftJustified(4, u' ', true).toLatin1();
    quint32 value = 0;
    for (const char c : bytes)
        value = (value << 8) | quint8(c);
    return value;
}

QString MiscMethods::returnAppPath(const QString &)
{
    // Linux keeps no creator codes, so no application is known by one.
    return QString();
}

QString MiscMethods::returnAppPathFromBundleID(const QString &identifier)
{
    return DesktopEntries::programOf(identifier);
}
