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

// Keeps a child window at the same offset from its parent as the parent moves.
class ChildFollower final : public QObject {
public:
    ChildFollower(QWidget *child, QWidget *parent) : QObject(parent), m_child(child) {}

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Move && m_child) {
            const auto *move = static_cast<QMoveEvent *>(event);
            m_child->move(m_child->pos() + move->pos() - move->oldPos());
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QPointer<QWidget> m_child;
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
    window->setGeometry(ScreenPoints::toTopLeft(frame).toRect());
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
