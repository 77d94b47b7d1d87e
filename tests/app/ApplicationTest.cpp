#include "MethodTable.h"
#include "RZApplication.h"
#include "TestPrinting.h"

#include <QCheckBox>
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

TEST(Outlets, SettingsAreReadFromTheControls)
{
    control<QLineEdit>("prefix")->setText("IMG_«#»");
    control<QLineEdit>("prefix_start_num")->setText(" 7x");
    control<QLineEdit>("prefix_ai_counter")->setText("");
    control<QLineEdit>("search_1")->setText("a");
    choose("snr_type_1", 1);
    control<QComboBox>("the_case")->setCurrentText("Title Case");
    choose("extension_matrix", 1);
    control<QLineEdit>("extension")->setText("jpg");
    app().getConstantData();
    RenameSettings &s = app().engine().settings();
    EXPECT_EQ(s._prefix, QStringLiteral("IMG_«#»"));
    EXPECT_EQ(s._prefix_start_num, 7);
    EXPECT_EQ(s._prefix_ai_counter, 0) << "a blank field reads as 0";
    EXPECT_EQ(s._search_type_1, QStringLiteral("GREP"));
    EXPECT_EQ(s._case_transformation, QStringLiteral("Title Case"));
    EXPECT_EQ(s._extension, QStringLiteral(".jpg")) << "a full stop is added";
    EXPECT_TRUE(s._use_new_extension);

    control<QLineEdit>("extension")->setText(".tiff");
    app().getConstantData();
    EXPECT_EQ(s._extension, QStringLiteral(".tiff")) << "kept as typed";
    control<QLineEdit>("extension")->setText("");
    app().getConstantData();
    EXPECT_EQ(s._extension, QString());
    EXPECT_TRUE(s._use_new_extension) << "a blank new extension drops the extension";

    choose("extension_matrix", 2);
    control<QComboBox>("extension_popup")->setCurrentText("png");
    app().getConstantData();
    EXPECT_EQ(s._extension, QStringLiteral(".png"));
    choose("extension_matrix", 3);
    app().getConstantData();
    EXPECT_TRUE(s._ext_change_case);
    EXPECT_FALSE(s._use_new_extension);
    choose("extension_matrix", 0);
    choose("snr_type_1", 0);
    app().getConstantData();
    EXPECT_EQ(s._search_type_1, QStringLiteral("literal"));
    EXPECT_EQ(s._extension, QString());
}

TEST(Preview, UserEditsOfTheElevenFieldsRefreshIt)
{
    QLineEdit *prefix = control<QLineEdit>("prefix");
    QLineEdit *preview = control<QLineEdit>("preview_name");
    control<QLineEdit>("prefix_start_num")->setText("1");
    control<QLineEdit>("prefix_add_leading_zeros_min")->setText("0");
    control<QCheckBox>("inc_original_name")->setChecked(true);
    control<QLineEdit>("search_1")->setText("");
    control<QLineEdit>("source_folder")->setText("");
    prefix->setText("");
    preview->setText("unchanged");

    prefix->setText("X«#»_"); // set by the program: not an edit
    EXPECT_EQ(preview->text(), QStringLiteral("unchanged"));

    prefix->setText("");
    type(prefix, "«#»_");
    EXPECT_EQ(preview->text(), QStringLiteral("01_Sample Name.jpg")) << "an empty table counts as ten rows";
    EXPECT_FALSE(control<QPushButton>("rename")->isEnabled());
    EXPECT_FALSE(control<QPushButton>("update")->isEnabled()) << "no source folder";

    preview->setText("unchanged");
    type(control<QLineEdit>("prefix_ai_counter"), "5");
    EXPECT_EQ(preview->text(), QStringLiteral("unchanged")) << "the increment fields refresh nothing";

    control<QLineEdit>("source_folder")->setText("/tmp");
    app().engine().display_realtime_preview = false;
    type(prefix, "a");
    EXPECT_EQ(preview->text(), QStringLiteral("unchanged"));
    app().engine().display_realtime_preview = true;
    type(prefix, "b");
    EXPECT_EQ(preview->text(), QStringLiteral("01_abSample Name.jpg"));
    EXPECT_TRUE(control<QPushButton>("update")->isEnabled());
    prefix->setText("");
}

TEST(Preview, ADisconnectedLeadingZerosControlLeavesCountersUnpadded)
{
    delete app().outlet(QStringLiteral("prefix_add_leading_zeros"));
    app().setConstantData({"«#»", 3, 1, false, 0, false, "", "", "literal", false, 0, 0, false, "", false, "", 0, 0,
                           false, 0, "", false, false, ""});
    EXPECT_EQ(app().generateNewName({"a.jpg", 100, false, "", QVariant(), QVariant()}), QStringLiteral("3.jpg"));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LANG", "en_US.UTF-8");
    RZApplication application(argc, argv);
    const MethodRegistry methods = buildMethodTable();
    application.init(methods);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
