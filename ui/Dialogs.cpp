#include "Dialogs.h"

#include "Alerts.h"
#include "MiscMethods.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace Dialogs {

void showMessage(const QString &title, const QString &text)
{
    MiscMethods::displayInformational(title, Alerts::literal(text), Alerts::localized("OK"));
}

void showError(const QString &title, const QString &text)
{
    MiscMethods::displayError(title, Alerts::literal(text), nullptr);
}

QString askQuestion(QWidget *window, const QString &title, const QString &text, const QStringList &buttons)
{
    if (buttons.isEmpty())
        return QString(QLatin1String(""));
    QMessageBox box(QMessageBox::Question, title, title, QMessageBox::NoButton, window);
    box.setObjectName(QStringLiteral("question"));
    box.setInformativeText(text);
    Alerts::fitToText(box);
    QList<QPushButton *> added;
    for (qsizetype i = 0; i < buttons.size(); ++i) {
        const bool last = i == buttons.size() - 1 && buttons.size() > 1;
        added.append(box.addButton(buttons[i], last ? QMessageBox::RejectRole : QMessageBox::AcceptRole));
    }
    box.setDefaultButton(added.first());
    box.setEscapeButton(added.last());
    box.exec();
    const qsizetype chosen = added.indexOf(qobject_cast<QPushButton *>(box.clickedButton()));
    return buttons[chosen < 0 ? buttons.size() - 1 : chosen];
}

QString askText(QWidget *window, const QString &title, const QString &text, const QString &defaultText)
{
    QInputDialog dialog(window);
    dialog.setObjectName(QStringLiteral("text_question"));
    dialog.setWindowTitle(title);
    dialog.setLabelText(text);
    dialog.setTextValue(defaultText);
    if (dialog.exec() != QDialog::Accepted)
        return QString(QLatin1String(""));
    return dialog.textValue();
}

QString chooseFolder(QWidget *window, const QString &title, const QString &startFolder)
{
    const QString folder = QFileDialog::getExistingDirectory(window, title, startFolder);
    return folder.isEmpty() ? QString(QLatin1String("")) : folder;
}

} // namespace Dialogs
