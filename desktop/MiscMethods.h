#pragma once

#include <QString>
#include <QStringList>
#include <QDateTime>
#include <QSet>
#include <QVariant>
#include <optional>

class MethodRegistry;
class QColor;
class QTreeView;
class QWidget;

// The desktop services scripts reach as class methods of MiscMethods.
// The implementation is split by concern: tasks, system information,
// clipboard, login items.
class MiscMethods {
public:
    // Tasks. Runs a tool with standard output and standard error mixed into
    // one text, which comes back without its trailing line feeds. Without
    // arguments the data is the tool's only argument (and its input is
    // empty); with arguments the data is fed on its standard input. A tool
    // that cannot start gives "runTask Error: <name>: <reason>".
    static QString runTask(const QString &launchPath, const std::optional<QStringList> &arguments,
                           const std::optional<QString> &data, const QString &workingDirectory);

    // Alerts: each answers the alert's return code (1 default, 0 alternate,
    // -1 other button). The message forms answer the chosen button's
    // title, "" when a dialog gave up, or nil. The dialog forms run as
    // script text, so they take the methods that text reaches.
    static int displayAlert(const QString &title, const QString &message);
    static int displayAlert(const QString &title, const QString &message, const QStringList &buttons);
    static void displayError(const QString &title, const QString &message, QWidget *window);
    static int displayInformational(const QString &title, const QString &message, const QString &defaultButton);
    static QVariant displayWarning(const QString &message, const QStringList &buttons, const QString &defaultButton,
                                   bool shouldBeep);
    static QVariant displayMessage(const QString &message, const QStringList &buttons, const QString &defaultButton,
                                   int style, bool asSheet);
    static QString dialogScript(const QString &message, const std::optional<QString> &title,
                                const QStringList &buttons, const QString &defaultButton, int icon, int givingUpAfter);
    static QVariant displayMessage(const MethodRegistry &methods, const QString &message, const QStringList &buttons,
                                   const QString &defaultButton, int icon, int givingUpAfter);
    static QVariant displayMessageWithTitle(const MethodRegistry &methods, const QString &title,
                                            const QString &message, const QStringList &buttons,
                                            const QString &defaultButton, int icon, bool shouldGiveUp);

    // Logging and small utilities.
    static void updateStatus(const QString &status);
    static void setLogOutputFile(const QString &path);
    static void activate();
    static int idleTimeInSeconds();
    static bool wait(double seconds);
    static int extendPowerOffBy(int milliseconds);
    static void toggleScreenUpdates(bool enable);
    static QString leadingZeros(int number, int width);
    static void clearSudo(const MethodRegistry &methods);

    // File operations: YES when done. A move keeps the item's name; a copy
    // may take a new one. Replacing removes the old item only once the new
    // one is in its place; the root and the home folder (and what holds it)
    // are never removed.
    static bool moveItem(const QString &source, const QString &destination, bool replace);
    static bool copyItem(const QString &source, const QString &destination, bool replace);
    static bool deleteItem(const QString &path);
    static bool writeToFile(const QString &path, const QString &content, bool append, const QString &creatorCode,
                            const QString &fileType, bool randomize);
    static QVariant makeTargetFolder(const QString &path); // the folder's alias, or NO
    static QString returnUniquePath(const QString &path);  // "report 1.txt" where "report.txt" is taken
    static QString returnAppPath(const QString &creatorCode);
    // A four-character code as a number: the first character in the highest
    // byte, a short code filled with spaces. (A dictionary's osType keeps
    // the bytes in memory order instead.)
    static quint32 osType(const QString &code);
    static QString returnAppPathFromBundleID(const QString &identifier);

    // Processes and applications. Applications are desktop entries; the
    // running ones are those whose windows the window manager lists, each
    // a dictionary with the "NSApplication..." keys.
    static int pidForApplication(const QString &name);
    static bool killApplication(const QString &name);
    static QStringList returnLaunchedApplicationsPaths();
    static bool launchApplication(const QString &name);
    static void hideOtherApplications();
    static QVariant returnCurrentApplication();
    static QVariantList returnLaunchedApplications();
    static QVariantList returnLaunchedApplicationProperty(const QString &key, bool forHFS);
    static QString returnDefaultAppForItem(const QString &path);
    static QString returnDefaultAppForURLScheme(const QString &url);
    static bool openFile(const QString &path, const std::optional<QString> &application);
    static void openURL(const QString &url);
    static void openURLInBackground(const QString &url);
    static void poof(const QString &point);

