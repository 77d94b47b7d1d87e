#include "DeferredCalls.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

namespace DeferredCalls {

namespace {
int pendingCount = 0;
}

void after(int milliseconds, std::function<void()> work)
{
    ++pendingCount;
    QTimer::singleShot(milliseconds, QCoreApplication::instance(), [work = std::move(work)] {
        --pendingCount;
        work();
    });
}

int pending()
{
    return pendingCount;
}

void waitForPending(int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (pendingCount > 0 && clock.elapsed() < timeoutMs)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
}

} // namespace DeferredCalls
