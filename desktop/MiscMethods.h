#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>

// The desktop services scripts reach as class methods of ROZ_MiscMethods.
// The implementation is split by concern: tasks, system information,
// clipboard, login items.
class ROZ_MiscMethods {
public:
    // Tasks. Runs a tool with standard output and standard error mixed into
    // one text, which comes back without its trailing line feeds. Without
    // arguments the data is the tool's only argument (and its input is
    // empty); with arguments the data is fed on its standard input. A tool
    // that cannot start gives "runTask Error: <name>: <reason>".
    static QString runTask(const QString &launchPath, const std::optional<QStringList> &arguments,
                           const std::optional<QString> &data, const QString &workingDirectory);

    // System information.
    static QString returnOSVersion();
    static bool return104Plus();
    static bool return105Plus();
    static QString returnHostName();
    static QString returnShortUserName();
    static QString returnFullUserName();
    static QString returnFullUserNameInits();
    static QString initialsOf(const QString &fullName);

    // Clipboard: the X11 CLIPBOARD selection, its types MIME types.
    static std::optional<QString> returnClipboardString();
    static QVariantMap returnClipboard();
    static bool setClipboard(const QString &text);
    static void resetClipboard(const QVariantMap &saved);
    static void pasteAndRestore(const QString &text);

    // Login items: a freedesktop autostart entry for this executable.
    static bool returnStartupItem();
    static void setStartupItem(bool enabled);
};

// Keys shared with other applications.
namespace ROZ_GlobalKeys {
inline const QString ROZ_returnDataKey = QStringLiteral("returnData");
inline const QString ROZ_pbTypesKey = QStringLiteral("pbTypes");
inline const QString ROZ_the_dataKey = QStringLiteral("the_data");
inline const QString ROZ_data_typeKey = QStringLiteral("data_type");
inline const QString ROZ_blankStringKey = QStringLiteral("");
} // namespace ROZ_GlobalKeys
