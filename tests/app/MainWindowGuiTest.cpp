// The window as a person uses it, on a private X server: list a folder,
// type a prefix, see the preview and the new names, rename, undo.

#include "WindowDriver.h"
#include "MethodTable.h"
#include "RZApplication.h"
#include "BatchObserver.h"
#include "SafeMover.h"
#include "TestPrinting.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QTableView>
#include "TemporaryFolder.h"
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <functional>
#include <gtest/gtest.h>

namespace {

TEST(MainWindow, APersonListsRenamesAndUndoes)
{
    TemporaryFolder folder;
    makeFiles(folder.path(), {"IMG_10.jpg", "IMG_9.jpg", "IMG_100.jpg", "notes.txt"});
    // Not listed (no folder rows), but it holds the name notes.txt would get.
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("Trip 4 notes.txt")));

    script->start({folder.path()});
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(control<QLineEdit>("source_folder")->text(), folder.path());
    ASSERT_EQ(application->fileTableDataSource().rowCount(), 4);

    // Counters follow the order of the rows: names in natural order at
    // first; a click on a column header orders by that column, a second
    // click turns the order round.
    const QStringList natural = {"IMG_9.jpg", "IMG_10.jpg", "IMG_100.jpg", "notes.txt"};
    EXPECT_EQ(column(FileTableModel::Original), natural);
    auto *table = control<QTableView>("fileTable");
    auto clickHeader = [table](int section) {
        QTest::mouseClick(table->horizontalHeader()->viewport(), Qt::LeftButton, {},
                          QPoint(table->horizontalHeader()->sectionViewportPosition(section) + 10, 5));
    };
    clickHeader(FileTableModel::Original);
    EXPECT_EQ(column(FileTableModel::Original), QStringList({"notes.txt", "IMG_100.jpg", "IMG_10.jpg", "IMG_9.jpg"}));
    clickHeader(FileTableModel::Size);
    EXPECT_EQ(column(FileTableModel::Size), QStringList({"9 B", "9 B", "10 B", "11 B"}));
    clickHeader(FileTableModel::Original);
    EXPECT_EQ(column(FileTableModel::Original), natural);

    auto *prefix = control<QLineEdit>("prefix");
    prefix->setFocus();
    QTest::keyClicks(prefix, QStringLiteral("Trip «#» "));
    EXPECT_EQ(control<QLineEdit>("preview_name")->text(), "Trip 1 IMG_9.jpg");
    ASSERT_TRUE(waitFor([] { return !application->fileTableDataSource().conflictAt(3).isEmpty(); }));
    EXPECT_EQ(column(FileTableModel::New),
              QStringList({"Trip 1 IMG_9.jpg", "Trip 2 IMG_10.jpg", "Trip 3 IMG_100.jpg", "Trip 4 notes.txt"}));
    const FileTableModel &model = application->fileTableDataSource();
    // A new name cut to fit its column is whole in the tooltip, after the
    // reason it cannot be given, if there is one.
    EXPECT_EQ(model.data(model.index(3, FileTableModel::New), Qt::ToolTipRole).toString(),
              "a file named \"Trip 4 notes.txt\" is already there\nTrip 4 notes.txt");
    EXPECT_EQ(model.data(model.index(0, FileTableModel::New), Qt::ToolTipRole).toString(), "Trip 1 IMG_9.jpg");
    EXPECT_EQ(model.data(model.index(0, FileTableModel::Size), Qt::DisplayRole).toString(), "9 B");
    screenshot(QStringLiteral("main-window-preview.png"));

    // Rename: the conflict is shown first; the others are renamed.
    auto *rename = control<QAbstractButton>("rename");
    ASSERT_TRUE(rename->isEnabled());
    answerNextQuestion(QStringLiteral("Rename Others"));
    QTest::mouseClick(rename, Qt::LeftButton);
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(namesIn(folder.path()),
              QStringList({"Trip 1 IMG_9.jpg", "Trip 2 IMG_10.jpg", "Trip 3 IMG_100.jpg", "Trip 4 notes.txt", "notes.txt"}));
    // The table lists the folder again, under the new names.
    EXPECT_EQ(column(FileTableModel::Original), QStringList({"notes.txt", "Trip 1 IMG_9.jpg", "Trip 2 IMG_10.jpg", "Trip 3 IMG_100.jpg"}));
    EXPECT_EQ(control<QWidget>("status_line")->property("text").toString(), "3 files renamed");
    screenshot(QStringLiteral("main-window-renamed.png"));

    // Undo Rename from the menu's keyboard shortcut, in the active window.
    QApplication::setActiveWindow(application->window());
    ASSERT_TRUE(waitFor([] { return application->window()->isActiveWindow(); }));
    table->setFocus();
    QTest::keyClick(table, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(namesIn(folder.path()), QStringList({"IMG_10.jpg", "IMG_100.jpg", "IMG_9.jpg", "Trip 4 notes.txt", "notes.txt"}));
    EXPECT_EQ(control<QWidget>("status_line")->property("text").toString(), "3 files put back");
    for (const QString name : {"IMG_10.jpg", "notes.txt"}) {
        QFile file(folder.path() + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), name.toUtf8()) << "content unchanged";
    }
    screenshot(QStringLiteral("main-window-undone.png"));
}

