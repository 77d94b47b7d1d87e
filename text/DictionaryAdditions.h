#pragma once

#include <QDateTime>
#include <QVariantMap>
#include <optional>

// Typed reading and writing of dictionary values, and the named readers of a
// file-attribute dictionary (keys "NSFileSize", "NSFileType", ...).
//
// Kept on purpose: boolForKey, integerForKey and floatForKey read only
// string values (a number reads as NO, 0, 0.0), while uintForKey reads any
// number.
namespace DictionaryAdditions {

std::optional<QString> stringForKey(const QVariantMap &self, const QString &key);
std::optional<QDateTime> dateForKey(const QVariantMap &self, const QString &key);
bool boolForKey(const QVariantMap &self, const QString &key);
int integerForKey(const QVariantMap &self, const QString &key);
float floatForKey(const QVariantMap &self, const QString &key);
quint32 uintForKey(const QVariantMap &self, const QString &key);

quint32 size(const QVariantMap &self);
std::optional<QString> owner(const QVariantMap &self);
quint32 posixPermissions(const QVariantMap &self);
std::optional<QDateTime> creationDate(const QVariantMap &self);
std::optional<QDateTime> modificationDate(const QVariantMap &self);
std::optional<QString> type(const QVariantMap &self);
bool isType(const QVariantMap &self, const QString &fileType);
bool isDirectory(const QVariantMap &self);
bool isFile(const QVariantMap &self);
bool isSymbolicLink(const QVariantMap &self);
bool isSocket(const QVariantMap &self);
bool isCharacterSpecial(const QVariantMap &self);
bool isBlockSpecial(const QVariantMap &self);
bool isUnknownType(const QVariantMap &self);
bool isExtensionHidden(const QVariantMap &self);
quint32 hfsCreatorCode(const QVariantMap &self);
quint32 hfsTypeCode(const QVariantMap &self);
bool isReadOnly(const QVariantMap &self);
bool isAppendOnly(const QVariantMap &self);

// The four bytes of a code padded or cut to four characters, in memory
// order: on this little-endian machine the first character is the lowest
// byte, the reverse of the usual reading. Kept exactly.
quint32 osType(const QString &code);

// Whether a value is a number of one of the C types (bool included).
bool isNumber(const QVariant &value);

// Text read as a number: leading white space, a sign,
// digits; whatever follows is ignored. Integers saturate.
int intValue(const QString &text);
float floatValue(const QString &text);

} // namespace DictionaryAdditions

// The setters store typed numbers.
namespace MutableDictionaryAdditions {
void setBool(QVariantMap &self, bool value, const QString &key);
void setInteger(QVariantMap &self, qint32 value, const QString &key);
void setUnsignedInteger(QVariantMap &self, quint32 value, const QString &key);
void setFloat(QVariantMap &self, float value, const QString &key);
} // namespace MutableDictionaryAdditions

// The file manager's attribute keys and type names.
namespace FileAttributeKeys {
inline const QString Size = QStringLiteral("NSFileSize");
inline const QString Type = QStringLiteral("NSFileType");
inline const QString OwnerAccountName = QStringLiteral("NSFileOwnerAccountName");
inline const QString GroupOwnerAccountName = QStringLiteral("NSFileGroupOwnerAccountName");
inline const QString OwnerAccountID = QStringLiteral("NSFileOwnerAccountID");
inline const QString GroupOwnerAccountID = QStringLiteral("NSFileGroupOwnerAccountID");
inline const QString PosixPermissions = QStringLiteral("NSFilePosixPermissions");
inline const QString CreationDate = QStringLiteral("NSFileCreationDate");
inline const QString ModificationDate = QStringLiteral("NSFileModificationDate");
inline const QString ExtensionHidden = QStringLiteral("NSFileExtensionHidden");
inline const QString HFSCreatorCode = QStringLiteral("NSFileHFSCreatorCode");
inline const QString HFSTypeCode = QStringLiteral("NSFileHFSTypeCode");
inline const QString Immutable = QStringLiteral("NSFileImmutable");
inline const QString AppendOnly = QStringLiteral("NSFileAppendOnly");
inline const QString ReferenceCount = QStringLiteral("NSFileReferenceCount");
inline const QString SystemNumber = QStringLiteral("NSFileSystemNumber");
inline const QString SystemFileNumber = QStringLiteral("NSFileSystemFileNumber");

inline const QString TypeDirectory = QStringLiteral("NSFileTypeDirectory");
inline const QString TypeRegular = QStringLiteral("NSFileTypeRegular");
inline const QString TypeSymbolicLink = QStringLiteral("NSFileTypeSymbolicLink");
inline const QString TypeSocket = QStringLiteral("NSFileTypeSocket");
inline const QString TypeCharacterSpecial = QStringLiteral("NSFileTypeCharacterSpecial");
inline const QString TypeBlockSpecial = QStringLiteral("NSFileTypeBlockSpecial");
inline const QString TypeUnknown = QStringLiteral("NSFileTypeUnknown");
} // namespace FileAttributeKeys
