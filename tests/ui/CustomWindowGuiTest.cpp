// Runs on a private X server with a window manager (the test command starts
// both), driven by synthetic pointer and key input from the X server's test
// extension, as a person's hand would drive it.

#include "BackgroundView.h"
#include "CustomWindow.h"
#include "GuiWaiting.h"
#include "InterfaceFile.h"
#include "LargeText.h"
#include "ModifierKeys.h"
#include "ResourceFolder.h"
#include "ScreenPoints.h"
#include "TextViews.h"
#include "WindowConstruction.h"
#include "WindowLevels.h"
#include "WindowSizing.h"

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QThread>
#include <QVBoxLayout>
#include <QWindow>
#include <memory>
#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>

#include "SyntheticInput.h"
#include "WindowProperties.h"

inline void PrintTo(const QPointF &p, std::ostream *os)
{
    *os << '(' << p.x() << ", " << p.y() << ')';
}

inline void PrintTo(const QRectF &r, std::ostream *os)
{
    *os << '(' << r.x() << ", " << r.y() << ' ' << r.width() << 'x' << r.height() << ')';
}

namespace {

// A hand on the pointer and keys that waits after each step for Qt to read
// the event and the window manager to answer any move it caused.
class Hand {
public:
    void moveTo(QPoint point) { then([&] { m_input.moveTo(point); }); }
    void button(bool down) { then([&] { m_input.button(down); }); }
    void key(KeySym symbol, bool down) { then([&] { m_input.key(symbol, down); }); }
    void tap(KeySym symbol)
    {
        key(symbol, true);
        key(symbol, false);
    }

    // Drags from `from` (top-left screen coordinates) by `by` in steps, as a
    // hand would. The button goes down a pixel to the left, so the first
    // movement, where a drag takes its bearings, arrives at `from`.
    void drag(QPoint from, QPoint by)
    {
        moveTo(from - QPoint(1, 0));
        button(true);
        moveTo(from);
        constexpr int steps = 8;
        for (int i = 1; i <= steps; ++i)
            moveTo(from + by * i / steps);
        button(false);
    }

private:
    template <typename Action>
    void then(Action action)
    {
        action();
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            QThread::msleep(4);
        }
    }

    SyntheticInput m_input;
};

QRectF roundedFrame(const CustomWindow &window)
{
    const QRectF frame = window.frame();
    return {std::round(frame.x()), std::round(frame.y()), std::round(frame.width()), std::round(frame.height())};
}

qreal screenHeight()
{
    return QGuiApplication::primaryScreen()->geometry().height();
}

// Waits until the window manager has answered every move of the window:
// its answers to older requests arrive after newer ones were made, and
// each counts as a move.
void settle(QWidget &window)
{
    struct MoveCounter : QObject {
        int moves = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            moves += event->type() == QEvent::Move;
            return false;
        }
    } counter;
    window.installEventFilter(&counter);
    for (int seen = -1; seen != counter.moves;) {
        seen = counter.moves;
        waitFor([] { return false; }, 150);
    }
    window.removeEventFilter(&counter);
}

// A window shown at a frame (bottom-left coordinates) and settled there,
// asking again if the window manager placed it elsewhere on mapping it.
void showAt(QWidget &window, const QRectF &frame)
{
    window.setGeometry(ScreenPoints::toTopLeft(frame).toRect());
    window.show();
    ASSERT_TRUE(waitFor([&] { return window.isVisible() && window.windowHandle()->isExposed(); }));
    for (int attempt = 0; attempt < 10 && ScreenPoints::toBottomLeft(QRectF(window.geometry())) != frame; ++attempt) {
        window.setGeometry(ScreenPoints::toTopLeft(frame).toRect());
        settle(window);
    }
    ASSERT_EQ(ScreenPoints::toBottomLeft(QRectF(window.geometry())), frame) << "the window manager did not place the window";
}

// Where a point of the window (counted from its top left) is on the screen.
QPoint at(const QWidget &window, int x, int y)
{
    return window.mapToGlobal(QPoint(x, y));
}

