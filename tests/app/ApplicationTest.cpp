#include "DefaultsBindings.h"
#include "MethodTable.h"
#include "PathCodec.h"
#include "NamedException.h"
#include "RZApplication.h"
#include "ScriptRequests.h"
#include "RuleForm.h"
#include "TestPrinting.h"
#include "UserDefaults.h"

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QSignalSpy>
#include "TemporaryFolder.h"
#include <QTimer>
#include <cstdio>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <gtest/gtest.h>

namespace {

RZApplication &app()
{
    return *RZApplication::instance();
}

template <typename T>
T *control(const char *name)
{
    auto *widget = qobject_cast<T *>(app().outlet(QString::fromLatin1(name)));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

void choose(const char *matrix, int cell)
{
    control<QRadioButton>(QStringLiteral("%1_%2").arg(QLatin1String(matrix)).arg(cell).toLatin1().constData())->setChecked(true);
}

// Typing as a person does, one key at a time.
void type(QLineEdit *field, const QString &text)
{
    for (QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(field, &press);
    }
}

TEST(Outlets, EveryRuleControlIsConnected)
{
    for (const char *name : {"prefix", "prefix_start_num", "prefix_ai_counter", "prefix_add_leading_zeros",
                             "prefix_add_leading_zeros_min", "prefix_date_to_use", "inc_original_name", "search_1",
                             "replace_1", "snr_type_1", "snr_consider_case_1", "trim_start", "trim_end", "change_case",
                             "the_case", "orig_strip_diacriticals", "suffix", "suffix_start_num", "suffix_ai_counter",
                             "suffix_add_leading_zeros", "suffix_add_leading_zeros_min", "suffix_date_to_use",
                             "extension_matrix", "extension", "extension_popup", "ext_case", "preview_name", "update",
                             "rename", "source_folder", "fileTable", "theIndicator", "progress_label",
                             "progress_label_super", "stop_progress", "update_preview"})
        EXPECT_NE(app().outlet(QString::fromLatin1(name)), nullptr) << name;
    EXPECT_EQ(app().outlet(QStringLiteral("no_such_control")), nullptr);
}

TEST(Outlets, TheRuleIsReadFromTheControls)
{
    control<QLineEdit>("prefix")->setText("IMG_«#»");
    control<QLineEdit>("prefix_start_num")->setText(" 7x");
    control<QLineEdit>("prefix_ai_counter")->setText("");
    control<QLineEdit>("search_1")->setText("a");
    choose("snr_type_1", 1);
    control<QComboBox>("the_case")->setCurrentText("Title Case");
    control<QCheckBox>("change_case")->setChecked(true);
    choose("extension_matrix", 1);
    control<QLineEdit>("extension")->setText("jpg");
    app().mainWindow().getConstantData();
    const RenameRule &rule = app().engine().rule();
    EXPECT_EQ(rule.prefix.text, QStringLiteral("IMG_«#»"));
    EXPECT_EQ(rule.prefix.start, 7);
    EXPECT_EQ(rule.prefix.step, 0) << "a blank field reads as 0";
    EXPECT_EQ(rule.searchKind, RenameRule::Search::Grep);
    EXPECT_EQ(rule.nameCase, RenameRule::Case::Title);
    EXPECT_EQ(rule.newExtension, QStringLiteral(".jpg")) << "a full stop is added";

    control<QLineEdit>("extension")->setText(".tiff");
    app().mainWindow().getConstantData();
    EXPECT_EQ(app().engine().rule().newExtension, QStringLiteral(".tiff")) << "kept as typed";
    control<QLineEdit>("extension")->setText("");
    app().mainWindow().getConstantData();
    EXPECT_EQ(app().engine().rule().newExtension, QString()) << "a blank new extension drops the extension";

    choose("extension_matrix", 2);
    control<QComboBox>("extension_popup")->setCurrentText("png");
    app().mainWindow().getConstantData();
    EXPECT_EQ(app().engine().rule().newExtension, QStringLiteral(".png"));
    control<QCheckBox>("change_case")->setChecked(false);
    control<QLineEdit>("prefix")->setText("");
}

TEST(Preview, ADisconnectedLeadingZerosControlLeavesCountersUnpadded)
{
    delete app().outlet(QStringLiteral("prefix_add_leading_zeros"));
    app().engine().useRule(ScriptRequests::ruleFromSettings({"«#»", 3, 1, false, 0, false, "", "", "literal", false, 0, 0,
                                                              false, "", false, "", 0, 0, false, 0, "", false, false, ""}));
    EXPECT_EQ(app().mainWindow().generateNewName({"a.jpg", 100, false, "", {}, {}}), QStringLiteral("3.jpg"));
}

TEST(Progress, ScreenUpdatesAreThinnedByTheMaximum)
{
    QLabel *lower = control<QLabel>("progress_label");
    QProgressBar *bar = control<QProgressBar>("theIndicator");
    app().progress().stopIndeterminate(201);
    EXPECT_EQ(bar->maximum(), 201);
    QStringList shown;
    for (int n = 1; n <= 201; ++n) {
        app().progress().update(n, 201, "upper", QString::number(n));
        if (!shown.contains(lower->text()))
            shown.append(lower->text());
    }
    EXPECT_EQ(shown.mid(1), QStringList({"25", "50", "75", "100", "125", "150", "175", "200"}));
    EXPECT_EQ(bar->value(), 200) << "the last value is skipped like the others";
    app().progress().update(7, 50, "upper", "7");
    EXPECT_EQ(lower->text(), QStringLiteral("7")) << "small passes show every step";
    app().progress().update(15, 100, "upper", "15");
    EXPECT_EQ(lower->text(), QStringLiteral("7"));
    app().progress().update(20, 100, "upper", "20");
    EXPECT_EQ(lower->text(), QStringLiteral("20"));
}

TEST(Progress, TheStopButtonEndsAListingWhileItRuns)
{
    TemporaryFolder dir;
    for (int i = 0; i < 3000; ++i)
        QFile(dir.filePath(QStringLiteral("f%1.txt").arg(i))).open(QIODevice::WriteOnly);
    QStringList paths;
    for (int i = 0; i < 3000; ++i)
        paths.append(dir.filePath(QStringLiteral("f%1.txt").arg(i)));
    // The click arrives through the event loop, which the listing keeps running.
    QTimer::singleShot(0, [] { control<QPushButton>("stop_progress")->click(); });
    ListingRequest request;
    request.paths = paths;
    request.honourStop = true;
    request.root = dir.path();
    EXPECT_TRUE(app().mainWindow().list(request).stopped);
    EXPECT_TRUE(app().engine().stop.load()) << "set back for the next listing";
}

TEST(Progress, AListingGoesStraightIntoTheTableInNaturalOrderAndSaysWhenStopped)
{
    TemporaryFolder dir;
    for (const char *name : {"IMG_10.jpg", "IMG_9.jpg", "img_100.jpg"})
        QFile(dir.filePath(QString::fromLatin1(name))).open(QIODevice::WriteOnly);
    ListingRequest request;
    request.paths = {dir.path()};
    request.honourStop = true;
    request.root = dir.path();
    EXPECT_FALSE(app().mainWindow().listIntoTable(request));
    QStringList names;
    for (const ItemRecord &row : app().fileTableDataSource().rows())
        names.append(row.name);
    EXPECT_EQ(names, QStringList({"IMG_9.jpg", "IMG_10.jpg", "img_100.jpg"}));
    QTimer::singleShot(0, [] { control<QPushButton>("stop_progress")->click(); });
    EXPECT_TRUE(app().mainWindow().listIntoTable(request)) << "stopped";
    app().fileTableDataSource().setRows({});
}

TEST(Preview, TheWholeTableFollowsTheRules)
{
    std::vector<ItemRecord> rows(10000);
    for (int i = 0; i < 10000; ++i) {
        rows[size_t(i)].name = QStringLiteral("img_%1 crème.JPG").arg(i);
        rows[size_t(i)].location = QStringLiteral("/photos/");
    }
    app().fileTableDataSource().setRows(rows);
    // The suffix counter: an earlier test took the prefix's zeros control away.
    control<QLineEdit>("prefix")->setText("");
    control<QLineEdit>("suffix")->setText("_«#»");
    control<QLineEdit>("suffix_start_num")->setText("1");
    control<QLineEdit>("suffix_ai_counter")->setText("1");
    control<QCheckBox>("change_case")->setChecked(true);
    control<QComboBox>("the_case")->setCurrentText("Title Case");
    control<QCheckBox>("orig_strip_diacriticals")->setChecked(true);
    type(control<QLineEdit>("prefix"), "P ");
    EXPECT_FALSE(app().mainWindow().preview().lastInBackground);
    EXPECT_EQ(control<QLineEdit>("preview_name")->text(), QStringLiteral("P Img_0 Creme_00001.JPG")) << "the first row";
    const FileTableModel &table = app().fileTableDataSource();
    EXPECT_EQ(table.valueForColumn("new", 0), QVariant(QStringLiteral("P Img_0 Creme_00001.JPG")));
    EXPECT_EQ(table.valueForColumn("new", 9999), QVariant(QStringLiteral("P Img_9999 Creme_10000.JPG")));
    std::printf("[ figures  ] full-table preview of 10,000 rows, first keystroke: %lld ms\n", (long long)app().mainWindow().preview().lastMs);
    type(control<QLineEdit>("prefix"), "x");
    std::printf("[ figures  ] full-table preview of 10,000 rows, next keystroke: %lld ms\n", (long long)app().mainWindow().preview().lastMs);
    EXPECT_EQ(table.valueForColumn("new", 9999), QVariant(QStringLiteral("P xImg_9999 Creme_10000.JPG")));
    control<QLineEdit>("prefix")->setText("P ");
    EXPECT_EQ(app().engine().composer.duplicate_check_list.toList(), QStringList()) << "the engine's own list is untouched";

    // Beyond the immediate size the table is worked out aside.
    app().mainWindow().preview().immediateRows = 100;
    QSignalSpy applied(&app().mainWindow(), &MainWindowController::tablePreviewApplied);
    type(control<QLineEdit>("prefix"), "x");
    EXPECT_TRUE(app().mainWindow().preview().lastInBackground);
    ASSERT_TRUE(applied.wait(10000));
    EXPECT_EQ(table.valueForColumn("new", 1), QVariant(QStringLiteral("P xImg_1 Creme_00002.JPG")));
    app().mainWindow().preview().immediateRows = 10000;
    app().fileTableDataSource().setRows({});
    control<QLineEdit>("prefix")->setText("");
    control<QLineEdit>("suffix")->setText("");
    control<QCheckBox>("change_case")->setChecked(false);
    control<QCheckBox>("orig_strip_diacriticals")->setChecked(false);
}

// The table preview and the batch pass are one pass: for each rule, the
// names the window shows are the names a rename gives.
TEST(Preview, ThePreviewShowsTheNamesTheBatchPassGives)
{
    std::vector<ItemRecord> rows;
    const char *names[] = {"IMG_2.jpg", "IMG_10.jpg", "skip me.jpg", "IMG_2.png", "notes.txt", "IMG_2.jpg"};
    for (size_t i = 0; i < std::size(names); ++i) {
        ItemRecord row;
        row.name = QString::fromLatin1(names[i]);
        row.location = i < 5 ? QStringLiteral("/trip/") : QStringLiteral("/trip/beach/");
        row.include = i != 2;
        row.created = QDateTime(QDate(2001, 2, 3 + int(i)), QTime(4, 5)).toMSecsSinceEpoch();
        row.modified = row.created;
        row.size = 1;
        rows.push_back(row);
    }
    struct Rule {
        const char *name;
        std::function<void()> set;
    };
    const auto text = [](const char *outlet, const char *value) { control<QLineEdit>(outlet)->setText(QString::fromUtf8(value)); };
    const Rule rules[] = {
        {"counters", [&] { text("prefix", "«#»_"); text("suffix", "_«#»"); }},
        {"one name for all: duplicates numbered", [&] { control<QCheckBox>("inc_original_name")->setChecked(false); text("prefix", "same"); }},
        {"creation dates", [&] { text("prefix", "«YYYY-MM-DD» "); control<QComboBox>("prefix_date_to_use")->setCurrentIndex(1); }},
        {"GREP", [&] { text("search_1", "IMG_(\\d+)"); text("replace_1", "shot $1"); choose("snr_type_1", 1); }},
        {"case and accents", [&] { control<QCheckBox>("change_case")->setChecked(true); text("suffix", " «#» Été"); }},
    };
    for (const Rule &rule : rules) {
        app().fileTableDataSource().setRows(rows);
        rule.set();
        QSignalSpy applied(&app().mainWindow(), &MainWindowController::tablePreviewApplied);
        app().mainWindow().refreshPreview();
        ASSERT_TRUE(!applied.isEmpty() || applied.wait(10000)) << rule.name;
        const QStringList previewed = app().fileTableDataSource().previewedNames();
        app().mainWindow().getConstantData();
        const auto batch = app().mainWindow().makeReplacementNames(ScriptRequests::batchRequest(
            {"files", QDateTime::currentDateTime(), "Working", "%d of %d %@", RuleForm::rule(app().form()).prefix.date,
             RuleForm::rule(app().form()).suffix.date, qint32(rows.size()), false}));
        QStringList given;
        for (const ItemRecord &record : batch)
            given.append(record.newName);
        EXPECT_EQ(previewed, given) << rule.name;
        EXPECT_EQ(given[2], "skip me.jpg") << rule.name << ": an excluded row keeps its name";
    }
    for (const char *field : {"prefix", "suffix", "search_1", "replace_1"})
        text(field, "");
    control<QCheckBox>("inc_original_name")->setChecked(true);
    control<QCheckBox>("change_case")->setChecked(false);
    control<QComboBox>("prefix_date_to_use")->setCurrentIndex(0);
    choose("snr_type_1", 0);
    app().fileTableDataSource().setRows({});
}

TEST(Batch, ARequestForMoreRowsThanTheTableHoldsIsRefused)
{
    app().fileTableDataSource().setRows(std::vector<ItemRecord>(2));
    ScriptRequests::BatchRequest request;
    request.rowCount = 3;
    EXPECT_THROW(app().mainWindow().makeReplacementNames(request), NamedException);
    request.rowCount = 1;
    EXPECT_EQ(app().mainWindow().makeReplacementNames(request).size(), 1) << "fewer is a part of the table";
    app().fileTableDataSource().setRows({});
}

// Controls bound to a default show it on loading, write back what the user
// puts in, and follow updateValue:forKey: at once; the program's own
// changes are not written back.
TEST(Defaults, BoundControlsFollowTheirKeyBothWays)
{
    UserDefaults::writeDefault("stored", "greeting");
    UserDefaults::writeDefault(true, "flag");
    QWidget window;
    auto *field = new QLineEdit(&window);
    auto *mirror = new QLineEdit(&window);
    auto *box = new QCheckBox(&window);
    auto *popup = new QComboBox(&window);
    auto *loose = new QLineEdit(&window);
    popup->addItems({"one", "two", "three"});
    for (QWidget *bound : {static_cast<QWidget *>(field), static_cast<QWidget *>(mirror)})
        bound->setProperty(DefaultsBindings::KeyProperty, "greeting");
    box->setProperty(DefaultsBindings::KeyProperty, "flag");
    popup->setProperty(DefaultsBindings::KeyProperty, "choice");
    DefaultsBindings::bind(&window);
    EXPECT_EQ(field->text(), "stored");
    EXPECT_EQ(mirror->text(), "stored");
    EXPECT_TRUE(box->isChecked());

    type(field, "!");
    EXPECT_EQ(UserDefaults::readDefault("greeting"), QVariant("stored!"));
    box->click();
    EXPECT_EQ(UserDefaults::readDefault("flag"), QVariant(false));
    popup->setCurrentIndex(1);
    EXPECT_FALSE(UserDefaults::defaultExists("choice")) << "a change the program makes is not the user's";
    emit popup->activated(2);
    popup->setCurrentIndex(2);
    emit popup->activated(2);
    EXPECT_EQ(UserDefaults::readDefault("choice"), QVariant("three"));

    DefaultsBindings::updateValue(&window, "from script", "greeting");
    EXPECT_EQ(field->text(), "from script");
    EXPECT_EQ(mirror->text(), "from script");
    EXPECT_EQ(loose->text(), "");
    EXPECT_EQ(UserDefaults::readDefault("greeting"), QVariant("from script"));
    DefaultsBindings::updateValue(&window, "two", "choice");
    EXPECT_EQ(popup->currentIndex(), 1);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The user's own settings are never read or written by the tests.
    TemporaryFolder configuration;
    qputenv("XDG_CONFIG_HOME", PathCodec::encode(configuration.path()));
    qputenv("LANG", "en_US.UTF-8");
    RZApplication application(argc, argv);
    const MethodRegistry methods = buildMethodTable();
    application.init(methods);
    testing::InitGoogleTest(&argc, argv);
    const int failed = RUN_ALL_TESTS();
    UserDefaults::synchronizeDefaults(); // while the folder is there
    return failed;
}
