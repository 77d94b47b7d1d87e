// Menus, windows loaded from an interface file, and the custom window's keys
// and fades, on Qt's offscreen platform.

#include "BackgroundView.h"
#include "BusyIndicator.h"
#include "CustomWindow.h"
#include "GuiWaiting.h"
#include "InterfaceFile.h"
#include "Menus.h"
#include "NamedException.h"
#include "TestPrinting.h"
#include "TextViews.h"
#include "UserInput.h"

#include <QApplication>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QLineEdit>
#include <QComboBox>
#include <QCheckBox>
#include <QScrollBar>
#include <QTextBlock>
#include "TemporaryFolder.h"
#include <QWindow>
#include <gtest/gtest.h>

namespace {

QStringList titles(const QMenu &menu)
{
    QStringList list;
    for (const QAction *item : menu.actions())
        list.append(item->isSeparator() ? QStringLiteral("-") : item->text());
    return list;
}

TEST(Menus, InsertAtAnIndexOrTheEndAndRefuseOtherIndexes)
{
    QMenu menu;
    Menus::insertSeparator(&menu, -1);
    EXPECT_EQ(titles(menu), QStringList{"-"});
    Menus::insertItem(&menu, "last", -1, true);
    Menus::insertItem(&menu, "first", 0, false);
    Menus::insertItem(&menu, "end", 3, true);
    EXPECT_EQ(titles(menu), (QStringList{"first", "-", "last", "end"}));
    EXPECT_FALSE(menu.actions()[0]->isEnabled());
    EXPECT_TRUE(menu.actions()[0]->shortcut().isEmpty());
    for (const int index : {5, -2}) {
        try {
            Menus::insertItem(&menu, "stray", index, true);
            ADD_FAILURE() << "index " << index << " was taken";
        } catch (const NamedException &error) {
            EXPECT_EQ(error.name(), NSRangeException);
        }
    }
    EXPECT_EQ(menu.actions().size(), 4);
}

TEST(Menus, EmptySubmenusDepthFirst)
{
    QMenu top;
    QMenu *sub = top.addMenu(QStringLiteral("sub"));
    QMenu *subsub = sub->addMenu(QStringLiteral("subsub"));
    Menus::insertItem(&top, "a", -1, true);
    Menus::insertItem(sub, "b", -1, true);
    Menus::insertSeparator(sub, 0);
    Menus::insertItem(subsub, "c", -1, true, QIcon(QPixmap(16, 16)));
    Menus::removeMenuItems(&top, true);
    EXPECT_TRUE(top.actions().isEmpty());
    EXPECT_TRUE(sub->actions().isEmpty());
    EXPECT_TRUE(subsub->actions().isEmpty());
}

TEST(InterfaceFiles, MakePromotedWindowsAndViewsAndWakeThemWithTheFileSizes)
{
    TemporaryFolder dir;
    const QString path = dir.filePath(QStringLiteral("panel.ui"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"(<ui version="4.0"><class>Panel</class>
<widget class="ROZ_CustomWindow" name="panel">
 <property name="geometry"><rect><x>0</x><y>0</y><width>300</width><height>200</height></rect></property>
 <property name="minimumSize"><size><width>200</width><height>122</height></size></property>
 <property name="maximumSize"><size><width>600</width><height>400</height></size></property>
 <widget class="ROZ_BackgroundView" name="plain"/>
 <widget class="ROZ_BackgroundView" name="steel"><property name="tag"><number>1</number></property></widget>
 <widget class="ROZ_BackgroundView" name="odd"><property name="tag"><number>7</number></property></widget>
</widget>
<customwidgets>
 <customwidget><class>ROZ_CustomWindow</class><extends>QWidget</extends><header>CustomWindow.h</header></customwidget>
 <customwidget><class>ROZ_BackgroundView</class><extends>QLabel</extends><header>BackgroundView.h</header></customwidget>
</customwidgets></ui>)");
    file.close();
    const InterfaceFile form(path);
    auto *window = qobject_cast<CustomWindow *>(form.window());
    ASSERT_TRUE(window);
    EXPECT_EQ(window->minHeight(), 100);
    EXPECT_EQ(window->maxHeight(), 400);
    EXPECT_EQ(window->minWidth(), 200);
    EXPECT_EQ(window->maxWidth(), 600);
    // Only the window's own limits hold: the file's sizes no longer do.
    EXPECT_EQ(window->minimumSize(), QSize(0, 0));
    const QStringList expected{"grey_05", "gbg_steele_05", "grey_05"};
    const QStringList names{"plain", "steel", "odd"};
    for (int i = 0; i < 3; ++i) {
        const auto *view = form.control<BackgroundView>(names[i]);
        ASSERT_TRUE(view) << names[i].toStdString();
        EXPECT_EQ(view->imageName(), expected[i]);
        EXPECT_EQ(view->pixmap().size(), QSize(128, 128)) << "texture not loaded for " << names[i].toStdString();
        EXPECT_TRUE(view->hasScaledContents());
    }
}

struct KeyedWindow {
    CustomWindow window;
    QPushButton *ok = new QPushButton(QStringLiteral("OK"), &window);
    QPushButton *cancel = new QPushButton(QStringLiteral("Cancel"), &window);
    int oks = 0, cancels = 0;

    KeyedWindow()
    {
        QObject::connect(ok, &QPushButton::clicked, [this] { ++oks; });
        QObject::connect(cancel, &QPushButton::clicked, [this] { ++cancels; });
        window.setDefaultObject(ok);
        window.setCancelObject(cancel);
    }
    // Whether the window kept the key from going further.
    bool press(int key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, key == Qt::Key_A ? QStringLiteral("a") : QString());
        QCoreApplication::sendEvent(&window, &event);
        return event.isAccepted();
    }
};

// Records as scripts write them: numbers and booleans, or text.
TEST(KeyStrokeRecords, ReadNumbersBooleansAndText)
{
    using UserInput::KeyStroke;
    const KeyStroke script = KeyStroke::fromRecord({{"key_code", 36.0}, {"shift_down", true}, {"option_down", 1}});
    EXPECT_EQ(script.keyCode, 36);
    EXPECT_TRUE(script.shift && script.option);
    EXPECT_FALSE(script.command || script.control) << "a missing flag is NO";
    const KeyStroke text = KeyStroke::fromRecord({{"key_code", "6"}, {"control_down", "YES"}});
    EXPECT_EQ(text.keyCode, 6);
    EXPECT_TRUE(text.control);
}

TEST(CustomWindowKeys, ClickTheDefaultAndCancelControlsAndSwallowTheKeyWhenDisabled)
{
    KeyedWindow keyed;
    EXPECT_TRUE(keyed.press(Qt::Key_Return));
    EXPECT_TRUE(keyed.press(Qt::Key_Enter));
    EXPECT_TRUE(keyed.press(Qt::Key_Escape));
    EXPECT_EQ(keyed.oks, 2);
    EXPECT_EQ(keyed.cancels, 1);
    keyed.cancel->setEnabled(false);
    keyed.ok->setEnabled(false);
    EXPECT_TRUE(keyed.press(Qt::Key_Escape));
    EXPECT_TRUE(keyed.press(Qt::Key_Return));
    EXPECT_EQ(keyed.oks, 2);
    EXPECT_EQ(keyed.cancels, 1);
    EXPECT_FALSE(keyed.press(Qt::Key_A)) << "other keys go on to the window's parent";

    // Any control that can be clicked: a text field's action, a check box, a popup.
    auto *field = new QLineEdit(&keyed.window);
    auto *box = new QCheckBox(&keyed.window);
    auto *popup = new QComboBox(&keyed.window);
    popup->addItems({QStringLiteral("a"), QStringLiteral("b")});
    int sent = 0, chosen = 0;
    QObject::connect(field, &QLineEdit::returnPressed, [&sent] { ++sent; });
    QObject::connect(popup, &QComboBox::activated, [&chosen](int index) { chosen += index + 1; });
    keyed.window.setDefaultObject(field);
    keyed.window.setCancelObject(box);
    EXPECT_TRUE(keyed.press(Qt::Key_Return));
    EXPECT_TRUE(keyed.press(Qt::Key_Escape));
    EXPECT_EQ(sent, 1);
    EXPECT_TRUE(box->isChecked());
    popup->setCurrentIndex(1);
    keyed.window.setDefaultObject(popup);
    EXPECT_TRUE(keyed.press(Qt::Key_Return));
    EXPECT_EQ(chosen, 2);
}

class Controller : public QObject {
    Q_OBJECT
public:
    int releases = 0;
    Q_INVOKABLE void closeAndRelease() { ++releases; }
};

// The alpha values the screen was given, in order.
QList<double> recordOpacity(CustomWindow &window, const std::function<void()> &action,
                            const std::function<bool()> &done)
{
    QList<double> seen;
    window.show();
    const auto connection = QObject::connect(window.windowHandle(), &QWindow::opacityChanged,
                                             [&seen](qreal opacity) { seen.append(opacity); });
    action();
    EXPECT_TRUE(waitFor(done, 3000));
    QObject::disconnect(connection);
    return seen;
}

void expectSteps(const QList<double> &seen, const QList<double> &expected)
{
    ASSERT_EQ(seen.size(), expected.size()) << ::testing::PrintToString(seen);
    for (qsizetype i = 0; i < seen.size(); ++i)
        EXPECT_NEAR(seen[i], expected[i], 1e-6) << "step " << i;
}

TEST(CustomWindowFades, TakeFiveStepsAndHandTheWindowToItsController)
{
    CustomWindow window;
    Controller controller;
    window.setWindowController(&controller);
    expectSteps(recordOpacity(window, [&] { window.openWithFade(); }, [&] { return !window.isFading(); }),
                {0.0, 0.2, 0.4, 0.6, 0.8, 1.0});
    expectSteps(recordOpacity(window, [&] { window.close(); }, [&] { return !window.isVisible(); }),
                {0.8, 0.6, 0.4, 0.2, 0.0, 1.0});
    EXPECT_EQ(controller.releases, 1);

    window.setUseFade(false);
    window.show();
    window.close();
    EXPECT_FALSE(window.isVisible()) << "without a fade the window goes at once";
    EXPECT_EQ(controller.releases, 2);
}

TEST(LogViews, AppendLinesInTheFixedFontWhenAskedAndShowTheEnd)
{
    QPlainTextEdit view;
    view.resize(300, 80);
    view.show();
    TextViews::logEntry(&view, QStringLiteral("plain"), false);
    for (int i = 0; i < 40; ++i)
        TextViews::logEntry(&view, QStringLiteral("line %1").arg(i), true);
    EXPECT_TRUE(view.toPlainText().startsWith(QLatin1String("plain\nline 0\nline 1\n")));
    EXPECT_TRUE(view.toPlainText().endsWith(QLatin1String("line 39\n")));
    const QTextBlock first = view.document()->firstBlock();
    const QFont fixed = first.next().begin().fragment().charFormat().font();
    EXPECT_NE(first.begin().fragment().charFormat().font().family(), fixed.family());
    EXPECT_EQ(fixed.family(), QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
    EXPECT_EQ(fixed.pointSize(), 11);
    QCoreApplication::processEvents();
    EXPECT_GT(view.verticalScrollBar()->value(), 0) << "did not scroll";
    QTextCursor end(view.document());
    end.movePosition(QTextCursor::End);
    EXPECT_TRUE(view.viewport()->rect().contains(view.cursorRect(end))) << "the end is out of view";
}

TEST(BusyIndicators, SpinInsideTheirSmallView)
{
    std::unique_ptr<QWidget> view(BusyIndicator::makeAccessory());
    EXPECT_EQ(view->size(), QSize(18, 22));
    const auto *indicator = view->findChild<BusyIndicator *>();
    ASSERT_TRUE(indicator);
    EXPECT_EQ(indicator->geometry(), QRect(0, 4, 16, 16));
    const int start = indicator->step();
    EXPECT_TRUE(waitFor([&] { return indicator->step() != start; }, 1000)) << "not animating";
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // User defaults the tests write stay in a folder of their own.
    TemporaryFolder config;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(config.path()));
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

#include "WindowPartsTest.moc"
