#include "MiscMethods.h"

#include "Alerts.h"
#include "JsonString.h"
#include "ScriptSubroutines.h"
#include "SystemLog.h"

#include <QApplication>

using Alerts::localized;

namespace {

// Button placement by count: of three, the first is the other button and
// the second the alternate; of two, the first is the alternate.
void placeButtons(Alerts::Alert &alert, const QStringList &buttons)
{
    if (buttons.size() == 3) {
        alert.otherButton = buttons[0];
        alert.alternateButton = buttons[1];
    } else if (buttons.size() == 2) {
        alert.alternateButton = buttons[0];
    }
}

} // namespace

int MiscMethods::displayAlert(const QString &title, const QString &message)
{
    return displayAlert(title, message, {localized("OK")});
}

int MiscMethods::displayAlert(const QString &title, const QString &message, const QStringList &buttons)
{
    Alerts::Alert alert{2, title, message, buttons.isEmpty() ? QString() : buttons.last(), {}, {}};
    placeButtons(alert, buttons);
    return Alerts::runModal(alert);
}

void MiscMethods::displayError(const QString &title, const QString &message, QWidget *window)
{
    const bool quitting = message.contains(localized("will now quit"), Qt::CaseInsensitive);
    activate();
    Alerts::beep();
    // Retry prompts and notices of modified items are routine, not failures.
    if (!title.contains(localized("modified"), Qt::CaseInsensitive) && message != localized("Please try again."))
        updateStatus(title + QStringLiteral(": ") + message);
    const Alerts::Alert alert{2, title, message, quitting ? localized("Quit") : localized("OK"), {}, {}};
    if (window)
        Alerts::beginSheet(alert, window);
    else
        Alerts::runModal(alert);
}

int MiscMethods::displayInformational(const QString &title, const QString &message, const QString &defaultButton)
{
    return Alerts::runModal({1, title, message, defaultButton, {}, {}});
}

QVariant MiscMethods::displayWarning(const QString &message, const QStringList &buttons,
                                         const QString &defaultButton, bool shouldBeep)
{
    if (shouldBeep)
        Alerts::beep();
    return displayMessage(message, buttons, defaultButton, 2, false);
}

QVariant MiscMethods::displayMessage(const QString &message, const QStringList &buttons,
                                         const QString &defaultButton, int style, bool asSheet)
{
    activate();
    Alerts::Alert alert{style, QString(), message, defaultButton, {}, {}};
    placeButtons(alert, buttons);
    if (asSheet) {
        Alerts::beginSheet(alert, QApplication::activeWindow());
        return defaultButton;
    }
    switch (Alerts::runModal(alert)) {
    case Alerts::DefaultReturn: return defaultButton;
    case Alerts::AlternateReturn: return alert.alternateButton.value_or(QString());
    case Alerts::OtherReturn: return alert.otherButton.value_or(QString());
    default: return QVariant();
    }
}

// The dialog as script text: every text a string literal, so whatever it
// holds reaches the dialog unchanged.
QString MiscMethods::dialogScript(const QString &message, const std::optional<QString> &title,
                                      const QStringList &buttons, const QString &defaultButton, int icon,
                                      int givingUpAfter)
{
    QStringList quotedButtons;
    for (const QString &button : buttons)
        quotedButtons.append(JsonString::quoted(button));
    QString text = QStringLiteral("dialog({application: %1, message: %2")
                       .arg(JsonString::quoted(QCoreApplication::applicationName()), JsonString::quoted(message));
    if (title)
        text += QStringLiteral(", title: ") + JsonString::quoted(*title);
    text += QStringLiteral(", buttons: [") + quotedButtons.join(QStringLiteral(", ")) + QStringLiteral("], defaultButton: ")
            + JsonString::quoted(defaultButton) + QStringLiteral(", icon: ") + QString::number(icon);
    if (givingUpAfter != 0)
        text += QStringLiteral(", givingUpAfter: ") + QString::number(givingUpAfter);
    return text + QStringLiteral("})");
}

QVariant MiscMethods::displayMessage(const MethodRegistry &methods, const QString &message,
                                         const QStringList &buttons, const QString &defaultButton, int icon,
                                         int givingUpAfter)
{
    activate();
    return ScriptRunner::runScript(methods,
                                   dialogScript(message, std::nullopt, buttons, defaultButton, icon, givingUpAfter));
}

QVariant MiscMethods::displayMessageWithTitle(const MethodRegistry &methods, const QString &title,
                                                  const QString &message, const QStringList &buttons,
                                                  const QString &defaultButton, int icon, bool shouldGiveUp)
{
    activate();
    return ScriptRunner::runScript(methods, dialogScript(message, title, buttons, defaultButton, icon,
                                                         shouldGiveUp ? 10 : 0));
}

void MiscMethods::updateStatus(const QString &status)
{
    SystemLog::write(status);
}
