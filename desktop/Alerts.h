#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class QMessageBox;
class QWidget;

// Alert panels and dialogs, shown as message boxes. An alert has up to
// three buttons, each answering its return code; a dialog lists any number
// of buttons and answers the chosen one's title.
namespace Alerts {

// Styles: 0 warning, 1 informational, 2 critical.
struct Alert {
    int style = 0;
    QString messageText;
    QString informativeText; // read as a format given no arguments: "%%" shows "%"
    QString defaultButton;   // "" gives the localised "OK"
    std::optional<QString> alternateButton;
    std::optional<QString> otherButton;
};

constexpr int DefaultReturn = 1;
constexpr int AlternateReturn = 0;
constexpr int OtherReturn = -1;
constexpr int NoButtonReturn = -1000; // closed without a button

int runModal(const Alert &alert);
// Window-modal on the window (application-modal without one); nothing
// waits for the answer.
void beginSheet(const Alert &alert, QWidget *window);

// Icons: 0 stop, 1 note, 2 caution. No buttons gives "Cancel" and "OK".
struct Dialog {
    QString message;
    QString title;
    QStringList buttons;
    QString defaultButton;
    int icon = 1;
    int givingUpAfter = 0; // seconds; 0 waits for an answer
};

// The chosen button's title, "" when the dialog gave up, nothing when it
// was cancelled (its "Cancel" button, or Escape where it has one).
std::optional<QString> runDialog(const Dialog &dialog);

// Where nobody can answer (a command run without a display), each alert
// and dialog is written to standard error and answered with its default
// button; a dialog that would give up gives up.
void setUnattended(bool unattended);

void beep();

// Sizes the box as wide as its longest line asks, up to about 70
// characters, so a short message stays on one line and a long one wraps at
// a readable width.
void fitToText(QMessageBox &box);

// Text that an alert shows as it is: its "%" doubled.
QString literal(const QString &text);

// The "ui" string table's text for a key; the key itself when untranslated.
QString localized(const char *key);

} // namespace Alerts
