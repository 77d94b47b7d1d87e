#include "BusyIndicator.h"

#include <QPainter>
#include <QTimer>

namespace {
constexpr int spokes = 12;
constexpr int stepMilliseconds = 80;
} // namespace

BusyIndicator::BusyIndicator(QWidget *parent) : QWidget(parent), m_timer(new QTimer(this))
{
    m_timer->setInterval(stepMilliseconds);
    connect(m_timer, &QTimer::timeout, this, [this] {
        m_step = (m_step + 1) % spokes;
        update();
    });
}

void BusyIndicator::start()
{
    m_timer->start();
}

void BusyIndicator::stop()
{
    m_timer->stop();
}

bool BusyIndicator::isAnimating() const
{
    return m_timer->isActive();
}

void BusyIndicator::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(width(), height());
    painter.translate(width() / 2.0, height() / 2.0);
    QColor colour = palette().color(QPalette::WindowText);
    for (int i = 0; i < spokes; ++i) {
        // The spoke at the current step is darkest; those behind it fade.
        const int age = (m_step - i + spokes) % spokes;
        colour.setAlphaF(1.0 - 0.75 * age / (spokes - 1));
        painter.setPen(QPen(colour, side / 9, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -side * 0.22), QPointF(0, -side * 0.42));
        painter.rotate(360.0 / spokes);
    }
}

QWidget *BusyIndicator::makeAccessory()
{
    auto *view = new QWidget;
    view->setFixedSize(18, 22);
    auto *indicator = new BusyIndicator(view);
    indicator->setGeometry(0, 4, 16, 16);
    indicator->start();
    return view;
}