    // Network. The gateway and the lookup answer NO and nil without their
    // address defaults ("SMSGatewayURL", "ReversePhoneLookupURL").
    static bool sendGoogleSMS(const QString &message, const QString &subject, const QString &phone,
                              const QString &carrier);
    static std::optional<QString> returnCarrierForMobileNumber(const QString &phone);
    static bool isNetworkAvailable(const QString &host);
    static QVariantMap returnProxyInfoRaw();
    static QVariantMap returnProxyInfo();

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

    // File items. Every path may be a POSIX or a colon path. Answers that
    // mix kinds (a date, or NO for a missing item) are values.
    static bool itemExists(const QString &path);
    static QVariant returnCreationDate(const QString &path);
    static QVariant returnModificationDate(const QString &path);
    static QVariantMap returnCreationAndModificationDate(const QString &path);
    static QString returnCreatorCode(const QString &path);
    static QString returnFileType(const QString &path);
    static std::optional<QVariantMap> returnItemInfo(const QString &path);
    static QVariant returnItemUTI(const QString &path);
    static QVariant returnItemDisplayKind(const QString &path);
    static QVariant returnItemDefaultApp(const QString &path);
    static bool returnItemIsImage(const QString &path);
    static QString returnItemName(const QString &path);
    static QString returnItemDisplayedName(const QString &path);
    static QString returnItemExtension(const QString &path);
    static QString returnItemContainer(const QString &path);
    static bool returnItemIsLocked(const QString &path);
    static QString returnItemOwner(const QString &path);
    static QString returnItemGroup(const QString &path);
    static QVariant returnItemPermissions(const QString &path);
    static QVariant returnItemVisiblity(const QString &path); // YES, NO, or nil for a hidden-list entry
    static bool returnItemIsFolder(const QString &path);
    static bool returnItemIsPackage(const QString &path);
    static bool returnItemIsWritable(const QString &path);
    static std::optional<QStringList> returnFolderContents(const QString &path);
    static QVariantMap returnCompleteFolderContents(const QString &path, bool withInvisibles);
    // The records of a tab-separated table file; NO when no item is at the
    // path, no records when it cannot be read as text.
    static QVariant dictionaryArrayFromTSVFile(const QString &path);

    // Setters answer YES on success. Linux keeps no settable creation date,
    // so changes that must set one answer NO.
    static bool setCreationDate(const QString &path, const QString &date);
    static bool setModificationDate(const QString &path, const QString &date);
    static bool setCreationAndModificationDate(const QString &path, const QString &date);
    static bool randomizeDate(const QString &path);
    static QString randomDateString();
    static bool setCreatorCode(const QString &path, const QString &code);
    static bool setFileType(const QString &path, const QString &type);
    static bool setItemName(const QString &path, const QString &name);
    static bool setItemOwner(const QString &path, const QString &owner);
    static bool setItemGroup(const QString &path, const QString &group);
    static bool setItemPermissions(const QString &path, const QVariant &permissions);

    // The file manager's attribute dictionary of an item (its own, not its
    // link target's), with the "NSFile..." keys.
    static std::optional<QVariantMap> attributesOfItem(const QString &path);
    // "2005-03-14 09:05:00 +0100"
    static std::optional<QDateTime> dateFromString(const QString &text);

    // Keys, values of loose kinds, and type tests.
    static bool deleteKeyPressed(const QVariant &keyCode);
    static bool arrowKeyPressed(const QVariant &ignored);
    static quint32 uintForElement(const QVariant &element);
    static QVariant stringForElement(const QVariant &element);
    static QVariant dateForElement(const QVariant &element);
    static bool isThisAString(const QVariant &element);
    static bool isThisAnArray(const QVariant &element);
    static bool isThisADictionary(const QVariant &element);
    static bool isThisANumber(const QVariant &element);
    static bool isThisADate(const QVariant &element);
    static bool isThisABoolean(const QVariant &element);

    // Images and outline rows.
    static QVariant returnImage(const QString &path);
    static QVariant returnIcon(const QString &path);
    static bool expandOutlineItem(QTreeView *outline, int row);
    static bool isOutlineItemExpanded(QTreeView *outline, int row);
};

// Colours kept in dictionaries as their archived bytes.
namespace ColorArchiving {
QByteArray archivedData(const QColor &color);
std::optional<QColor> colorFromData(const QByteArray &data);
} // namespace ColorArchiving

// Key events are tracked from the start, so that the current one is known
// when a script asks.
void installKeyEventTracking();

// Keys shared with other applications.
namespace GlobalKeys {
inline const QString returnDataKey = QStringLiteral("returnData");
inline const QString pbTypesKey = QStringLiteral("pbTypes");
inline const QString the_dataKey = QStringLiteral("the_data");
inline const QString data_typeKey = QStringLiteral("data_type");
inline const QString blankStringKey = QStringLiteral("");
} // namespace GlobalKeys
