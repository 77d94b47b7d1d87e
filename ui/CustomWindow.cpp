#include "CustomWindow.h"

#include "ModifierKeys.h"
#include "ScreenPoints.h"
#include "WindowConstruction.h"
#include "WindowLevels.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QTimer>

#include <cmath>

namespace {

// One drag at a time, whichever custom window it is in: the state is shared
// by all of them and a mouse-up resets it.
struct DragState {
    bool shouldRedoInitials = true;
    bool mouseDragShouldResize = false;
    bool userAdjustedFromControl = false;
};

DragState &dragState()
{
    static DragState state;
    return state;
}

constexpr float resizeCorner = 20;
constexpr float titleBarHeight = 22;
constexpr int fadeStepMilliseconds = 50;
constexpr float fadeStep = 0.2f;
// An alpha the screen cannot tell from an end (half of one of its 255
// steps away) counts as that end: steps of 0.2 drift in binary fractions
// and would otherwise take a sixth step.
constexpr float sameOnScreen = 0.5f / 255;

QPointF mouseOnScreen()
{
    return ScreenPoints::toBottomLeft(QPointF(QCursor::pos()));
}

} // namespace

CustomWindow::CustomWindow(QWidget *parent) : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setProperty("styleMask", 0);
    setProperty("hasShadow", true);
    WindowLevels::setLevel(this, WindowLevels::floatingKey);
    WindowConstruction::setTransparency(this, 1.0f);
}

CustomWindow::~CustomWindow()
{
    stopTimer();
}

void CustomWindow::awakeFromNib()
{
    m_minHeight = float(minimumHeight()) - titleBarHeight;
    m_maxHeight = float(maximumHeight());
    m_minWidth = float(minimumWidth());
    m_maxWidth = float(maximumWidth());
    setMinimumSize(0, 0);
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    m_lastFrame = frame();
}

QRectF CustomWindow::frame() const
{
    return WindowConstruction::frameOf(this);
}

void CustomWindow::setFrame(const QRectF &frame)
{
    WindowConstruction::setFrame(this, frame);
}

void CustomWindow::setFrameOrigin(const QPointF &origin)
{
    setFrame(QRectF(origin, frame().size()));
}

void CustomWindow::setUserAdjustedFromControl(bool value)
{
    dragState().userAdjustedFromControl = value;
}

QPointF CustomWindow::locationInWindow(const QMouseEvent *event) const
{
    return {event->position().x(), height() - event->position().y()};
}

void CustomWindow::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        mouseDragged(event);
    else
        QWidget::mouseMoveEvent(event);
}

void CustomWindow::mouseReleaseEvent(QMouseEvent *event)
{
    dragState().shouldRedoInitials = true;
    QWidget::mouseReleaseEvent(event);
}

void CustomWindow::mouseDragged(QMouseEvent *event)
{
    DragState &drag = dragState();
    if (drag.shouldRedoInitials) {
        drag.shouldRedoInitials = false;
        takeInitials(event);
    }
    if (drag.mouseDragShouldResize && m_canResize) {
        m_currentLocation = locationInWindow(event);
        resizeFromCorner();
    } else if (m_canMove) {
        moveWithMouse();
    } else {
        QWidget::mouseMoveEvent(event);
    }
}

void CustomWindow::takeInitials(QMouseEvent *event)
{
    m_initialLocation = locationInWindow(event);
    m_initialFrame = frame();
    m_initialLocationOnScreen = m_initialFrame.topLeft() + m_initialLocation;
    dragState().mouseDragShouldResize =
        m_initialLocation.x() > m_initialFrame.width() - resizeCorner && m_initialLocation.y() < resizeCorner;
    m_screenFrame = ScreenPoints::visibleFrameOf(screen());
    m_windowFrame = m_initialFrame;
    m_minY2 = float(m_windowFrame.height() - m_minHeight + m_windowFrame.y());
    m_maxY2 = float(m_windowFrame.y() - (m_maxHeight - m_windowFrame.height()));
}

// The top edge stays put while the bottom edge follows the mouse.
void CustomWindow::resizeFromCorner()
{
    const qreal dy = mouseOnScreen().y() - m_initialLocationOnScreen.y();
    const qreal h = m_initialFrame.height() - dy;
    qreal height = h, y = m_initialFrame.y() + dy;
    if (h < m_minHeight) {
        height = m_minHeight;
        y = m_minY2;
    } else if (h > m_maxHeight) {
        height = m_maxHeight;
        y = m_maxY2;
    }
    const qreal w = m_currentLocation.x() - m_initialLocation.x() + m_initialFrame.width();
    const qreal width = w < m_minWidth ? qreal(m_minWidth) : std::min(qreal(m_maxWidth), w);
    setFrame(QRectF(m_windowFrame.x(), y, width, height));
}

// The window never rises under the desktop's top panel.
void CustomWindow::moveWithMouse()
{
    m_currentLocation = mouseOnScreen();
    QPointF origin = m_currentLocation - m_initialLocation;
    if (origin.y() + m_windowFrame.height() >= m_screenFrame.y() + m_screenFrame.height())
        origin.setY(m_screenFrame.height() - m_windowFrame.height() + m_screenFrame.y());
    setFrameOrigin(origin);
}

