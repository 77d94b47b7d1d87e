// Saved rules as a person uses them: saved from the window's Rules menu,
// renamed by with nomen-cli, changed and saved there, chosen again in the
// window, deleted.

#include "WindowDriver.h"
#include "RuleForm.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QInputDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include "TemporaryFolder.h"
#include <QTimer>
#include <functional>
#include <memory>
#include <gtest/gtest.h>

namespace {

QString rulesFolder()
{
    return home->path() + QStringLiteral("/config/nomen/rules");
}

// The new names nomen-cli gives, from its JSON dry run.
QStringList cliNewNames(const QStringList &arguments)
{
    QProcess cli;
    cli.start(QStringLiteral(NOMEN_CLI_PATH), arguments + QStringList{QStringLiteral("--json")});
    EXPECT_TRUE(cli.waitForFinished(30000));
    QStringList names;
    for (const QJsonValue &row : QJsonDocument::fromJson(cli.readAllStandardOutput()).array())
        names.append(row[QStringLiteral("to")].toString().section(u'/', -1));
    return names;
}

// Types the name into the next text question, as a person would, and
// says OK.
void answerNextTextQuestion(const QString &text)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [timer, text] {
        auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        if (!dialog || dialog->objectName() != QLatin1String("text_question"))
            return;
        dialog->setTextValue(text);
        dialog->accept();
        timer->deleteLater();
    });
    timer->start(20);
}

// The Rules menu opened as a person opens it; the entry of that title in it
// or in its Delete Rule submenu.
QAction *ruleEntry(const char *menu, const QString &title)
{
    auto *rules = application->window()->findChild<QMenu *>(QStringLiteral("menu_rules"));
    application->window()->findChild<QMenuBar *>()->setActiveAction(rules->menuAction());
    waitFor([rules] { return rules->isVisible(); });
    screenshotOfScreen(QStringLiteral("rules-menu.png"));
    rules->hide();
    for (QAction *action : application->window()->findChild<QMenu *>(QString::fromLatin1(menu))->actions())
        if (action->text() == title)
            return action;
    return nullptr;
}

TEST(MainWindow, SavedRulesGoBetweenTheWindowAndTheCommandLine)
{
    TemporaryFolder folder;
    makeFiles(folder.path(), {"IMG_1.jpg", "IMG_2.jpg", "notes.txt"});
    script->start({folder.path()});
    // From the plain rule, and back to what the window showed afterwards.
    const RenameRule shown = RuleForm::rule(application->form());
    const std::unique_ptr<void, std::function<void(void *)>> restore(&folder, [shown](void *) {
        RuleForm::apply(application->form(), shown);
    });
    RuleForm::apply(application->form(), RenameRule());
    control<QLineEdit>("prefix")->setText(QStringLiteral("Trip «#» "));
    control<QLineEdit>("prefix_add_leading_zeros_min")->setText(QStringLiteral("3"));
    control<QAbstractButton>("snr_type_1_1")->setChecked(true);
    control<QLineEdit>("search_1")->setText(QStringLiteral("IMG_(\\d)"));
    control<QLineEdit>("replace_1")->setText(QStringLiteral("photo $1"));
    control<QAbstractButton>("extension_matrix_3")->setChecked(true);
    control<QComboBox>("ext_case")->setCurrentText(QStringLiteral("UPPERCASE"));
    control<QLineEdit>("ext_filter")->setText(QStringLiteral("jpg"));
    script->handle(QStringLiteral("clicked"), QStringLiteral("ext_filter"));
    script->handle(QStringLiteral("clicked"), QStringLiteral("update_preview"));
    const QStringList expected = {"Trip 001 photo 1.JPG", "Trip 002 photo 2.JPG"};
    ASSERT_EQ(column(FileTableModel::New), expected);

    // A "&" in the name is part of it, in the file name and in the menu.
    answerNextTextQuestion(QStringLiteral("Trip & Beach"));
    application->window()->findChild<QAction *>(QStringLiteral("action_save_rule"))->trigger();
    EXPECT_NO_SURPRISES();
    ASSERT_TRUE(QFile::exists(rulesFolder() + QStringLiteral("/Trip & Beach.json")));
    EXPECT_EQ(cliNewNames({"--rule", "Trip & Beach", folder.path()}), expected);

    // Changed on the command line and saved under another name, the rule
    // shows in the menu at once and fills the controls when chosen.
    QProcess::execute(QStringLiteral(NOMEN_CLI_PATH), {"--rule", "Trip & Beach", "--start", "5", "--save-rule", "Later"});
    control<QLineEdit>("prefix")->setText(QString());
    control<QLineEdit>("ext_filter")->setText(QString());
    QAction *later = ruleEntry("menu_rules", QStringLiteral("Later"));
    ASSERT_NE(later, nullptr);
    later->trigger();
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(control<QLineEdit>("prefix")->text(), "Trip «#» ");
    EXPECT_EQ(control<QLineEdit>("prefix_start_num")->text(), "5");
    EXPECT_EQ(control<QLineEdit>("ext_filter")->text(), "jpg");
    script->handle(QStringLiteral("clicked"), QStringLiteral("update_preview"));
    EXPECT_EQ(column(FileTableModel::New), QStringList({"Trip 005 photo 1.JPG", "Trip 006 photo 2.JPG"}));

    QAction *doomed = ruleEntry("menu_delete_rule", QStringLiteral("Trip && Beach"));
    ASSERT_NE(doomed, nullptr);
    answerNextQuestion(QStringLiteral("Delete"));
    doomed->trigger();
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(namesIn(rulesFolder()), QStringList({"Later.json"}));
    EXPECT_EQ(ruleEntry("menu_rules", QStringLiteral("Trip && Beach")), nullptr);
}

} // namespace
