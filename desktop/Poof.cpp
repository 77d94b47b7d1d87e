#include "Poof.h"

#include <QPainter>
#include <QRadialGradient>
#include <QTimer>
#include <QWidget>

#include <cmath>

namespace Poof {

namespace {

constexpr int Size = 64;
constexpr int Frames = 5;
constexpr int FrameMilliseconds = 50;

struct Ball {
    QPointF centre;
    qreal radius;
};

// Five cloud balls drift outward and grow as the frames go by.
QList<Ball> ballsOf(int frame)
{
    const qreal progress = qreal(frame + 1) / Frames;
    const QPointF middle(Size / 2.0, Size / 2.0);
    const qreal spread = Size * 0.08 + Size * 0.22 * progress;
    const qreal radius = Size * (0.14 + 0.1 * progress);
    QList<Ball> balls;
    for (int ball = 0; ball < 5; ++ball) {
        const qreal angle = 2 * M_PI * ball / 5 - M_PI / 2;
        balls.append({middle + QPointF(std::cos(angle), std::sin(angle)) * spread, radius});
    }
    return balls;
}

class PuffWindow : public QWidget {
public:
    PuffWindow()
        : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus)
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_DeleteOnClose);
        setFixedSize(Size, Size);
        showFrame();
        timer_.setInterval(FrameMilliseconds);
        QObject::connect(&timer_, &QTimer::timeout, this, [this] {
            if (++frame_ >= Frames) {
                close();
                return;
            }
            showFrame();
        });
        timer_.start();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        const int alpha = int(230 * (1.0 - 0.8 * qreal(frame_ + 1) / Frames));
        for (const Ball &ball : ballsOf(frame_)) {
            QRadialGradient shade(ball.centre, ball.radius);
            shade.setColorAt(0, QColor(250, 250, 250, alpha));
            shade.setColorAt(0.7, QColor(200, 200, 205, alpha));
            shade.setColorAt(1, QColor(160, 160, 170, alpha / 3));
            painter.setBrush(shade);
            painter.drawEllipse(ball.centre, ball.radius, ball.radius);
        }
    }

private:
    // Without a compositing manager the translucent background shows as
    // black, so the window is also cut to the balls' outline.
    void showFrame()
    {
        QRegion outline;
        for (const Ball &ball : ballsOf(frame_)) {
            const QPointF corner = ball.centre - QPointF(ball.radius, ball.radius);
            outline += QRegion(QRectF(corner, QSizeF(2 * ball.radius, 2 * ball.radius)).toRect(), QRegion::Ellipse);
        }
        setMask(outline);
        update();
    }

    QTimer timer_;
    int frame_ = 0;
};

} // namespace

void play(const QPointF &centre)
{
    auto *puff = new PuffWindow;
    puff->move((centre - QPointF(Size / 2.0, Size / 2.0)).toPoint());
    puff->show();
}

} // namespace Poof
