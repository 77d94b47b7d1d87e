#pragma once

// What tests of real windows share: waiting while events are handled, and
// where screenshots go.

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QString>
#include <functional>

inline bool waitFor(const std::function<bool()> &condition, int milliseconds = 5000)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

// The file a screenshot of this name goes to; "" when none is wanted.
inline QString screenshotFile(const QString &name)
{
    const QString shots = QString::fromLocal8Bit(qgetenv("NOMEN_SCREENSHOT_DIR"));
    return !shots.isEmpty() && QDir().mkpath(shots) ? shots + u'/' + name : QString();
}