// A custom window filled by its background, as windows of this kind are.
struct FilledWindow : CustomWindow {
    FilledWindow()
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        auto *background = new BackgroundView;
        background->awakeFromNib();
        layout->addWidget(background);
    }
};

TEST(CustomWindowDrags, MoveByTheBodyAndResizeFromTheCornerWithinLimits)
{
    FilledWindow window;
    window.setMinWidth(150);
    window.setMaxWidth(400);
    window.setMinHeight(100);
    window.setMaxHeight(300);
    ASSERT_NO_FATAL_FAILURE(showAt(window, {200, 300, 300, 200}));
    Hand hand;

    hand.drag(at(window, 50, 50), {100, 60});
    EXPECT_TRUE(waitFor([&] { return roundedFrame(window) == QRectF(300, 240, 300, 200); }))
        << "moved to " << window.frame().x() << ", " << window.frame().y();

    // 10 points in from the right and 10 above the bottom is the corner; the
    // top edge stays where it is while the bottom follows.
    const qreal top = 240 + 200;
    hand.drag(at(window, 290, 190), {50, 40});
    EXPECT_TRUE(waitFor([&] { return roundedFrame(window) == QRectF(300, top - 240, 350, 240); }))
        << "resized to " << window.frame().width() << " by " << window.frame().height();
    hand.drag(at(window, 340, 230), {400, 300});
    EXPECT_TRUE(waitFor([&] { return roundedFrame(window) == QRectF(300, top - 300, 400, 300); })) << "maximum limits";
    hand.drag(at(window, 390, 290), {-400, -300});
    EXPECT_TRUE(waitFor([&] { return roundedFrame(window) == QRectF(300, top - 100, 150, 100); })) << "minimum limits";

    // 25 points above the bottom is body, not corner.
    hand.drag(at(window, 140, 75), {-20, 0});
    EXPECT_TRUE(waitFor([&] { return roundedFrame(window) == QRectF(280, top - 100, 150, 100); }));
}

// A panel along the top of the screen, as a desktop's top bar reserves it.
class TopPanel {
public:
    explicit TopPanel(int height) : m_display(XOpenDisplay(nullptr))
    {
        const int width = DisplayWidth(m_display, DefaultScreen(m_display));
        m_window = XCreateSimpleWindow(m_display, DefaultRootWindow(m_display), 0, 0, width, height, 0, 0, 0x303030);
        Atom dock = XInternAtom(m_display, "_NET_WM_WINDOW_TYPE_DOCK", False);
        XChangeProperty(m_display, m_window, XInternAtom(m_display, "_NET_WM_WINDOW_TYPE", False), XA_ATOM, 32,
                        PropModeReplace, reinterpret_cast<unsigned char *>(&dock), 1);
        long strut[12] = {0, 0, height, 0, 0, 0, 0, 0, 0, width - 1, 0, 0};
        XChangeProperty(m_display, m_window, XInternAtom(m_display, "_NET_WM_STRUT_PARTIAL", False), XA_CARDINAL,
                        32, PropModeReplace, reinterpret_cast<unsigned char *>(strut), 12);
        XMapWindow(m_display, m_window);
        XSync(m_display, False);
    }
    ~TopPanel()
    {
        XDestroyWindow(m_display, m_window);
        XCloseDisplay(m_display);
    }
    TopPanel(const TopPanel &) = delete;
    TopPanel &operator=(const TopPanel &) = delete;

private:
    Display *m_display;
    Window m_window;
};