TEST(MainWindow, UntickingARowGivesItsCounterToTheNext)
{
    TemporaryFolder folder;
    makeFiles(folder.path(), {"a.txt", "b.txt", "c.txt"});
    script->handle(QStringLiteral("dropped"), QStringList{folder.path()});
    control<QLineEdit>("prefix")->setText(QString());
    QTest::keyClicks(control<QLineEdit>("prefix"), QStringLiteral("«#»-"));
    FileTableModel &model = application->fileTableDataSource();
    ASSERT_EQ(column(FileTableModel::New), QStringList({"1-a.txt", "2-b.txt", "3-c.txt"}));
    model.setData(model.index(0, FileTableModel::Include), Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_EQ(column(FileTableModel::New), QStringList({"a.txt", "1-b.txt", "2-c.txt"}));
    EXPECT_NO_SURPRISES();
}

TEST(MainWindow, FilesDroppedOnTheWindowAreListed)
{
    TemporaryFolder folder;
    makeFiles(folder.path(), {"one.txt", "two.txt", "three.txt"});
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(folder.path() + QStringLiteral("/one.txt")),
                  QUrl::fromLocalFile(folder.path() + QStringLiteral("/three.txt"))});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(application->window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(application->window(), &drop);
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(column(FileTableModel::Original), QStringList({"one.txt", "three.txt"}));
    EXPECT_EQ(control<QLineEdit>("source_folder")->text(), folder.path() + u'/');

    // Renamed, the dropped files are listed again under their new names.
    control<QLineEdit>("prefix")->setText(QStringLiteral("x-"));
    QTest::mouseClick(control<QAbstractButton>("rename"), Qt::LeftButton);
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(namesIn(folder.path()), QStringList({"two.txt", "x-one.txt", "x-three.txt"}));
    EXPECT_EQ(column(FileTableModel::Original), QStringList({"x-one.txt", "x-three.txt"}));
}

