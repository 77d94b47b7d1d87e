#include "UserDefaults.h"
#include "ScriptClassNames.h"
#include "ErrnoText.h"

#include "DictionaryAdditions.h"
#include "FileBytes.h"
#include "LocalTimeZone.h"
#include "MethodRegistry.h"
#include "NamedException.h"
#include "NativeBinding.h"
#include "PathCodec.h"
#include "PropertyLists.h"
#include "ResourceFolder.h"
#include "SystemLog.h"

#include <QDataStream>
#include <QIODevice>
#include <QSettings>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

const QByteArray ArchiveMagic = QByteArrayLiteral("NMAR");
constexpr char ArchiveVersion = 1;
constexpr auto StreamVersion = QDataStream::Qt_6_4;

// Stored values carry their type: the settings file alone would give back
// every number and boolean as text.
const QByteArray StoredMagic = QByteArrayLiteral("NMDV");

QVariantMap &registered()
{
    static QVariantMap defaults;
    return defaults;
}

QSettings &store()
{
    static QSettings settings(QStringLiteral("Nomen"), QStringLiteral("Nomen"));
    return settings;
}

QString storedKey(const QString &key)
{
    // A "/" in a key would open a group of the settings file.
    QString escaped = key;
    escaped.replace(u'%', QLatin1String("%25")).replace(u'/', QLatin1String("%2F")).replace(u'\\', QLatin1String("%5C"));
    return QStringLiteral("defaults/") + escaped;
}

QByteArray streamed(const QByteArray &magic, const QVariant &value)
{
    QByteArray bytes = magic;
    bytes.append(ArchiveVersion);
    QDataStream stream(&bytes, QIODevice::WriteOnly | QIODevice::Append);
    stream.setVersion(StreamVersion);
    stream << value;
    return bytes;
}

// nullopt: not in this form at all; an invalid value: in it but damaged.
std::optional<QVariant> unstreamed(const QByteArray &magic, const QByteArray &bytes)
{
    if (!bytes.startsWith(magic))
        return std::nullopt;
    if (bytes.size() <= magic.size() || bytes.at(magic.size()) != ArchiveVersion)
        return QVariant();
    const QByteArray body = bytes.mid(magic.size() + 1);
    QDataStream stream(body);
    stream.setVersion(StreamVersion);
    QVariant value;
    stream >> value;
    if (stream.status() != QDataStream::Ok || !stream.atEnd())
        return QVariant();
    return value;
}

bool isPropertyListValue(const QVariant &value)
{
    if (DictionaryAdditions::isNumber(value))
        return true;
    switch (value.typeId()) {
    case QMetaType::QString: case QMetaType::QByteArray: case QMetaType::QDateTime: case QMetaType::QStringList:
        return true;
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        return std::all_of(list.cbegin(), list.cend(), isPropertyListValue);
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        return std::all_of(map.cbegin(), map.cend(), isPropertyListValue);
    }
    default:
        return false;
    }
}

QString classNameOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QObjectStar)
        if (const QObject *object = value.value<QObject *>())
            return scriptClassName(*object->metaObject());
    return QString::fromLatin1(value.metaType().name());
}

// The class of the first value inside that cannot be written to a data
// stream, if any.
std::optional<QString> unarchivableClass(const QVariant &value)
{
    if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QVariantMap) {
        const QVariantList items = value.typeId() == QMetaType::QVariantList ? value.toList() : value.toMap().values();
        for (const QVariant &item : items)
            if (auto refused = unarchivableClass(item))
                return refused;
        return std::nullopt;
    }
    if (!value.isValid() || value.typeId() == QMetaType::Nullptr || value.metaType().hasRegisteredDataStreamOperators())
        return std::nullopt;
    return classNameOf(value);
}

} // namespace

void UserDefaults::registerDefaults(const QVariantMap &defaults)
{
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it)
        registered().insert(it.key(), it.value());
}

void UserDefaults::registerDefault(const QVariant &value, const QString &key)
{
    registerDefaults({{key, value}});
}

void UserDefaults::writeDefault(const QVariant &value, const QString &key)
{
    if (!value.isValid() || value.typeId() == QMetaType::Nullptr) {
        removeDefault(key);
        return;
    }
    if (!isPropertyListValue(value))
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("Attempt to insert non-property list object of class %1 for key %2")
                                 .arg(classNameOf(value), key));
    store().setValue(storedKey(key), streamed(StoredMagic, value));
}

void UserDefaults::writeArchivedDataDefault(const QVariant &object, const QString &key)
{
    writeDefault(archive(object), key);
}

QVariant UserDefaults::readDefault(const QString &key)
{
    const QVariant stored = store().value(storedKey(key));
    if (stored.isValid()) {
        const QByteArray bytes = stored.toByteArray();
        // A value someone wrote into the file by hand is read as its text.
        const auto typed = unstreamed(StoredMagic, bytes);
        if (!typed)
            return stored;
        if (typed->isValid())
            return *typed;
        SystemLog::write(QStringLiteral("readDefault: the value under \"%1\" in %2 is damaged").arg(key, store().fileName()));
    }
    return registered().value(key);
}

