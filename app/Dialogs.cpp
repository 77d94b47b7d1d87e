#include "Dialogs.h"

#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace Dialogs {

namespace {

// As wide as the longest line asks, up to about 70 characters, so a short
// message stays on one line and a long one wraps at a readable width.
void fitToText(QMessageBox &box, const QString &title, const QString &text)
{
    const QFontMetrics metrics(box.font());
    int widest = metrics.horizontalAdvance(title) * 5 / 4; // the title is set larger
    for (const QString &line : text.split(u'\n'))
        widest = std::max(widest, metrics.horizontalAdvance(line));
    const int width = std::min(widest, metrics.averageCharWidth() * 70);
    for (QLabel *label : box.findChildren<QLabel *>())
        if (label->objectName() == QLatin1String("qt_msgbox_informativelabel"))
            label->setMinimumWidth(width + 2 * metrics.averageCharWidth());
}

void show(QWidget *window, QMessageBox::Icon icon, const QString &title, const QString &text)
{
    QMessageBox box(icon, title, title, QMessageBox::Ok, window);
    box.setObjectName(QStringLiteral("message"));
    box.setInformativeText(text);
    fitToText(box, title, text);
    box.exec();
}

} // namespace

void showMessage(QWidget *window, const QString &title, const QString &text)
{
    show(window, QMessageBox::Information, title, text);
}

void showError(QWidget *window, const QString &title, const QString &text)
{
    show(window, QMessageBox::Critical, title, text);
}

QString askQuestion(QWidget *window, const QString &title, const QString &text, const QStringList &buttons)
{
    if (buttons.isEmpty())
        return QString(QLatin1String(""));
    QMessageBox box(QMessageBox::Question, title, title, QMessageBox::NoButton, window);
    box.setObjectName(QStringLiteral("question"));
    box.setInformativeText(text);
    fitToText(box, title, text);
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

QString chooseFolder(QWidget *window, const QString &title, const QString &startFolder)
{
    const QString folder = QFileDialog::getExistingDirectory(window, title, startFolder);
    return folder.isEmpty() ? QString(QLatin1String("")) : folder;
}

} // namespace Dialogs