TEST(CustomWindowDrags, HoldTheTopBelowThePanelAndSnapToEdgesUnlessAltIsHeld)
{
    TopPanel panel(40);
    ASSERT_TRUE(waitFor([] { return ScreenPoints::menuBarHeight(QGuiApplication::primaryScreen()) == 40; }))
        << "the panel's band did not reach the screen's available area";
    FilledWindow window;
    ASSERT_NO_FATAL_FAILURE(showAt(window, {300, 300, 200, 100}));
    Hand hand;
    hand.drag(at(window, 100, 50), {0, -700});
    EXPECT_TRUE(waitFor([&] { return roundedFrame(window).y() == screenHeight() - 40 - 100; }))
        << "top at " << window.frame().y() + 100;

    window.setSnapsToEdges(true);
    window.setPadding(4);
    window.setFrameOrigin({10, 300});
    settle(window);
    EXPECT_EQ(roundedFrame(window).topLeft(), QPointF(4, 300)) << "snapped to the left";
    window.setFrameOrigin({16, 300});
    settle(window);
    EXPECT_EQ(roundedFrame(window).topLeft(), QPointF(16, 300)) << "outside the tolerance";
    window.setFrameOrigin({300, screenHeight() - 40 - 100 - 12});
    settle(window);
    EXPECT_EQ(roundedFrame(window).y(), screenHeight() - 40 - 100 - 4) << "snapped below the panel";

    hand.key(XK_Alt_L, true);
    ASSERT_TRUE(ModifierKeys::isOptionKeyDown());
    window.setFrameOrigin({10, 200});
    settle(window);
    EXPECT_EQ(roundedFrame(window).topLeft(), QPointF(10, 200)) << "Alt held: no snapping";
    hand.key(XK_Alt_L, false);

    CustomWindow::setUserAdjustedFromControl(true);
    window.setFrameOrigin({12, 200});
    settle(window);
    EXPECT_EQ(roundedFrame(window).topLeft(), QPointF(12, 200)) << "the program's own move is not snapped";
}

TEST(ModifierKeys, AnswerForTheKeysHeldNowAndNeverForCapsLock)
{
    Hand hand;
    using namespace ModifierKeys;
    const auto held = [] {
        return QList<bool>{isCommandKeyDown(), isShiftKeyDown(), isOptionKeyDown(), isControlKeyDown()};
    };
    hand.key(XK_Shift_L, true);
    hand.key(XK_Alt_L, true);
    EXPECT_EQ(held(), (QList<bool>{false, true, true, false}));
    hand.key(XK_Shift_L, false);
    hand.key(XK_Alt_L, false);
    hand.key(XK_Super_L, true);
    hand.key(XK_Control_L, true);
    EXPECT_EQ(held(), (QList<bool>{true, false, false, true}));
    hand.key(XK_Super_L, false);
    hand.key(XK_Control_L, false);
    hand.tap(XK_Caps_Lock);
    EXPECT_EQ(held(), (QList<bool>{false, false, false, false}));
    hand.tap(XK_Caps_Lock);
}

TEST(CustomWindowKeys, ClickTheDefaultButtonOnReturnAndIgnoreEscapeWhenCancelIsDisabled)
{
    CustomWindow window;
    auto *layout = new QVBoxLayout(&window);
    auto *ok = new QPushButton(QStringLiteral("OK"));
    auto *cancel = new QPushButton(QStringLiteral("Cancel"));
    layout->addWidget(ok);
    layout->addWidget(cancel);
    int oks = 0, cancels = 0;
    QObject::connect(ok, &QPushButton::clicked, [&] { ++oks; });
    QObject::connect(cancel, &QPushButton::clicked, [&] { ++cancels; });
    window.setDefaultObject(ok);
    window.setCancelObject(cancel);
    cancel->setEnabled(false);
    ASSERT_NO_FATAL_FAILURE(showAt(window, {100, 100, 200, 120}));
    window.activateWindow();
    ASSERT_TRUE(waitFor([&] { return window.isActiveWindow(); })) << "the window did not take the keyboard";
    Hand hand;
    hand.tap(XK_Escape);
    hand.tap(XK_Return);
    EXPECT_TRUE(waitFor([&] { return oks == 1; }));
    EXPECT_EQ(cancels, 0);
    EXPECT_TRUE(window.isVisible());
}

// The window manager's stacking order, bottom first.
QList<unsigned long> stacking()
{
    return windowProperty(0, "_NET_CLIENT_LIST_STACKING");
}

