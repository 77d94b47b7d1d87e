#include "MethodTable.h"
#include "MiscMethods.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include "TemporaryFolder.h"
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using M = MiscMethods;

QMessageBox *openBox()
{
    for (QWidget *widget : QApplication::allWidgets())
        if (auto *box = qobject_cast<QMessageBox *>(widget); box && box->isVisible())
            return box;
    return nullptr;
}

// Runs `answer` on the next message box that opens, from inside the event
// loop the box runs.
void whenABoxOpens(std::function<void(QMessageBox &)> answer)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, answer] {
        if (QMessageBox *box = openBox()) {
            timer->stop();
            timer->deleteLater();
            answer(*box);
        }
    });
    timer->start(5);
}

QString titleOf(const QAbstractButton *button)
{
    return button ? button->text().replace(QStringLiteral("&&"), QStringLiteral("&")) : QStringLiteral("(none)");
}

QAbstractButton *buttonTitled(QMessageBox &box, const QString &title)
{
    for (QAbstractButton *button : box.buttons())
        if (titleOf(button) == title)
            return button;
    return nullptr;
}

struct Seen {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString text;
    QString informative;
    QString title;
    QString defaultButton;
    QStringList buttons; // "title:role"
};

// Records what the box shows, then clicks the button of that title (or
// leaves the box alone for an empty title).
std::function<void(QMessageBox &)> recordAndClick(Seen &seen, const QString &click)
{
    return [&seen, click](QMessageBox &box) {
        seen = {box.icon(), box.text(), box.informativeText(), box.windowTitle(), titleOf(box.defaultButton()), {}};
        for (QAbstractButton *button : box.buttons())
            seen.buttons.append(titleOf(button) + u':' + QString::number(box.buttonRole(button)));
        if (click.isEmpty())
            return;
        if (QAbstractButton *button = buttonTitled(box, click)) {
            button->click();
        } else {
            ADD_FAILURE() << "no button titled " << click.toStdString();
            box.done(0);
        }
    };
}

const QString accept = QString::number(QMessageBox::AcceptRole);
const QString reject = QString::number(QMessageBox::RejectRole);
const QString destructive = QString::number(QMessageBox::DestructiveRole);

TEST(Alerts, ButtonsArePlacedByCountAndEachAnswersItsCode)
{
    struct Case {
        QStringList buttons;
        QString click;
        int code;
        QStringList shown;
    } cases[] = {
        {{"OK"}, "OK", 1, {"OK:" + accept}},
        {{"Cancel", "OK"}, "Cancel", 0, {"OK:" + accept, "Cancel:" + reject}},
        {{"Discard", "Cancel", "Save"}, "Discard", -1, {"Save:" + accept, "Cancel:" + reject, "Discard:" + destructive}},
        {{"A", "B", "C", "D"}, "D", 1, {"D:" + accept}},
    };
    for (const Case &c : cases) {
        Seen seen;
        whenABoxOpens(recordAndClick(seen, c.click));
        EXPECT_EQ(M::displayAlert(QStringLiteral("Save changes?"), QStringLiteral("100%% <b>sure</b>"), c.buttons), c.code)
            << c.buttons.join(u',').toStdString();
        QStringList shown = seen.buttons;
        shown.sort();
        QStringList expected = c.shown;
        expected.sort();
        EXPECT_EQ(shown, expected);
        EXPECT_EQ(seen.defaultButton, c.buttons.last());
        EXPECT_EQ(seen.icon, QMessageBox::Critical);
        EXPECT_EQ(seen.text, QStringLiteral("Save changes?"));
        EXPECT_EQ(seen.informative, QStringLiteral("100% <b>sure</b>")) << "read as a format, shown as plain text";
    }

    // The message form answers titles; its default button comes apart
    // from the list, its icon from the style.
    Seen seen;
    whenABoxOpens(recordAndClick(seen, QStringLiteral("Later")));
    EXPECT_EQ(M::displayMessage(QStringLiteral("Update?"), {"Never", "Later", "x"}, QStringLiteral("Now"), 1, false),
              QVariant(QStringLiteral("Later")));
    EXPECT_EQ(seen.defaultButton, QStringLiteral("Now"));
    EXPECT_EQ(seen.icon, QMessageBox::Information);
    EXPECT_EQ(seen.text, QString());
    whenABoxOpens([](QMessageBox &box) { box.done(0); });
    EXPECT_FALSE(M::displayMessage(QStringLiteral("Closed"), {}, QStringLiteral("OK"), 0, false).isValid())
        << "closed without a button: nil";
}

// Errors are logged, except routine retry prompts and notices of modified
// items; a message that says the program will quit offers "Quit".
TEST(Alerts, ErrorsAreLoggedUnlessRoutineAndOfferQuitWhenQuitting)
{
    TemporaryFolder folder;
    const QString log = folder.filePath(QStringLiteral("log.txt"));
    QFile existing(log);
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("earlier line\n");
    existing.close();
    const int savedError = dup(STDERR_FILENO);
    M::setLogOutputFile(log);
    M::setLogOutputFile(folder.filePath(QStringLiteral("no/such/folder/log.txt"))); // leaves the stream as it was

    struct Case {
        QString title, message, button;
        bool logged;
    } cases[] = {
        {"Rename failed", "The disk is full.", "OK", true},
        {"Item Modified", "Someone changed it.", "OK", false},
        {"Rename failed", "Please try again.", "OK", false},
        {"Out of memory", "Nomen WILL NOW QUIT.", "Quit", true},
    };
    for (const Case &c : cases) {
        Seen seen;
        whenABoxOpens(recordAndClick(seen, c.button));
        M::displayError(c.title, c.message, nullptr);
        EXPECT_EQ(seen.buttons, QStringList{c.button + u':' + accept});
        EXPECT_EQ(seen.icon, QMessageBox::Critical);
    }
    fflush(stderr);
    dup2(savedError, STDERR_FILENO);
    close(savedError);

    QFile file(log);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString written = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(written.startsWith(QStringLiteral("earlier line\n"))) << "appended, not replaced";
    for (const Case &c : cases)
        EXPECT_EQ(written.contains(c.title + QStringLiteral(": ") + c.message + u'\n'), c.logged) << written.toStdString();
}

