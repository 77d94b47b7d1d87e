// Input posted as the user's own reaches real windows of ours: typed keys
// with and without modifiers, in the order the strokes ask, and clicks at
// screen points.

#include "GuiWaiting.h"
#include "UserInput.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>
#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace {

using UserInput::KeyStroke;

// Shows the widget in a window of its own with the keyboard.
void showWithFocus(QWidget &window, QWidget &focus)
{
    window.show();
    window.activateWindow();
    focus.setFocus();
    ASSERT_TRUE(waitFor([&] { return window.isActiveWindow() && focus.hasFocus(); })) << "no keyboard focus";
}

TEST(TypedKeys, ArriveInATextFieldWithTheirModifiers)
{
    QWidget window;
    auto *field = new QLineEdit(&window);
    window.resize(300, 60);
    ASSERT_NO_FATAL_FAILURE(showWithFocus(window, *field));
    UserInput::type({{4, false, true}, {34}, {49}, {15, false, true}, {14}});
    EXPECT_TRUE(waitFor([&] { return field->text() == QLatin1String("Hi Re"); })) << field->text().toStdString();
    // Control+A selects everything, so the next key replaces it.
    UserInput::type({{0, false, false, false, true}, {7}});
    EXPECT_TRUE(waitFor([&] { return field->text() == QLatin1String("x"); })) << field->text().toStdString();
}

// A code names a place on the keyboard: on a German keyboard the key
// where a US one has Z types "y". A code no key has is refused, and
// nothing of the list is typed.
TEST(TypedKeys, AreTheKeysAtTheirPlacesWhateverTheLayout)
{
    QWidget window;
    auto *field = new QLineEdit(&window);
    window.resize(300, 60);
    ASSERT_NO_FATAL_FAILURE(showWithFocus(window, *field));
    ASSERT_EQ(QProcess::execute(QStringLiteral("setxkbmap"), {"de"}), 0);
    EXPECT_EQ(UserInput::type({{6}, {16}, {0}}), QString());
    EXPECT_TRUE(waitFor([&] { return field->text() == QLatin1String("yza"); })) << field->text().toStdString();
    EXPECT_EQ(UserInput::type({{0}, {52}}), QStringLiteral("no key has the virtual key code 52"));
    waitFor([] { return false; }, 100);
    EXPECT_EQ(field->text(), QStringLiteral("yza")) << "nothing of a refused list is typed";
    ASSERT_EQ(QProcess::execute(QStringLiteral("setxkbmap"), {"us"}), 0);
}

// Every key press and release the window gets, as key symbol and direction.
class KeyRecorder : public QWidget {
public:
    QStringList log;

protected:
    void keyPressEvent(QKeyEvent *event) override { note(event, u'+'); }
    void keyReleaseEvent(QKeyEvent *event) override { note(event, u'-'); }

private:
    void note(QKeyEvent *event, QChar direction)
    {
        if (!event->isAutoRepeat())
            log.append(direction + QString::number(event->nativeVirtualKey(), 16));
    }
};

TEST(TypedKeys, HoldModifiersCommandShiftOptionControlAndLetThemGoInTheSameOrder)
{
    KeyRecorder recorder;
    recorder.setFocusPolicy(Qt::StrongFocus);
    recorder.resize(200, 100);
    ASSERT_NO_FATAL_FAILURE(showWithFocus(recorder, recorder));
    UserInput::type({{0, true}, {1, true, true, true, true}});
    // Key symbols as the keyboard gives them: with Shift held, Alt is Meta
    // and s is S.
    const QStringList expected{"+ffeb", "+61",   "-61",   "-ffeb",                   // Super, a
                               "+ffeb", "+ffe1", "+ffe7", "+ffe3", "+53", "-53",      // Super, Shift, Alt, Control, s
                               "-ffeb", "-ffe1", "-ffe9", "-ffe3"};
    EXPECT_TRUE(waitFor([&] { return recorder.log.size() >= expected.size(); }));
    EXPECT_EQ(recorder.log.join(u' ').toStdString(), expected.join(u' ').toStdString());
    UserInput::type({});
    waitFor([] { return false; }, 100);
    EXPECT_EQ(recorder.log.size(), expected.size()) << "an empty list posts nothing";
}

TEST(PostedPointer, ClicksARealButtonAndMovesThePointer)
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *button = new QPushButton(QStringLiteral("Press me"));
    layout->addWidget(button);
    int clicks = 0;
    QObject::connect(button, &QPushButton::clicked, [&] { ++clicks; });
    window.resize(200, 100);
    window.show();
    ASSERT_TRUE(waitFor([&] { return window.windowHandle()->isExposed(); }));
    const QPoint centre = button->mapToGlobal(button->rect().center());
    UserInput::clickAt(centre);
    EXPECT_TRUE(waitFor([&] { return clicks == 1; }));
    EXPECT_EQ(UserInput::mouseLocation(), QPointF(centre));
    UserInput::moveMouseTo({17, 23});
    EXPECT_EQ(UserInput::mouseLocation(), QPointF(17, 23));
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
