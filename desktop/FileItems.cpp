#include "MiscMethods.h"
#include "FileBytes.h"
#include "TsvTable.h"
#include "PathCodec.h"

#include "DictionaryAdditions.h"
#include "FileStatus.h"
#include "PathConversion.h"
#include "PathNames.h"
#include "StringAdditions.h"

#include <QDir>
#include <QFileInfo>
#include <sys/stat.h>
#include <unistd.h>

using PathConversion::pathHFS;
using PathConversion::pathPOSIX;

namespace {

const QVariant NO = QVariant(false);

QString fourCharacters(quint32 code)
{
    QString text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += QChar(char16_t((code >> shift) & 0xFF));
    return text;
}

QString parentOf(const QString &posix)
{
    QString trimmed = posix;
    while (trimmed.size() > 1 && trimmed.endsWith(u'/'))
        trimmed.chop(1);
    const qsizetype slash = trimmed.lastIndexOf(u'/');
    if (slash < 0)
        return QStringLiteral(".");
    return slash == 0 ? QStringLiteral("/") : trimmed.left(slash);
}

} // namespace

bool MiscMethods::itemExists(const QString &path)
{
    return FileStatus::of(pathPOSIX(path), true).has_value();
}

QVariant MiscMethods::dictionaryArrayFromTSVFile(const QString &path)
{
    if (!itemExists(path))
        return NO;
    const auto contents = FileBytes::read(pathPOSIX(path));
    return contents.bytes ? TsvTable::dictionariesFromBytes(*contents.bytes) : QVariantList();
}

QVariant MiscMethods::returnCreationDate(const QString &path)
{
    const auto status = FileStatus::of(pathPOSIX(path), true);
    return status && status->created ? QVariant(*status->created) : NO;
}

QVariant MiscMethods::returnModificationDate(const QString &path)
{
    const auto status = FileStatus::of(pathPOSIX(path), true);
    return status ? QVariant(status->modified) : NO;
}

QVariantMap MiscMethods::returnCreationAndModificationDate(const QString &path)
{
    return {{QStringLiteral("creation_date"), returnCreationDate(path)},
            {QStringLiteral("modification_date"), returnModificationDate(path)}};
}

QString MiscMethods::returnCreatorCode(const QString &path)
{
    const auto info = FinderInfo::read(pathPOSIX(path));
    return info && info->creator ? fourCharacters(info->creator) : QString(QLatin1String(""));
}

QString MiscMethods::returnFileType(const QString &path)
{
    const auto info = FinderInfo::read(pathPOSIX(path));
    if (!info || !info->type)
        return QString(QLatin1String(""));
    // Spelled as the platform quotes a type, then unquoted.
    const QString quoted = u'\'' + fourCharacters(info->type) + u'\'';
    return StringAdditions::desuffix(StringAdditions::deprefix(quoted, QStringLiteral("'")),
                                           QStringLiteral("'"));
}

QString MiscMethods::returnItemName(const QString &path)
{
    return PathNames::lastComponent(pathPOSIX(path));
}

QString MiscMethods::returnItemDisplayedName(const QString &path)
{
    const QString posix = pathPOSIX(path);
    if (!FileStatus::of(posix, true))
        return QString(QLatin1String(""));
    return PathNames::lastComponent(posix);
}

QString MiscMethods::returnItemExtension(const QString &path)
{
    const QString posix = pathPOSIX(path);
    const auto status = FileStatus::of(posix, true);
    if (status && status->isDirectory())
        return QString(QLatin1String(""));
    const QString name = PathNames::lastComponent(posix);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QString(QLatin1String(""));
}

QString MiscMethods::returnItemContainer(const QString &path)
{
    const QString posix = pathPOSIX(path);
    QString container = parentOf(posix);
    if (!container.endsWith(u'/'))
        container += u'/';
    return posix == path ? container : pathHFS(container);
}

bool MiscMethods::returnItemIsLocked(const QString &path)
{
    const auto flags = FileStatus::flags(pathPOSIX(path));
    return flags && uintForElement(QVariant(flags->immutable ? 1u : 0u)) != 0;
}

