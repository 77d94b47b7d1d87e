#include "WindowConstruction.h"

#include "ScreenPoints.h"
#include "WindowLevels.h"

#include <QEvent>
#include <QMoveEvent>
#include <QPointer>
#include <QWidget>

namespace WindowConstruction {

namespace {

int decorationBits(const Decorations &d)
{
    return (d.useTexture ? TexturedBackground : 0) | (d.isCloseable ? Closable : 0)
           | (d.isMiniaturizable ? Miniaturizable : 0) | (d.isResizable ? Resizable : 0);
}

Qt::WindowFlags flagsFor(Kind kind, int style)
{
    Qt::WindowFlags flags = kind == Kind::Panel ? Qt::Tool : Qt::Window;
    if (!(style & Titled))
        return flags | Qt::FramelessWindowHint;
    flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    if (style & Closable)
        flags |= Qt::WindowCloseButtonHint;
    if (style & Miniaturizable)
        flags |= Qt::WindowMinimizeButtonHint;
    if (style & Resizable)
        flags |= Qt::WindowMaximizeButtonHint;
    return flags;
}

// Keeps a child window with its parent: at the same offset as the parent
// moves, hidden while the parent is hidden and shown again with it, below
// it.
class ChildFollower final : public QObject {
public:
    ChildFollower(QWidget *child, QWidget *parent) : QObject(parent), m_child(child), m_parent(parent) {}

    QWidget *child() const { return m_child; }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (!m_child)
            return QObject::eventFilter(watched, event);
        switch (event->type()) {
        case QEvent::Move: {
            const auto *move = static_cast<QMoveEvent *>(event);
            m_child->move(m_child->pos() + move->pos() - move->oldPos());
            break;
        }
        case QEvent::Hide:
            m_hiddenWithParent = m_child->isVisible();
            m_child->hide();
            break;
        case QEvent::Show:
            if (m_hiddenWithParent) {
                m_child->show();
                m_parent->raise();
            }
            m_hiddenWithParent = false;
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QPointer<QWidget> m_child;
    QWidget *m_parent;
    bool m_hiddenWithParent = false;
};

} // namespace

int windowStyle(const Decorations &decorations)
{
    int style = Titled | (decorations.isUnified ? UnifiedTitleAndToolbar : 0);
    if (!decorations.useBorder)
        style = Borderless;
    return style | decorationBits(decorations);
}

int panelStyle(const Decorations &decorations)
{
    return (decorations.useBorder ? Titled : Borderless) | decorationBits(decorations);
}

QWidget *make(Kind kind, const QRectF &contentRect, int style)
{
    auto *window = new QWidget(nullptr, flagsFor(kind, style));
    window->setProperty("nomenClassName", kind == Kind::Panel ? QStringLiteral("NSPanel") : QStringLiteral("NSWindow"));
    window->setProperty("styleMask", style);
    window->setProperty("hasShadow", true);
    setFrame(window, contentRect);
    if (!(style & Resizable))
        window->setFixedSize(window->size());
    return window;
}

QRectF frameOf(const QWidget *window)
{
    return ScreenPoints::toBottomLeft(QRectF(window->geometry()));
}

void setFrame(QWidget *window, const QRectF &frame)
{
    setGeometry(window, ScreenPoints::toTopLeft(frame).toRect());
}

void setGeometry(QWidget *window, const QRect &geometry)
{
    // Whether a window is resizable is about the user's handles: the
    // program gets exactly the size it asks for, and a fixed window stays
    // fixed, at that size.
    if (window->minimumSize() == window->maximumSize()) {
        window->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
        window->setMinimumSize(geometry.size());
        window->setMaximumSize(geometry.size());
    }
    window->setGeometry(geometry);
}

void setTransparency(QWidget *window, float alpha)
{
    if (!window)
        return;
    window->setProperty("alphaValue", alpha);
    window->setWindowOpacity(alpha);
    window->repaint();
}

float alphaOf(const QWidget *window)
{
    if (!window)
        return 0;
    const QVariant alpha = window->property("alphaValue");
    return alpha.isValid() ? alpha.toFloat() : float(window->windowOpacity());
}

void setShadow(QWidget *window, bool shadow)
{
    if (!window)
        return;
    window->setProperty("hasShadow", shadow);
    if (shadow)
        WindowLevels::changeFlags(window, {}, Qt::NoDropShadowWindowHint);
    else
        WindowLevels::changeFlags(window, Qt::NoDropShadowWindowHint, {});
}

bool hasShadow(const QWidget *window)
{
    return window && window->property("hasShadow").toBool();
}

void attachChildWindow(QWidget *child, QWidget *parent)
{
    if (!child || !parent || child == parent)
        return;
    // Attached once however often asked: a second follower would move it twice.
    for (const ChildFollower *follower : parent->findChildren<ChildFollower *>(Qt::FindDirectChildrenOnly))
        if (follower->child() == child)
            return;
    parent->installEventFilter(new ChildFollower(child, parent));
    if (child->isVisible())
        child->lower();
    if (parent->isVisible())
        parent->raise();
}

void removeView(QWidget *view)
{
    if (!view || view->isWindow())
        return;
    view->hide();
    view->setParent(nullptr);
    view->deleteLater();
}

} // namespace WindowConstruction