void CustomWindow::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    if (isWindow() && isVisible())
        windowMoved();
}

void CustomWindow::windowMoved()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screens.isEmpty() || screen() != screens.first() || ModifierKeys::isOptionKeyDown())
        return;
    const QRectF now = frame();
    const QSizeF screenSize = ScreenPoints::frameOf(screen()).size();
    const qreal menuBar = ScreenPoints::menuBarHeight(screen());
    const qreal right = now.x() + now.width();
    const qreal top = now.y() + now.height();
    QPointF point = now.topLeft();
    DragState &drag = dragState();
    if (m_snapsToEdges && !m_snapping && !drag.userAdjustedFromControl) {
        // Each test looks at the frame before snapping; each snap keeps the
        // ones before it, since all move the same point.
        m_snapping = true;
        if (m_snapTolerance > now.y())
            springCoordinate(Coordinate::Y, 0 + m_padding, point);
        if (m_snapTolerance > now.x())
            springCoordinate(Coordinate::X, 0 + m_padding, point);
        if (m_snapTolerance > screenSize.width() - right)
            springCoordinate(Coordinate::X, float(screenSize.width() - now.width() - m_padding), point);
        if (m_snapTolerance > (screenSize.height() - menuBar) - top)
            springCoordinate(Coordinate::Y, float(screenSize.height() - menuBar - now.height() - m_padding), point);
        m_snapping = false;
    }
    drag.userAdjustedFromControl = false;
}

void CustomWindow::springCoordinate(Coordinate coordinate, float value, QPointF &point)
{
    if (coordinate == Coordinate::X)
        point.setX(value);
    else
        point.setY(value);
    setFrameOrigin(point);
}

QRectF CustomWindow::windowWillUseStandardFrame(const QRectF &defaultFrame)
{
    const QRectF current = frame();
    if (!(m_canResize && m_canMove))
        return current;
    if (current.topLeft() == defaultFrame.topLeft())
        return m_lastFrame;
    m_lastFrame = current;
    const QRectF visible = ScreenPoints::visibleFrameOf(screen());
    return QRectF(defaultFrame.topLeft(), QSizeF(std::min(visible.width(), qreal(m_maxWidth)),
                                                 std::min(visible.height(), qreal(m_maxHeight))));
}

void CustomWindow::zoom()
{
    setFrame(windowWillUseStandardFrame(ScreenPoints::visibleFrameOf(screen())));
}

void CustomWindow::startTimer(void (CustomWindow::*step)())
{
    stopTimer();
    m_timer = new QTimer(this);
    m_timer->setInterval(fadeStepMilliseconds);
    connect(m_timer, &QTimer::timeout, this, step);
    m_timer->start();
}

void CustomWindow::stopTimer()
{
    delete m_timer;
    m_timer = nullptr;
}

void CustomWindow::openWithFade()
{
    WindowConstruction::setTransparency(this, 0.0f);
    show();
    raise();
    activateWindow();
    startTimer(&CustomWindow::fadeIn);
}

void CustomWindow::fadeIn()
{
    float alpha = WindowConstruction::alphaOf(this);
    if (alpha < 1.0f)
        alpha += fadeStep;
    const bool opaque = alpha >= 1.0f - sameOnScreen || std::isnan(alpha);
    WindowConstruction::setTransparency(this, opaque ? 1.0f : alpha);
    if (opaque)
        stopTimer();
}

void CustomWindow::fade()
{
    float alpha = WindowConstruction::alphaOf(this);
    if (alpha > 0.0f)
        alpha -= fadeStep;
    const bool transparent = alpha <= sameOnScreen;
    WindowConstruction::setTransparency(this, transparent ? 0.0f : alpha);
    if (transparent) {
        stopTimer();
        orderOutAndRelease();
        WindowConstruction::setTransparency(this, 1.0f);
    }
}

void CustomWindow::close()
{
    if (m_useFade) {
        startTimer(&CustomWindow::fade);
        return;
    }
    orderOutAndRelease();
}

void CustomWindow::orderOutAndRelease()
{
    hide();
    if (m_controller && m_controller->metaObject()->indexOfMethod("closeAndRelease()") >= 0)
        QMetaObject::invokeMethod(m_controller, "closeAndRelease");
}

// A close asked for by the window manager or a close button goes the same
// way: the window is put away, not destroyed.
void CustomWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (!m_timer)
        close();
}

namespace {

// What a click on the control does: a button's click, a text field's
// action, a popup's choice.
void click(QWidget *control)
{
    if (!control->isEnabled())
        return;
    if (auto *button = qobject_cast<QAbstractButton *>(control))
        button->click();
    else if (auto *field = qobject_cast<QLineEdit *>(control))
        emit field->returnPressed();
    else if (auto *popup = qobject_cast<QComboBox *>(control))
        emit popup->activated(popup->currentIndex());
}

} // namespace

// A disabled control still takes its key, so the key goes nowhere else.
void CustomWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_cancelObject) {
        click(m_cancelObject);
        return;
    }
    const bool returnOrEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (returnOrEnter && m_defaultObject) {
        click(m_defaultObject);
        return;
    }
    QWidget::keyPressEvent(event);
}