// Input that arrives while a long pass lets events through (here a listing)
// changes nothing and starts nothing; afterwards the window is as it was.
TEST(MainWindow, NothingStartsOrChangesInsideALongPass)
{
    TemporaryFolder folder;
    makeFiles(folder.path(), numberedNames(QStringLiteral("IMG_%1.jpg"), 0, 299));
    auto *prefix = control<QLineEdit>("prefix");
    prefix->setText(QStringLiteral("Trip "));
    prefix->setFocus();
    auto *update = control<QAbstractButton>("update");
    update->setEnabled(true);
    QCoreApplication::postEvent(prefix, new QKeyEvent(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x")));
    QCoreApplication::postEvent(prefix, new QKeyEvent(QEvent::KeyRelease, Qt::Key_X, Qt::NoModifier, QStringLiteral("x")));
    const QPointF middle = QRectF(update->rect()).center();
    QCoreApplication::postEvent(update, new QMouseEvent(QEvent::MouseButtonPress, middle, update->mapToGlobal(middle),
                                                        Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    QCoreApplication::postEvent(update, new QMouseEvent(QEvent::MouseButtonRelease, middle, update->mapToGlobal(middle),
                                                        Qt::LeftButton, Qt::NoButton, Qt::NoModifier));
    QCoreApplication::postEvent(application->window(), new QKeyEvent(QEvent::ShortcutOverride, Qt::Key_R, Qt::ControlModifier));
    QStringList started;
    const auto watch = QObject::connect(&application->mainWindow(), &MainWindowController::scriptEvent, [&](const QString &handler, const QVariant &what) {
        if (handler != QLatin1String("previewed"))
            started.append(handler + u' ' + what.toString());
    });
    control<QLineEdit>("source_folder")->setText(folder.path());
    script->handle(QStringLiteral("clicked"), QStringLiteral("source_folder"));
    QObject::disconnect(watch);
    EXPECT_NO_SURPRISES();
    EXPECT_EQ(application->fileTableDataSource().rowCount(), 300);
    EXPECT_EQ(prefix->text(), "Trip ") << "the keystroke came during the listing";
    EXPECT_TRUE(started.isEmpty()) << started.join(u',').toStdString();
    EXPECT_TRUE(prefix->isEnabled() && update->isEnabled() && control<QAbstractButton>("rename")->isEnabled());
    EXPECT_TRUE(application->window()->findChild<QAction *>(QStringLiteral("action_rename"))->isEnabled());
    EXPECT_EQ(QApplication::focusWidget(), prefix);
    prefix->clear();
}

TEST(MainWindow, ANewNameWithASlashIsAConflictAndAHiddenOneAWarning)
{
    TemporaryFolder folder;
    makeFiles(folder.path(), {"a.jpg", "b.jpg"});
    control<QLineEdit>("source_folder")->setText(folder.path());
    script->handle(QStringLiteral("clicked"), QStringLiteral("source_folder"));
    auto *prefix = control<QLineEdit>("prefix");
    prefix->clear();
    QTest::keyClicks(prefix, QStringLiteral("../up_"));
    const FileTableModel &table = application->fileTableDataSource();
    ASSERT_TRUE(waitFor([&] { return !table.conflictAt(1).isEmpty(); }));
    EXPECT_EQ(table.conflictAt(0), "the new name \"../up_a.jpg\" holds \"/\"");
    EXPECT_EQ(table.data(table.index(0, FileTableModel::New), Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
    screenshot(QStringLiteral("main-window-slash-conflict.png"));
    prefix->clear();
    QTest::keyClicks(prefix, QStringLiteral("."));
    ASSERT_TRUE(waitFor([&] { return table.conflictAt(1).isEmpty() && !table.warningAt(1).isEmpty(); }));
    EXPECT_EQ(table.data(table.index(1, FileTableModel::New), Qt::ToolTipRole).toString(),
              "the new name starts with \".\": the item will be hidden\n.b.jpg");
    screenshot(QStringLiteral("main-window-hidden-warning.png"));
    prefix->clear();
    EXPECT_NO_SURPRISES();
}

TEST(MainWindow, ABatchCutShortIsOfferedForRollBackAtTheNextStart)
{
    TemporaryFolder folder;
    makeFiles(folder.path(), {"1.txt", "2.txt", "3.txt", "4.txt"});
    // Stopped after two moves, as Ctrl-C in the command line stops it.
    class StopAfterTwo : public BatchObserver {
    public:
        int at(BatchPoint point, size_t index, const QString &) override
        {
            if (point == BatchPoint::Moved && index == 1)
                stop.store(true);
            return 0;
        }
        std::atomic<bool> stop{false};
    } stopper;
    SafeMover crashing(home->path() + QStringLiteral("/data/nomen"));
    crashing.observer = &stopper;
    crashing.interruption = &stopper.stop;
    std::vector<SafeMover::Move> moves;
    for (const QString name : {"1", "2", "3", "4"})
        moves.push_back({folder.path() + u'/' + name + QStringLiteral(".txt"), folder.path() + u'/' + name + QStringLiteral(".moved")});
    ASSERT_TRUE(crashing.apply(moves).interrupted);
    ASSERT_EQ(namesIn(folder.path()).filter(QStringLiteral(".moved")).size(), 2);

    answerNextQuestion(QStringLiteral("Roll Back"));
    script->handle(QStringLiteral("launched"), QStringList{folder.path()});
    EXPECT_NO_SURPRISES();
    EXPECT_TRUE(pendingAnswer.isEmpty()) << "the question was asked";
    EXPECT_EQ(namesIn(folder.path()), QStringList({"1.txt", "2.txt", "3.txt", "4.txt"}));
    EXPECT_EQ(application->fileTableDataSource().rowCount(), 4);
}

TEST(MainWindow, TheRuleIsRememberedBetweenRuns)
{
    control<QLineEdit>("suffix")->setText(QStringLiteral(" «YYYY-MM-DD»"));
    control<QAbstractButton>("descend")->setChecked(true);
    script->handle(QStringLiteral("willQuit"));
    control<QLineEdit>("suffix")->setText(QString());
    control<QAbstractButton>("descend")->setChecked(false);

    script->host().engine().evaluate(QStringLiteral("callMethod(application, 'restoreInterfaceState', [])"));
    EXPECT_EQ(control<QLineEdit>("suffix")->text(), " «YYYY-MM-DD»");
    EXPECT_TRUE(control<QAbstractButton>("descend")->isChecked());
    EXPECT_TRUE(QFile::exists(home->path() + QStringLiteral("/config/Nomen/Nomen.conf")));
}

TEST(MainWindow, TheWindowHasItsIconAndMenusTheUsualShortcuts)
{
    EXPECT_FALSE(application->window()->windowIcon().pixmap(32, 32).isNull());
    QStringList shortcuts;
    for (const char *name : {"action_open", "action_undo", "action_quit", "action_save_rule"})
        shortcuts.append(application->window()->findChild<QAction *>(QString::fromLatin1(name))->shortcut().toString());
    EXPECT_EQ(shortcuts, QStringList({"Ctrl+O", "Ctrl+Z", "Ctrl+Q", "Ctrl+S"}));
}

} // namespace

int main(int argc, char **argv)
{
    // A private home for the remembered rule and the journal.
    TemporaryFolder privateHome;
    home = &privateHome;
    const QByteArray homePath = PathCodec::encode(privateHome.path());
    qputenv("XDG_CONFIG_HOME", homePath + "/config");
    qputenv("XDG_DATA_HOME", homePath + "/data");
    qputenv("XDG_CACHE_HOME", homePath + "/cache");
    RZApplication app(argc, argv);
    application = &app;
    const MethodRegistry methods = buildMethodTable();
    app.init(methods);
    MainScript mainScript(app, methods);
    if (!mainScript.load(RZApplication::resourceDirectory() + QStringLiteral("/main.js")))
        return 1;
    script = &mainScript;
    QTimer dialogWatch;
    QObject::connect(&dialogWatch, &QTimer::timeout, &watchDialogs);
    dialogWatch.start(50);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