TEST(WindowLevels, KeepFloatingWindowsAboveAndDesktopWindowsBelowANormalWindowWhateverIsRaised)
{
    std::unique_ptr<QWidget> floating(WindowConstruction::make(WindowConstruction::Kind::Window, {100, 100, 200, 200}, 1));
    std::unique_ptr<QWidget> desktop(WindowConstruction::make(WindowConstruction::Kind::Window, {150, 150, 200, 200}, 1));
    WindowLevels::setLevel(floating.get(), *WindowLevels::keyNamed(QStringLiteral("NSFloatingWindowLevel")));
    WindowLevels::setLevel(desktop.get(), *WindowLevels::keyNamed(QStringLiteral("kCGDesktopWindowLevel")));
    QWidget normal;
    normal.setGeometry(120, 120, 300, 300);
    normal.show();
    ASSERT_TRUE(waitFor([&] { return normal.windowHandle()->isExposed(); }));
    normal.raise();
    normal.activateWindow();
    floating->show();
    desktop->show();
    ASSERT_TRUE(waitFor([&] { return desktop->windowHandle()->isExposed(); }));
    // Raised and activated, a desktop window still stays below.
    desktop->raise();
    desktop->activateWindow();
    const auto order = [&] {
        const QList<unsigned long> stack = stacking();
        return QList<qsizetype>{stack.indexOf(desktop->winId()), stack.indexOf(normal.winId()),
                                stack.indexOf(floating->winId())};
    };
    EXPECT_TRUE(waitFor([&] {
        const QList<qsizetype> o = order();
        return o[0] >= 0 && o[0] < o[1] && o[1] < o[2];
    })) << "desktop, normal, floating at " << ::testing::PrintToString(order());
}

// Attached twice, a child still moves as far as its parent, is hidden with
// it, and comes back with it.
TEST(ChildWindows, MoveHideAndShowWithTheirParentHoweverOftenAttached)
{
    QWidget parent, child;
    ASSERT_NO_FATAL_FAILURE(showAt(parent, {100, 100, 300, 200}));
    ASSERT_NO_FATAL_FAILURE(showAt(child, {420, 100, 100, 100}));
    WindowConstruction::attachChildWindow(&child, &parent);
    WindowConstruction::attachChildWindow(&child, &parent);
    parent.move(parent.pos() + QPoint(30, -20));
    EXPECT_TRUE(waitFor([&] { return ScreenPoints::toBottomLeft(QRectF(child.geometry())).topLeft() == QPointF(450, 120); }));
    settle(child);
    EXPECT_EQ(ScreenPoints::toBottomLeft(QRectF(child.geometry())).topLeft(), QPointF(450, 120)) << "moved once";
    parent.hide();
    EXPECT_TRUE(waitFor([&] { return !child.isVisible(); }));
    parent.show();
    EXPECT_TRUE(waitFor([&] { return child.isVisible() && parent.isVisible(); }));
}

// Whether a window is resizable is about the user's handles: every kind of
// window takes exactly the frame the program gives it, and a fixed one
// stays fixed at it.
TEST(WindowFrames, EveryKindOfWindowTakesExactlyTheFrameItIsGiven)
{
    using namespace WindowConstruction;
    const QRectF made(100, 100, 200, 100);
    CustomWindow custom;
    setFrame(&custom, made);
    const std::unique_ptr<QWidget> borderless(make(Kind::Window, made, Borderless));
    const std::unique_ptr<QWidget> fixed(make(Kind::Window, made, windowStyle({true, false, true, true, false, false})));
    const std::unique_ptr<QWidget> resizable(make(Kind::Window, made, windowStyle({true, false, true, true, true, false})));
    const std::unique_ptr<QWidget> panel(make(Kind::Panel, made, panelStyle({true, false, true, false, false, false})));
    const std::pair<const char *, QWidget *> windows[] = {
        {"borderless", borderless.get()}, {"titled fixed", fixed.get()}, {"titled resizable", resizable.get()},
        {"panel", panel.get()}, {"custom", &custom}};
    for (const auto &[kind, window] : windows) {
        ASSERT_NO_FATAL_FAILURE(showAt(*window, made));
        setFrame(window, {100, 100, 300, 150});
        EXPECT_TRUE(waitFor([window = window] { return frameOf(window) == QRectF(100, 100, 300, 150); }))
            << kind << " at " << ::testing::PrintToString(frameOf(window));
        // Disclosed to a content height of 260 under a title bar; a window
        // without one takes the height a title bar would have added too.
        const int expected = window->frameGeometry().height() > window->height() ? 260 : 260 + 22;
        WindowSizing::discloseWindow(window, 260, false);
        EXPECT_TRUE(waitFor([window = window, expected] { return window->height() == expected; }))
            << kind << " disclosed to " << window->height();
        EXPECT_EQ(window->width(), 300) << kind;
        const bool userMayResize = window->minimumSize() != window->maximumSize();
        EXPECT_EQ(userMayResize, window == resizable.get() || window == &custom) << kind;
        window->hide();
    }
}

