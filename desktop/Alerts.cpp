#include "Alerts.h"

#include "MiscMethods.h"
#include "SystemLog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <memory>

namespace Alerts {

namespace {

bool nobodyToAnswer = false;

const char *const ReturnCodeProperty = "alertReturnCode";
const char *const TitleProperty = "buttonTitle";

// A button shows its title as it is: an "&" is not a shortcut mark.
QPushButton *addButton(QMessageBox &box, const QString &title, QMessageBox::ButtonRole role)
{
    QPushButton *button = box.addButton(QString(title).replace(u'&', QStringLiteral("&&")), role);
    button->setProperty(TitleProperty, title);
    return button;
}

QMessageBox::Icon alertIcon(int style)
{
    switch (style) {
    case 0: return QMessageBox::Warning;
    case 1: return QMessageBox::Information;
    case 2: return QMessageBox::Critical;
    default: return QMessageBox::NoIcon;
    }
}

QMessageBox::Icon dialogIcon(int icon)
{
    switch (icon) {
    case 0: return QMessageBox::Critical;
    case 1: return QMessageBox::Information;
    case 2: return QMessageBox::Warning;
    default: return QMessageBox::NoIcon;
    }
}

// Texts are shown as they are: a name that looks like markup is a name.
void setTexts(QMessageBox &box, const QString &text, const QString &informative)
{
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setInformativeText(informative);
    if (auto *label = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel")))
        label->setTextFormat(Qt::PlainText);
}

void writeUnattended(const QString &kind, const QString &title, const QString &text, const QStringList &buttons,
                     const QString &answer)
{
    const QString line = QStringLiteral("%1: %2: %3 [%4] -> %5\n")
                             .arg(kind, title, text, buttons.join(QStringLiteral(", ")), answer);
    const QByteArray bytes = line.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

// Without a title of its own the default button is the panel's "OK".
QString defaultTitle(const Alert &alert)
{
    return alert.defaultButton.isEmpty() ? localized("OK") : alert.defaultButton;
}

QMessageBox *makeAlert(const Alert &alert, QWidget *parent)
{
    auto *box = new QMessageBox(parent);
    box->setIcon(alertIcon(alert.style));
    box->setWindowTitle(QGuiApplication::applicationDisplayName());
    setTexts(*box, alert.messageText, SystemLog::formatWithoutArguments(alert.informativeText));
    fitToText(*box);
    const auto add = [box](const QString &title, QMessageBox::ButtonRole role, int code) {
        QPushButton *button = addButton(*box, title, role);
        button->setProperty(ReturnCodeProperty, code);
        return button;
    };
    box->setDefaultButton(add(defaultTitle(alert), QMessageBox::AcceptRole, DefaultReturn));
    if (alert.alternateButton)
        add(*alert.alternateButton, QMessageBox::RejectRole, AlternateReturn);
    if (alert.otherButton)
        add(*alert.otherButton, QMessageBox::DestructiveRole, OtherReturn);
    return box;
}

QStringList buttonsOf(const Alert &alert)
{
    QStringList titles{defaultTitle(alert)};
    if (alert.alternateButton)
        titles.append(*alert.alternateButton);
    if (alert.otherButton)
        titles.append(*alert.otherButton);
    return titles;
}

bool canShow()
{
    return !nobodyToAnswer && qobject_cast<QApplication *>(QCoreApplication::instance());
}

} // namespace

void fitToText(QMessageBox &box)
{
    const QFontMetrics metrics(box.font());
    int widest = metrics.horizontalAdvance(box.text()) * 5 / 4; // the message text is set larger
    for (const QString &line : box.informativeText().split(u'\n'))
        widest = std::max(widest, metrics.horizontalAdvance(line));
    const int width = std::min(widest, metrics.averageCharWidth() * 70);
    if (auto *label = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel")))
        label->setMinimumWidth(width + 2 * metrics.averageCharWidth());
}

QString literal(const QString &text)
{
    return QString(text).replace(u'%', QStringLiteral("%%"));
}

QString localized(const char *key)
{
    return QCoreApplication::translate("ui", key);
}

void setUnattended(bool unattended)
{
    nobodyToAnswer = unattended;
}

void beep()
{
    if (qobject_cast<QApplication *>(QCoreApplication::instance()))
        QApplication::beep();
}

int runModal(const Alert &alert)
{
    if (!canShow()) {
        writeUnattended(QStringLiteral("alert"), alert.messageText,
                        SystemLog::formatWithoutArguments(alert.informativeText), buttonsOf(alert),
                        buttonsOf(alert).first());
        return DefaultReturn;
    }
    const std::unique_ptr<QMessageBox> box(makeAlert(alert, QApplication::activeWindow()));
    box->exec();
    const QAbstractButton *clicked = box->clickedButton();
    return clicked ? clicked->property(ReturnCodeProperty).toInt() : NoButtonReturn;
}

void beginSheet(const Alert &alert, QWidget *window)
{
    if (!canShow()) {
        writeUnattended(QStringLiteral("sheet"), alert.messageText,
                        SystemLog::formatWithoutArguments(alert.informativeText), buttonsOf(alert),
                        QStringLiteral("(not waited for)"));
        return;
    }
    QMessageBox *box = makeAlert(alert, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(window ? Qt::WindowModal : Qt::ApplicationModal);
    box->open();
}

std::optional<QString> runDialog(const Dialog &dialog)
{
    const QString cancel = QStringLiteral("Cancel");
    const QStringList buttons = dialog.buttons.isEmpty() ? QStringList{cancel, QStringLiteral("OK")} : dialog.buttons;
    const QString defaultButton =
        dialog.buttons.isEmpty() && dialog.defaultButton.isEmpty() ? QStringLiteral("OK") : dialog.defaultButton;
    if (!canShow()) {
        const std::optional<QString> answer = dialog.givingUpAfter > 0 ? std::optional(QString())
                                              : defaultButton == cancel ? std::nullopt
                                                                        : std::optional(defaultButton);
        writeUnattended(QStringLiteral("dialog"), dialog.title, dialog.message, buttons,
                        answer ? (answer->isEmpty() ? QStringLiteral("(gave up)") : *answer) : cancel);
        return answer;
    }
    QMessageBox box(QApplication::activeWindow());
    box.setIcon(dialogIcon(dialog.icon));
    box.setWindowTitle(dialog.title);
    setTexts(box, dialog.message, QString());
    // Action buttons keep the order they were given in.
    for (const QString &title : buttons) {
        QPushButton *button = addButton(box, title, QMessageBox::ActionRole);
        if (title == defaultButton)
            box.setDefaultButton(button);
        if (title == cancel)
            box.setEscapeButton(button);
    }
    bool gaveUp = false;
    // Beyond some three weeks a timer cannot count; such a dialog waits.
    if (dialog.givingUpAfter > 0 && dialog.givingUpAfter < 2'000'000)
        QTimer::singleShot(std::chrono::seconds(dialog.givingUpAfter), &box, [&] {
            gaveUp = true;
            box.done(0);
        });
    box.exec();
    if (gaveUp)
        return QString();
    const QAbstractButton *clicked = box.clickedButton();
    const QString chosen = clicked ? clicked->property(TitleProperty).toString() : cancel;
    if (chosen == cancel)
        return std::nullopt;
    return chosen;
}

} // namespace Alerts
