// The window scrolling a folder of photographs with thumbnails shown, as a
// person drags the scroll bar down it and types while the pictures come:
// the longest time the window went without handling its events, the
// longest a keystroke waited to be shown, how long one screen took to
// draw, and how long until the screen scrolled to last was all pictures.
// The thumbnail cache starts empty (the worst case: every picture made
// here) unless KEEP_CACHE is set.
//   bench_window_thumbnails FOLDER

#include "FileTableModel.h"
#include "MainWindowController.h"
#include "MainScript.h"
#include "MethodTable.h"
#include "PathCodec.h"
#include "RZApplication.h"
#include "TemporaryFolder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>
#include <QKeyEvent>
#include <QTimer>
#include <cstdio>
#include <sys/resource.h>

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_window_thumbnails FOLDER\n");
        return 64;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    TemporaryFolder cache;
    if (qEnvironmentVariableIsEmpty("KEEP_CACHE"))
        qputenv("XDG_CACHE_HOME", PathCodec::encode(cache.path()));
    TemporaryFolder config;
    qputenv("XDG_CONFIG_HOME", PathCodec::encode(config.path()));
    RZApplication application(argc, argv);
    const MethodRegistry methods = buildMethodTable();
    application.init(methods);
    MainScript script(application, methods);
    if (!script.load(RZApplication::resourceDirectory() + QStringLiteral("/main.js")))
        return 1;
    application.window()->resize(1200, 900);
    application.window()->show();
    auto *table = qobject_cast<QTableView *>(application.outlet(QStringLiteral("fileTable")));
    auto *prefix = qobject_cast<QLineEdit *>(application.outlet(QStringLiteral("prefix")));
    qobject_cast<QLineEdit *>(application.outlet(QStringLiteral("source_folder")))->setText(QString::fromLocal8Bit(argv[1]));
    script.handle(QStringLiteral("clicked"), QStringLiteral("source_folder"));
    if (table->isColumnHidden(FileTableModel::Thumbnail) && qEnvironmentVariableIsEmpty("NO_THUMBNAILS")) {
        std::fprintf(stderr, "no thumbnails shown: not a folder of pictures?\n");
        return 1;
    }
    // For comparison: the same scrolling and typing without pictures.
    if (!qEnvironmentVariableIsEmpty("NO_THUMBNAILS"))
        application.mainWindow().showColumn(FileTableModel::Thumbnail, false);
    const FileTableModel &model = application.fileTableDataSource();
    QCoreApplication::processEvents(); // laid out, so a screen is a screen

    QElapsedTimer clock;
    qint64 lastTick = 0, longestGap = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        longestGap = std::max(longestGap, clock.elapsed() - lastTick);
        lastTick = clock.elapsed();
    });
    tick.start(5);
    clock.start();

    // A screen down every 50 ms to the end, a keystroke every fifth step.
    QScrollBar *bar = table->verticalScrollBar();
    const int screen = std::max(1, bar->pageStep());
    qint64 longestDraw = 0, longestKey = 0, steps = 0;
    QEventLoop loop;
    QTimer step;
    QObject::connect(&step, &QTimer::timeout, [&] {
        QElapsedTimer drawing;
        drawing.start();
        bar->setValue(bar->value() + screen);
        table->viewport()->repaint();
        longestDraw = std::max(longestDraw, drawing.elapsed());
        if (++steps % 5 == 0) {
            QElapsedTimer typing;
            typing.start();
            QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
            QKeyEvent release(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
            QCoreApplication::sendEvent(prefix, &press);
            QCoreApplication::sendEvent(prefix, &release);
            prefix->repaint();
            longestKey = std::max(longestKey, typing.elapsed());
        }
        if (bar->value() >= bar->maximum())
            loop.quit();
    });
    step.start(50);
    loop.exec();
    step.stop();
    const qint64 scrolled = clock.elapsed();

    // The last screen's pictures, once they came.
    const auto lastScreenShown = [&] {
        const int first = table->rowAt(0);
        const int last = std::min(model.rowCount() - 1, first + table->viewport()->height() / table->rowHeight(first));
        for (int row = first; row <= last; ++row)
            if (model.data(model.index(row, FileTableModel::Thumbnail), Qt::DecorationRole).value<QPixmap>().width() <= 32)
                return false;
        return true;
    };
    while (!table->isColumnHidden(FileTableModel::Thumbnail) && !lastScreenShown() && clock.elapsed() - scrolled < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    const qint64 settled = clock.elapsed() - scrolled;

    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    std::printf("rows %d  %lld screens in %lld ms  longest time without events %lld ms  longest screen drawn %lld ms  "
                "longest keystroke %lld ms  last screen's pictures %lld ms after  peak memory %ld MB\n",
                model.rowCount(), (long long)steps, (long long)scrolled, (long long)longestGap, (long long)longestDraw,
                (long long)longestKey, (long long)settled, usage.ru_maxrss / 1024);
    return 0;
}
