// The window listing a very large folder, as a person would start it (the
// main script's handler for the folder field), timed as a command-line run:
// how long until the table is full, the peak memory, and the longest time
// the window went without handling its events.
//   bench_window_listing FOLDER

#include "MainScript.h"
#include "MethodTable.h"
#include "RZApplication.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QTimer>
#include <cstdio>
#include <sys/resource.h>

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_window_listing FOLDER\n");
        return 64;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    RZApplication application(argc, argv);
    const MethodRegistry methods = buildMethodTable();
    application.init(methods);
    MainScript script(application, methods);
    if (!script.load(RZApplication::resourceDirectory() + QStringLiteral("/main.js")))
        return 1;

    // A tick every 5 ms; the longest gap between two is how long the
    // window could not answer.
    QElapsedTimer clock;
    qint64 lastTick = 0, longestGap = 0, ticks = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        if (now - lastTick > 50 && qEnvironmentVariableIsSet("NOMEN_BENCH_GAPS"))
            std::fprintf(stderr, "gap of %lld ms ending at %lld ms\n", (long long)(now - lastTick), (long long)now);
        longestGap = std::max(longestGap, now - lastTick);
        lastTick = now;
        ++ticks;
    });
    tick.start(5);
    qobject_cast<QLineEdit *>(application.outlet(QStringLiteral("source_folder")))->setText(QString::fromLocal8Bit(argv[1]));
    clock.start();
    script.handle(QStringLiteral("clicked"), QStringLiteral("source_folder"));
    const qint64 listed = clock.elapsed();
    longestGap = std::max(longestGap, listed - lastTick);
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    std::printf("rows %d  listed and shown in %lld ms  longest time without events %lld ms (%lld ticks)  peak memory %ld MB\n",
                application.fileTableDataSource().rowCount(), (long long)listed, (long long)longestGap, (long long)ticks,
                usage.ru_maxrss / 1024);
    return 0;
}