// A custom window with a background view in front of the main window, for a
// person to look at.
TEST(Screenshots, ShowACustomWindowWithItsBackgroundInFrontOfTheMainWindow)
{
    const QString file = screenshotFile(QStringLiteral("custom_window.png"));
    if (file.isEmpty())
        GTEST_SKIP() << "no screenshot folder";
    InterfaceFile main(ResourceFolder::path() + QStringLiteral("/MainWindow.ui"));
    main.window()->setGeometry(40, 40, 900, 620);
    main.window()->show();
    CustomWindow window;
    auto *background = new BackgroundView(&window);
    background->setTag(1);
    background->awakeFromNib();
    background->setGeometry(0, 0, 360, 160);
    auto *label = new QLabel(QStringLiteral("Renaming 1,204 files…"), &window);
    label->setStyleSheet(QStringLiteral("color: white; font-size: 18px; font-weight: bold"));
    label->setGeometry(24, 60, 320, 40);
    window.resize(360, 160);
    window.move(300, 260);
    window.openWithFade();
    ASSERT_TRUE(waitFor([&] { return !window.isFading() && main.window()->windowHandle()->isExposed(); }));
    waitFor([] { return false; }, 300);
    ASSERT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0).save(file));
}

// Large type on a dark window, and a log view, for a person to look at.
TEST(Screenshots, ShowLargeTextAndALogView)
{
    const QString largeFile = screenshotFile(QStringLiteral("large_text.png"));
    if (largeFile.isEmpty())
        GTEST_SKIP() << "no screenshot folder";
    QWidget dark(nullptr, Qt::Window | Qt::FramelessWindowHint);
    dark.setStyleSheet(QStringLiteral("background: #202020"));
    auto *field = new QLabel(&dark);
    field->setStyleSheet(QStringLiteral("background: transparent"));
    const float size = LargeText::show(QStringLiteral("IMG_0042"), field, &dark);
    dark.show();
    ASSERT_TRUE(waitFor([&] { return dark.windowHandle()->isExposed(); }));
    waitFor([] { return false; }, 300);
    EXPECT_GT(size, 24);
    ASSERT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0).save(largeFile));
    dark.hide();

    QPlainTextEdit log;
    log.setGeometry(100, 100, 520, 220);
    log.show();
    ASSERT_TRUE(waitFor([&] { return log.windowHandle()->isExposed(); }));
    for (int i = 1; i <= 30; ++i)
        TextViews::logEntry(&log, QStringLiteral("%1  IMG_%2.jpg -> Holiday %3.jpg").arg(i, 2).arg(4000 + i).arg(i, 3, 10, QLatin1Char('0')), i > 1);
    waitFor([] { return false; }, 300);
    ASSERT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0, 80, 60, 580, 300).save(screenshotFile(QStringLiteral("log_view.png"))));
}

} // namespace

// Whether the window manager has announced itself on the root window.
bool windowManagerRunning()
{
    return !windowProperty(0, "_NET_SUPPORTING_WM_CHECK").isEmpty();
}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    // The manager announces itself before it manages windows, and a window
    // mapped meanwhile may never be shown: wait until a fresh window is.
    bool shown = false;
    for (int attempt = 0; !shown && attempt < 10 && waitFor(windowManagerRunning, 10000); ++attempt) {
        QWidget probe;
        probe.show();
        shown = waitFor([&] { return probe.windowHandle()->isExposed(); }, 1500);
    }
    if (!shown) {
        std::fputs("the window manager did not start\n", stderr);
        return 1;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
