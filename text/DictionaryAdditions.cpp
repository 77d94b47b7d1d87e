#include "DictionaryAdditions.h"

#include "CharacterSet.h"

#include <QRegularExpression>
#include <climits>
#include <cstring>

namespace DictionaryAdditions {

bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

namespace {

qsizetype skipWhiteSpace(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && CharacterSet::whitespaceAndNewlines().contains(text[i]))
        ++i;
    return i;
}

} // namespace

int intValue(const QString &text)
{
    qsizetype i = skipWhiteSpace(text);
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        negative = text[i++] == u'-';
    qint64 value = 0;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
        value = value * 10 + (text[i].unicode() - u'0');
        if (value > qint64(INT_MAX) + 1)
            return negative ? INT_MIN : INT_MAX;
    }
    if (negative)
        return value > qint64(INT_MAX) ? INT_MIN : int(-value);
    return value > INT_MAX ? INT_MAX : int(value);
}

float floatValue(const QString &text)
{
    static const QRegularExpression number(
        QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?"));
    const QRegularExpressionMatch match = number.match(text.mid(skipWhiteSpace(text)));
    return match.hasMatch() ? match.captured(0).toFloat() : 0.0f;
}

std::optional<QString> stringForKey(const QVariantMap &self, const QString &key)
{
    const QVariant value = self.value(key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

std::optional<QDateTime> dateForKey(const QVariantMap &self, const QString &key)
{
    const QVariant value = self.value(key);
    if (value.typeId() != QMetaType::QDateTime)
        return std::nullopt;
    return value.toDateTime();
}

bool boolForKey(const QVariantMap &self, const QString &key)
{
    const auto text = stringForKey(self, key);
    if (!text)
        return false;
    return intValue(*text) != 0 || text->toLower() == QLatin1String("yes");
}

int integerForKey(const QVariantMap &self, const QString &key)
{
    const auto text = stringForKey(self, key);
    return text ? intValue(*text) : 0;
}

float floatForKey(const QVariantMap &self, const QString &key)
{
    const auto text = stringForKey(self, key);
    return text ? floatValue(*text) : 0.0f;
}

quint32 uintForKey(const QVariantMap &self, const QString &key)
{
    const QVariant value = self.value(key);
    if (!isNumber(value))
        return 0;
    // An unsigned reading takes the low 32 bits.
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return quint32(qint64(value.toDouble()));
    return quint32(value.toULongLong());
}

quint32 size(const QVariantMap &self)
{
    return uintForKey(self, FileAttributeKeys::Size);
}

std::optional<QString> owner(const QVariantMap &self)
{
    return stringForKey(self, FileAttributeKeys::OwnerAccountName);
}

quint32 posixPermissions(const QVariantMap &self)
{
    return uintForKey(self, FileAttributeKeys::PosixPermissions);
}

std::optional<QDateTime> creationDate(const QVariantMap &self)
{
    return dateForKey(self, FileAttributeKeys::CreationDate);
}

std::optional<QDateTime> modificationDate(const QVariantMap &self)
{
    return dateForKey(self, FileAttributeKeys::ModificationDate);
}

std::optional<QString> type(const QVariantMap &self)
{
    return stringForKey(self, FileAttributeKeys::Type);
}

bool isType(const QVariantMap &self, const QString &fileType)
{
    const auto current = type(self);
    return current && current->compare(fileType) == 0;
}

bool isDirectory(const QVariantMap &self)
{
    return isType(self, FileAttributeKeys::TypeDirectory);
}

bool isFile(const QVariantMap &self)
{
    return isType(self, FileAttributeKeys::TypeRegular);
}

bool isSymbolicLink(const QVariantMap &self)
{
    return isType(self, FileAttributeKeys::TypeSymbolicLink);
}

bool isSocket(const QVariantMap &self)
{
    return isType(self, FileAttributeKeys::TypeSocket);
}

bool isCharacterSpecial(const QVariantMap &self)
{
    return isType(self, FileAttributeKeys::TypeCharacterSpecial);
}

bool isBlockSpecial(const QVariantMap &self)
{
    return isType(self, FileAttributeKeys::TypeBlockSpecial);
}

bool isUnknownType(const QVariantMap &self)
{
    return isType(self, FileAttributeKeys::TypeUnknown);
}

bool isExtensionHidden(const QVariantMap &self)
{
    return uintForKey(self, FileAttributeKeys::ExtensionHidden) != 0;
}

quint32 hfsCreatorCode(const QVariantMap &self)
{
    return uintForKey(self, FileAttributeKeys::HFSCreatorCode);
}

quint32 hfsTypeCode(const QVariantMap &self)
{
    return uintForKey(self, FileAttributeKeys::HFSTypeCode);
}

bool isReadOnly(const QVariantMap &self)
{
    return uintForKey(self, FileAttributeKeys::Immutable) != 0;
}

bool isAppendOnly(const QVariantMap &self)
{
    return uintForKey(self, FileAttributeKeys::AppendOnly) != 0;
}

quint32 osType(const QString &code)
{
    const QByteArray bytes = code.leftJustified(4, u' ', true).toLatin1();
    quint32 value = 0;
    std::memcpy(&value, bytes.constData(), 4);
    return value;
}

} // namespace DictionaryAdditions

namespace MutableDictionaryAdditions {

void setBool(QVariantMap &self, bool value, const QString &key)
{
    self.insert(key, QVariant(value));
}

void setInteger(QVariantMap &self, qint32 value, const QString &key)
{
    self.insert(key, QVariant::fromValue(value));
}

void setUnsignedInteger(QVariantMap &self, quint32 value, const QString &key)
{
    self.insert(key, QVariant::fromValue(value));
}

void setFloat(QVariantMap &self, float value, const QString &key)
{
    self.insert(key, QVariant::fromValue(value));
}

} // namespace MutableDictionaryAdditions
