#pragma once

#include <QWidget>

class QTimer;

// A small spinning busy indicator of our own drawing: twelve spokes, the
// brightest one going round. It is drawn even when stopped.
class BusyIndicator : public QWidget {
    Q_OBJECT
public:
    explicit BusyIndicator(QWidget *parent = nullptr);

    void start();
    void stop();
    bool isAnimating() const;
    int step() const { return m_step; }

    // An 18 by 22 view holding an animating indicator of 16 by 16 at
    // (0, 4), for the caller to place.
    static QWidget *makeAccessory();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QTimer *m_timer;
    int m_step = 0;
};