TEST(Alerts, ASheetAnswersAtOnceAndStaysOnItsWindow)
{
    QWidget window;
    window.resize(400, 300);
    window.show();
    window.activateWindow();
    QApplication::setActiveWindow(&window);
    EXPECT_EQ(M::displayMessage(QStringLiteral("Sheet"), {"No", "Yes"}, QStringLiteral("Yes"), 1, true),
              QVariant(QStringLiteral("Yes")));
    QMessageBox *sheet = openBox();
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->parentWidget(), &window);
    EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
    sheet->close();
    QApplication::processEvents();

    M::displayError(QStringLiteral("Failed"), QStringLiteral("on the window"), &window);
    sheet = openBox();
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->parentWidget(), &window);
    EXPECT_EQ(sheet->informativeText(), QStringLiteral("on the window"));
    sheet->close();
}

// The dialog forms run as script text: whatever the texts hold reaches the
// dialog unchanged, and the chosen title comes back.
TEST(Dialogs, TextsReachTheDialogUnchangedWhateverTheyHold)
{
    const MethodRegistry methods = buildMethodTable();
    const QString message = QStringLiteral("He said \"hi\" \\ \n${HOME} `$(rm -rf x)` \");throw 1;(\" <b>bold</b> ") + QChar(0xDC80)
                            + QStringLiteral(" line\u2028paragraph\u2029end");
    const QStringList buttons{QStringLiteral("Save & \"Quit\""), QStringLiteral("\\n\u2028"), QStringLiteral("Cancel")};
    Seen seen;
    whenABoxOpens(recordAndClick(seen, buttons[0]));
    EXPECT_EQ(M::displayMessageWithTitle(methods, QStringLiteral("Title ${x}"), message, buttons, buttons[1], 2, false),
              QVariant(buttons[0]));
    EXPECT_EQ(seen.text, message);
    EXPECT_EQ(seen.title, QStringLiteral("Title ${x}"));
    EXPECT_EQ(seen.icon, QMessageBox::Warning);
    EXPECT_EQ(seen.defaultButton, buttons[1]);
    QStringList titles;
    for (const QString &shown : seen.buttons)
        titles.append(shown.section(u':', 0, -2));
    EXPECT_EQ(titles, buttons) << "in the order given";

    whenABoxOpens(recordAndClick(seen, QStringLiteral("Cancel")));
    EXPECT_FALSE(M::displayMessage(methods, message, buttons, buttons[0], 0, 0).isValid()) << "cancelled: nil";
    EXPECT_EQ(seen.icon, QMessageBox::Critical);
    whenABoxOpens([](QMessageBox &box) { box.reject(); }); // Escape with a Cancel button
    EXPECT_FALSE(M::displayMessage(methods, QStringLiteral("x"), buttons, buttons[0], 1, 0).isValid());
}

TEST(Dialogs, GiveUpWhenNobodyAnswersInTime)
{
    const MethodRegistry methods = buildMethodTable();
    Seen seen;
    whenABoxOpens(recordAndClick(seen, QString()));
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(M::displayMessage(methods, QStringLiteral("Waits a second"), {"OK"}, QStringLiteral("OK"), 1, 1),
              QVariant(QString()));
    EXPECT_GE(clock.elapsed(), 900);
    EXPECT_EQ(seen.text, QStringLiteral("Waits a second")) << "it was shown";
}

TEST(Utilities, ScreenUpdatesNestAndResumeAfterTheLastYes)
{
    QWidget window;
    window.show();
    M::toggleScreenUpdates(true); // unpaired: nothing to resume
    EXPECT_TRUE(window.updatesEnabled());
    M::toggleScreenUpdates(false);
    M::toggleScreenUpdates(false);
    M::toggleScreenUpdates(true);
    EXPECT_FALSE(window.updatesEnabled()) << "still one NO without its YES";
    M::toggleScreenUpdates(true);
    EXPECT_TRUE(window.updatesEnabled());
}

// Cached administrator credentials are forgotten through the shell's sudo,
// wherever the search path finds one.
TEST(Utilities, ClearSudoRunsSudoMinusK)
{
    TemporaryFolder bin;
    const QString record = bin.filePath(QStringLiteral("called"));
    QFile sudo(bin.filePath(QStringLiteral("sudo")));
    ASSERT_TRUE(sudo.open(QIODevice::WriteOnly));
    sudo.write("#!/bin/sh\necho \"$@\" > \"$(dirname \"$0\")/called\"\n");
    sudo.close();
    ASSERT_TRUE(sudo.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray savedPath = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(bin.path()) + ':' + savedPath);
    M::clearSudo(buildMethodTable());
    qputenv("PATH", savedPath);
    QFile called(record);
    ASSERT_TRUE(called.open(QIODevice::ReadOnly)) << "sudo was not run";
    EXPECT_EQ(called.readAll(), "-k\n");
}

} // namespace
