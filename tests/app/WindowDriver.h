#pragma once

// What the window tests share: the application under test, waiting for
// the window, dialogs answered as a person would, screenshots.

#include "GuiWaiting.h"
#include "MainScript.h"
#include "RZApplication.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMessageBox>
#include <QScreen>
#include <functional>
#include <utility>
#include <gtest/gtest.h>

class QTemporaryDir;

inline RZApplication *application = nullptr;
inline MainScript *script = nullptr;
inline QTemporaryDir *home = nullptr;

template <typename T>
T *control(const char *name)
{
    return qobject_cast<T *>(application->outlet(QString::fromLatin1(name)));
}

inline QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

inline QStringList column(int column)
{
    QStringList values;
    const FileTableModel &model = application->fileTableDataSource();
    for (int row = 0; row < model.rowCount(); ++row)
        values.append(model.data(model.index(row, column), Qt::DisplayRole).toString());
    return values;
}

// Dialogs the window shows: the next question is answered with the button
// of that title; any other dialog is recorded and closed.
inline QString pendingAnswer;
// Looks at the next dialog before it is answered or closed.
inline std::function<void(QMessageBox *)> inspectNextDialog;
inline QStringList unexpectedDialogs;

inline void answerNextQuestion(const QString &button)
{
    pendingAnswer = button;
}

inline void watchDialogs()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box)
        return;
    if (inspectNextDialog) {
        const auto inspect = std::exchange(inspectNextDialog, nullptr);
        inspect(box);
        if (!box->isVisible())
            return;
    }
    for (QAbstractButton *choice : box->buttons())
        if (!pendingAnswer.isEmpty() && choice->text() == pendingAnswer) {
            pendingAnswer.clear();
            choice->click();
            return;
        }
    unexpectedDialogs.append(box->text() + QStringLiteral(": ") + box->informativeText());
    box->reject();
}

#define EXPECT_NO_SURPRISES()                                                                                       \
    do {                                                                                                             \
        EXPECT_TRUE(script->errors().isEmpty()) << script->errors().join(u'\n').toStdString();                     \
        EXPECT_TRUE(unexpectedDialogs.isEmpty()) << unexpectedDialogs.join(u'\n').toStdString();                   \
        unexpectedDialogs.clear();                                                                                  \
    } while (false)

inline void screenshot(const QString &name)
{
    QCoreApplication::processEvents(); // pending layouts first
    if (const QString file = screenshotFile(name); !file.isEmpty())
        application->window()->grab().save(file);
}

// What the screen shows over the window, menus and popups included.
inline void screenshotOfScreen(const QString &name)
{
    QCoreApplication::processEvents();
    const QRect area = application->window()->frameGeometry();
    if (const QString file = screenshotFile(name); !file.isEmpty())
        QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(), area.height()).save(file);
}

// "IMG_%1.jpg" for each number from first to last.
inline QStringList numberedNames(const QString &pattern, int first, int last)
{
    QStringList names;
    for (int i = first; i <= last; ++i)
        names.append(pattern.arg(i));
    return names;
}

inline void makeFiles(const QString &folder, const QStringList &names)
{
    for (const QString &name : names) {
        QFile file(folder + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(name.toUtf8());
    }
}
