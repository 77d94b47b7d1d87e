#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <optional>

// The user's defaults: the application's settings file (the [defaults]
// group of ~/.config/Nomen/Nomen.conf), each value kept with its type, over
// a registration layer of fallbacks that lives in memory only. Also the
// application's information property list and other property list files.
class UserDefaults {
public:
    static void registerDefaults(const QVariantMap &defaults);
    static void registerDefault(const QVariant &value, const QString &key);
    // A nil value removes the key, as removeDefault: does. Anything but
    // strings, numbers, booleans, dates, data, lists and dictionaries is
    // refused (NSInvalidArgumentException).
    static void writeDefault(const QVariant &value, const QString &key);
    static void writeArchivedDataDefault(const QVariant &object, const QString &key);
    // The user's value, else the registered one, else nil.
    static QVariant readDefault(const QString &key);
    // Data that is an archive of ours comes back unarchived; other values as
    // they are; a damaged archive as nil, with a log line.
    static QVariant readArchivedDataDefault(const QString &key);
    static bool defaultExists(const QString &key);
    static void removeDefault(const QString &key);
    static void synchronizeDefaults();

    // The fifth element of the time zone panel's last city, in capitals;
    // without that record the country of the system's time zone; else "US".
    static QString returnUserCountryCode();
    // Sets the resource folder's modification date to now.
    static void touchBundleDate();
    static QVariant returnPlistValue(const QString &key);
    static QVariant returnPlistValueForKey(const QString &path, const QString &key);

    // Archives: "NMAR", a version byte, then the value in Qt's data stream
    // form. Unarchiving answers nullopt for bytes that are not an archive,
    // and an invalid value for a damaged one.
    static QByteArray archive(const QVariant &object);
    static std::optional<QVariant> unarchive(const QByteArray &data);
};

class MethodRegistry;
void registerUserDefaultsMethods(MethodRegistry &registry);
