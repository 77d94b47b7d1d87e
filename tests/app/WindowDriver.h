#pragma once

// What the window tests share: the application under test, waiting for
// the window, dialogs answered as a person would, screenshots.

#include "FileTableView.h"
#include "GuiWaiting.h"
#include "MainScript.h"
#include "RZApplication.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include "TemporaryFolder.h"
#include <QTest>
#include <QTimer>
#include <QMessageBox>
#include <QScreen>
#include <functional>
#include <utility>
#include <gtest/gtest.h>


inline RZApplication *application = nullptr;
inline MainScript *script = nullptr;
inline TemporaryFolder *home = nullptr;

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

// Steps done one after another from a timer, so they go on inside the
// event loops a drag or a menu runs of their own.
inline bool perform(const std::vector<std::function<void()>> &steps, int intervalMs = 60)
{
    size_t next = 0;
    QTimer timer;
    timer.setInterval(intervalMs);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (next < steps.size())
            steps[next++]();
    });
    timer.start();
    return waitFor([&] { return next == steps.size(); }, 15000);
}

// A radio button is clicked on its circle, where a person aims.
inline void clickRadio(QAbstractButton *button)
{
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(4, button->height() / 2));
}

inline FileTableView *fileTable()
{
    return control<FileTableView>("fileTable");
}

inline void listFolder(const QString &path)
{
    control<QLineEdit>("source_folder")->setText(path);
    script->handle(QStringLiteral("clicked"), QStringLiteral("source_folder"));
}

inline void showWindowAt(int width)
{
    QWidget *window = application->window();
    window->show();
    window->resize(width, 860);
    QApplication::setActiveWindow(window);
    waitFor([window, width] { return window->isActiveWindow() && window->width() == width; }, 2000);
    QCoreApplication::processEvents();
}

namespace WindowTests {

// Each test starts from the plain rule, whatever earlier tests left. (Named
// in a namespace: X11 has a Window of its own.)
class Window : public testing::Test {
protected:
    void SetUp() override
    {
        for (const char *field : {"prefix", "suffix", "search_1", "replace_1", "extension"})
            control<QLineEdit>(field)->setText(QString()); // and no edit to undo
        for (const char *field : {"trim_start", "trim_end"})
            control<QLineEdit>(field)->setText(QStringLiteral("0"));
        for (const char *box : {"change_case", "orig_strip_diacriticals", "descend", "folder_rows", "dates_taken"})
            control<QAbstractButton>(box)->setChecked(false);
        for (const char *popup : {"prefix_date_to_use", "suffix_date_to_use"})
            control<QComboBox>(popup)->setCurrentIndex(0);
        control<QAbstractButton>("inc_original_name")->setChecked(true);
        control<QAbstractButton>("snr_type_1_0")->setChecked(true);
        control<QAbstractButton>("extension_matrix_0")->setChecked(true);
    }

    // These files in a new folder, listed in the window at its usual width.
    void listNewFolder(const QStringList &names)
    {
        makeFiles(folder.path(), names);
        showWindowAt(1060);
        listFolder(folder.path());
    }

    TemporaryFolder folder;
};

} // namespace WindowTests
