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
        timer_.setInterval(FrameMilliseconds);
        QObject::connect(&timer_, &QTimer::timeout, this, [this] {
            if (++frame_ >= Frames)
                close();
            else
                update();
        });
        timer_.start();
    }

protected:
    // Five cloud balls drift outward, grow and fade as the frames go by.
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        const qreal progress = qreal(frame_ + 1) / Frames;
        const QPointF centre(Size / 2.0, Size / 2.0);
        const qreal spread = Size * 0.08 + Size * 0.22 * progress;
        const qreal radius = Size * (0.14 + 0.1 * progress);
        const int alpha = int(230 * (1.0 - 0.8 * progress));
        for (int ball = 0; ball < 5; ++ball) {
            const qreal angle = 2 * M_PI * ball / 5 - M_PI / 2;
            const QPointF at = centre + QPointF(std::cos(angle), std::sin(angle)) * spread;
            QRadialGradient shade(at, radius);
            shade.setColorAt(0, QColor(250, 250, 250, alpha));
            shade.setColorAt(0.7, QColor(200, 200, 205, alpha));
            shade.setColorAt(1, QColor(160, 160, 170, 0));
            painter.setBrush(shade);
            painter.drawEllipse(at, radius, radius);
        }
    }

private:
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