QString MiscMethods::returnItemOwner(const QString &path)
{
    const auto status = FileStatus::of(pathPOSIX(path), true);
    return status ? FileStatus::ownerName(status->owner) : QString(QLatin1String(""));
}

QString MiscMethods::returnItemGroup(const QString &path)
{
    const auto status = FileStatus::of(pathPOSIX(path), true);
    return status ? FileStatus::groupName(status->group) : QString(QLatin1String(""));
}

QVariant MiscMethods::returnItemPermissions(const QString &path)
{
    const auto status = FileStatus::of(pathPOSIX(path), true);
    return status ? QVariant(int(status->mode & 07777)) : QVariant(QString(QLatin1String("")));
}

bool MiscMethods::returnItemIsFolder(const QString &path)
{
    // Asked for every item of a listing: one lstat, nothing more.
    struct stat info;
    const QByteArray bytes = PathCodec::encode(pathPOSIX(path));
    return !bytes.isEmpty() && lstat(bytes.constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool MiscMethods::returnItemIsPackage(const QString &)
{
    // Linux file managers show every folder as a folder: there are no
    // packages to treat as single items.
    return false;
}

bool MiscMethods::returnItemIsWritable(const QString &path)
{
    const QByteArray bytes = PathCodec::encode(pathPOSIX(path));
    return !bytes.isEmpty() && access(bytes.constData(), W_OK) == 0;
}

std::optional<QStringList> MiscMethods::returnFolderContents(const QString &path)
{
    const QString posix = pathPOSIX(path);
    const auto status = FileStatus::of(posix, true);
    if (!status || !status->isDirectory())
        return std::nullopt;
    auto names = FileStatus::entryNames(posix);
    if (names)
        names->sort();
    return names;
}

std::optional<QVariantMap> MiscMethods::attributesOfItem(const QString &path)
{
    using namespace FileAttributeKeys;
    const QString posix = pathPOSIX(path);
    const auto status = FileStatus::of(posix, false);
    if (!status)
        return std::nullopt;
    QString type = TypeUnknown;
    if (S_ISDIR(status->mode))
        type = TypeDirectory;
    else if (S_ISREG(status->mode))
        type = TypeRegular;
    else if (S_ISLNK(status->mode))
        type = TypeSymbolicLink;
    else if (S_ISSOCK(status->mode))
        type = TypeSocket;
    else if (S_ISCHR(status->mode))
        type = TypeCharacterSpecial;
    else if (S_ISBLK(status->mode))
        type = TypeBlockSpecial;
    QVariantMap attributes = {
        {Size, QVariant::fromValue(qulonglong(status->size))},
        {Type, type},
        {OwnerAccountName, FileStatus::ownerName(status->owner)},
        {GroupOwnerAccountName, FileStatus::groupName(status->group)},
        {OwnerAccountID, QVariant::fromValue(qulonglong(status->owner))},
        {GroupOwnerAccountID, QVariant::fromValue(qulonglong(status->group))},
        {PosixPermissions, QVariant::fromValue(qulonglong(status->mode & 07777))},
        {ModificationDate, status->modified},
        {ReferenceCount, QVariant::fromValue(qulonglong(status->links))},
        {SystemNumber, QVariant::fromValue(qulonglong(status->device))},
        {SystemFileNumber, QVariant::fromValue(qulonglong(status->inode))},
        {ExtensionHidden, false},
    };
    if (status->created)
        attributes.insert(CreationDate, *status->created);
    if (!status->isSymbolicLink()) {
        if (const auto info = FinderInfo::read(posix)) {
            attributes.insert(HFSCreatorCode, QVariant::fromValue(qulonglong(info->creator)));
            attributes.insert(HFSTypeCode, QVariant::fromValue(qulonglong(info->type)));
        }
        const auto flags = status->immutable && status->appendOnly
                               ? std::optional(FileStatus::Flags{*status->immutable, *status->appendOnly})
                               : FileStatus::flags(posix);
        if (flags) {
            attributes.insert(Immutable, flags->immutable);
            attributes.insert(AppendOnly, flags->appendOnly);
        }
    }
    return attributes;
}