QVariant UserDefaults::readArchivedDataDefault(const QString &key)
{
    const QVariant value = readDefault(key);
    if (value.typeId() != QMetaType::QByteArray)
        return value;
    const auto object = unarchive(value.toByteArray());
    if (!object)
        return value;
    if (!object->isValid())
        SystemLog::write(QStringLiteral("readArchivedDataDefault: the archive under \"%1\" is damaged").arg(key));
    return *object;
}

bool UserDefaults::defaultExists(const QString &key)
{
    return readDefault(key).isValid();
}

void UserDefaults::removeDefault(const QString &key)
{
    store().remove(storedKey(key));
}

void UserDefaults::synchronizeDefaults()
{
    store().sync();
    if (store().status() != QSettings::NoError)
        SystemLog::write(QStringLiteral("synchronizeDefaults: cannot write %1").arg(store().fileName()));
}

QString UserDefaults::returnUserCountryCode()
{
    const QVariant city = readDefault(QStringLiteral("com.apple.TimeZonePref.Last_Selected_City"));
    if (city.isValid()) {
        const QVariantList fields = city.toList();
        if (fields.size() < 5)
            throw arrayIndexBeyondBounds(4, fields.size());
        const QVariant code = fields.at(4);
        return code.isValid() ? code.toString().toUpper() : QStringLiteral("US");
    }
    const QString country = SystemTimeZone::countryOfZone(SystemTimeZone::zoneName());
    return country.isEmpty() ? QStringLiteral("US") : country;
}

void UserDefaults::touchBundleDate()
{
    const QString folder = ResourceFolder::path();
    if (::utimensat(AT_FDCWD, PathCodec::encode(folder).constData(), nullptr, 0) != 0)
        SystemLog::write(QStringLiteral("touchBundleDate: %1: %2").arg(folder, errnoText(errno)));
}

QVariant UserDefaults::returnPlistValue(const QString &key)
{
    const auto contents = FileBytes::read(ResourceFolder::infoPlistPath());
    if (!contents.bytes)
        return QVariant();
    return PropertyLists::parse(*contents.bytes).value.value_or(QVariant()).toMap().value(key);
}

QVariant UserDefaults::returnPlistValueForKey(const QString &path, const QString &key)
{
    const auto contents = FileBytes::read(path);
    const auto parsed = contents.bytes ? PropertyLists::parse(*contents.bytes)
                                       : PropertyLists::Parsed{std::nullopt, contents.error};
    if (!parsed.value) {
        SystemLog::write(QStringLiteral("returnPlistValue error: %1").arg(contents.bytes ? path + QStringLiteral(": ") + parsed.error
                                                                                         : parsed.error));
        return QVariant();
    }
    return parsed.value->toMap().value(key);
}

QByteArray UserDefaults::archive(const QVariant &object)
{
    if (const auto refused = unarchivableClass(object))
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("-[%1 encodeWithCoder:]: unrecognized selector sent to instance").arg(*refused));
    return streamed(ArchiveMagic, object);
}

std::optional<QVariant> UserDefaults::unarchive(const QByteArray &data)
{
    return unstreamed(ArchiveMagic, data);
}

void registerUserDefaultsMethods(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    using D = UserDefaults;
    const QString Defaults = QStringLiteral("ROZ_UserDefaults");
    addClassMethod(registry, Defaults, QStringLiteral("registerDefaults:"), &D::registerDefaults);
    addClassMethod(registry, Defaults, QStringLiteral("registerDefault:forKey:"), &D::registerDefault);
    addClassMethod(registry, Defaults, QStringLiteral("writeDefault:forKey:"), &D::writeDefault);
    addClassMethod(registry, Defaults, QStringLiteral("writeArchivedDataDefault:forKey:"), &D::writeArchivedDataDefault);
    addClassMethod(registry, Defaults, QStringLiteral("readDefault:"), &D::readDefault);
    addClassMethod(registry, Defaults, QStringLiteral("readArchivedDataDefault:"), &D::readArchivedDataDefault);
    addClassMethod(registry, Defaults, QStringLiteral("defaultExists:"), &D::defaultExists);
    addClassMethod(registry, Defaults, QStringLiteral("removeDefault:"), &D::removeDefault);
    addClassMethod(registry, Defaults, QStringLiteral("synchronizeDefaults"), &D::synchronizeDefaults);
    addClassMethod(registry, Defaults, QStringLiteral("returnUserCountryCode"), &D::returnUserCountryCode);
    addClassMethod(registry, Defaults, QStringLiteral("touchBundleDate"), &D::touchBundleDate);
    addClassMethod(registry, Defaults, QStringLiteral("returnPlistValue:"), &D::returnPlistValue);
    addClassMethod(registry, Defaults, QStringLiteral("returnPlistValue:forKey:"), &D::returnPlistValueForKey);
}
