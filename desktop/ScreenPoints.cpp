#include "ScreenPoints.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>

namespace ScreenPoints {

namespace {

// The main screen's height, in the same units as the points; 0 without one.
qreal mainScreenBottom()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return 0;
    const QRect geometry = screen->geometry();
    return geometry.y() + geometry.height();
}

} // namespace

QPointF fromText(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("[-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?"));
    qreal values[2] = {0, 0};
    auto match = number.globalMatch(text);
    for (int i = 0; i < 2 && match.hasNext(); ++i)
        values[i] = match.next().captured().toDouble();
    return {values[0], values[1]};
}

QPointF toTopLeft(const QPointF &bottomLeftPoint)
{
    return {bottomLeftPoint.x(), mainScreenBottom() - bottomLeftPoint.y()};
}

QPointF toBottomLeft(const QPointF &topLeftPoint)
{
    return toTopLeft(topLeftPoint);
}

QRectF toTopLeft(const QRectF &bottomLeftRect)
{
    return {bottomLeftRect.x(), mainScreenBottom() - bottomLeftRect.y() - bottomLeftRect.height(),
            bottomLeftRect.width(), bottomLeftRect.height()};
}

QRectF toBottomLeft(const QRectF &topLeftRect)
{
    return toTopLeft(topLeftRect);
}

QRectF frameOf(const QScreen *screen)
{
    return screen ? toBottomLeft(QRectF(screen->geometry())) : QRectF();
}

QRectF visibleFrameOf(const QScreen *screen)
{
    return screen ? toBottomLeft(QRectF(screen->availableGeometry())) : QRectF();
}

qreal menuBarHeight(const QScreen *screen)
{
    return screen ? screen->availableGeometry().top() - screen->geometry().top() : 0;
}

} // namespace ScreenPoints
