#pragma once

#include <QStringList>

class QWidget;

// The plain dialogs the main script shows: a message, a question with
// buttons, a folder chooser. Each is modal. Messages and failures are the
// informational and error alerts, their texts shown as they are.
namespace Dialogs {

void showMessage(const QString &title, const QString &text);
// A failure: the error alert, which also logs it.
void showError(const QString &title, const QString &text);
// The title of the button chosen; the last button (the cancelling one)
// when the dialog is closed another way.
QString askQuestion(QWidget *window, const QString &title, const QString &text, const QStringList &buttons);
// The text typed into a one-line field under the question, or "" when
// cancelled.
QString askText(QWidget *window, const QString &title, const QString &text, const QString &defaultText);
// The chosen folder, or "" when cancelled.
QString chooseFolder(QWidget *window, const QString &title, const QString &startFolder);

} // namespace Dialogs
