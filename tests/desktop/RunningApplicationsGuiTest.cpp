// Runs on a private X server with a window manager (the test command starts
// both): applications are the processes behind the managed windows.

#include "GuiWaiting.h"
#include "MiscMethods.h"
#include "PathConversion.h"
#include "TestPrinting.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QScreen>
#include "TemporaryFolder.h"
#include <QWidget>
#include <QWindow>
#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include "WindowProperties.h"
#include <memory>

using M = MiscMethods;

namespace {

struct Client {
    std::unique_ptr<QProcess> process;
    unsigned long window = 0;
};

// Another process with one window of the given class; it prints its window.
Client startClient(const QString &windowClass)
{
    Client client{std::make_unique<QProcess>()};
    client.process->start(QCoreApplication::applicationFilePath(), {QStringLiteral("--client"), windowClass});
    if (client.process->waitForReadyRead(10000))
        client.window = client.process->readLine().trimmed().toULong();
    return client;
}

QVariantMap applicationOf(qint64 pid)
{
    for (const QVariant &application : M::returnLaunchedApplications())
        if (application.toMap().value("NSApplicationProcessIdentifier").toLongLong() == pid)
            return application.toMap();
    return {};
}


TEST(RunningApplications, AreTheProcessesBehindTheManagedWindows)
{
    ASSERT_TRUE(waitFor([] { return !windowProperty(0, "_NET_SUPPORTING_WM_CHECK").isEmpty(); }, 10000))
        << "the window manager did not start";
    QWidget own;
    own.setWindowTitle(QStringLiteral("Nomen test"));
    own.resize(300, 200);
    own.show();
    Client named = startClient(QStringLiteral("nomen-test-named"));
    Client claimed = startClient(QStringLiteral("NomenTestClient"));
    ASSERT_NE(named.window, 0u);
    ASSERT_NE(claimed.window, 0u);
    const qint64 me = QCoreApplication::applicationPid();
    ASSERT_TRUE(waitFor([&] {
        return !applicationOf(named.process->processId()).isEmpty() && !applicationOf(claimed.process->processId()).isEmpty() &&
               !applicationOf(me).isEmpty();
    }));

    const QString program = QCoreApplication::applicationFilePath();
    EXPECT_EQ(applicationOf(claimed.process->processId()),
              QVariantMap({{"NSApplicationName", "Claimed Client"},
                           {"NSApplicationPath", program},
                           {"NSApplicationProcessIdentifier", int(claimed.process->processId())},
                           {"NSApplicationBundleIdentifier", "org.example.Claimed"}}))
        << "found by the entry's StartupWMClass";
    EXPECT_EQ(applicationOf(named.process->processId()).value("NSApplicationBundleIdentifier"),
              QVariant("nomen-test-named"))
        << "found by the entry named after the class";
    EXPECT_EQ(applicationOf(named.process->processId()).value("NSApplicationName"), QVariant("Named Client"));
    EXPECT_FALSE(applicationOf(me).contains("NSApplicationBundleIdentifier")) << "no entry claims this one";
    EXPECT_EQ(M::returnLaunchedApplications().size(), 3);
    EXPECT_EQ(M::returnLaunchedApplicationProperty("NSApplicationPath", true),
              QVariantList(3, PathConversion::pathHFS(program)));
    EXPECT_EQ(M::returnLaunchedApplicationProperty("NSApplicationBundleIdentifier", false),
              QVariantList({"nomen-test-named", "org.example.Claimed"}))
        << "only those that have the key, in the window manager's order";

    // The window manager gives the newest window the focus.
    EXPECT_TRUE(waitFor([&] {
        return M::returnCurrentApplication().toMap().value("NSApplicationProcessIdentifier") ==
               QVariant(int(claimed.process->processId()));
    })) << M::returnCurrentApplication().toMap().value("NSApplicationName").toString().toStdString();

    M::hideOtherApplications();
    EXPECT_TRUE(waitFor([&] {
        return windowProperty(named.window, "WM_STATE").value(0) == static_cast<unsigned long>(IconicState) &&
               windowProperty(claimed.window, "WM_STATE").value(0) == static_cast<unsigned long>(IconicState);
    }));
    EXPECT_NE(windowProperty(own.winId(), "WM_STATE").value(0), static_cast<unsigned long>(IconicState)) << "our own window stays";

    for (Client *client : {&named, &claimed}) {
        client->process->kill();
        client->process->waitForFinished();
    }
}

TEST(Poof, PlaysAtTheBottomLeftPointAndCloses)
{
    const int screenHeight = QGuiApplication::primaryScreen()->geometry().height();
    // A light window behind the point, so the screenshot shows the puff.
    QWidget backdrop(nullptr, Qt::FramelessWindowHint);
    backdrop.setStyleSheet(QStringLiteral("background: #d8e4f0"));
    backdrop.setGeometry(0, screenHeight - 300, 300, 300);
    backdrop.show();
    ASSERT_TRUE(waitFor([&] { return backdrop.isVisible() && backdrop.windowHandle()->isExposed(); }));
    M::poof(QStringLiteral("{100, 150}"));
    QWidget *puff = nullptr;
    ASSERT_TRUE(waitFor([&] {
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget != &backdrop)
                puff = widget;
        return puff != nullptr;
    }));
    EXPECT_EQ(QRectF(puff->geometry()).center(), QPointF(100, screenHeight - 150))
        << "centred on the point, y counted up from the bottom";
    EXPECT_TRUE(puff->testAttribute(Qt::WA_TransparentForMouseEvents) ||
                puff->windowFlags().testFlag(Qt::WindowTransparentForInput));
    if (const QString file = screenshotFile(QStringLiteral("poof.png")); !file.isEmpty()) {
        waitFor([] { return false; }, 60);
        QGuiApplication::primaryScreen()->grabWindow(0, 0, screenHeight - 300, 300, 300).save(file);
    }
    EXPECT_TRUE(waitFor([&] {
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget != &backdrop)
                return false;
        return true;
    }, 3000)) << "the puff closes itself";
}

// A client: one window of the given class; prints its window and waits.
int runClient(QApplication &application, const QString &windowClass)
{
    QWidget window;
    window.setWindowTitle(windowClass);
    window.resize(240, 120);
    const WId id = window.winId();
    if (Display *display = XOpenDisplay(nullptr)) {
        QByteArray name = "nomenclient", klass = windowClass.toLatin1();
        XClassHint hint{name.data(), klass.data()};
        XSetClassHint(display, id, &hint);
        XCloseDisplay(display);
    }
    window.show();
    printf("%lu\n", static_cast<unsigned long>(id));
    fflush(stdout);
    return application.exec();
}

void writeEntry(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(contents);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc == 3 && QByteArray(argv[1]) == "--client")
        return runClient(application, QString::fromLatin1(argv[2]));
    // Desktop entries of our own, installed before anything reads them.
    TemporaryFolder data;
    QDir(data.path()).mkpath(QStringLiteral("applications"));
    writeEntry(data.filePath("applications/org.example.Claimed.desktop"),
               "[Desktop Entry]\nType=Application\nName=Claimed Client\nExec=true\nStartupWMClass=NomenTestClient\n");
    writeEntry(data.filePath("applications/nomen-test-named.desktop"),
               "[Desktop Entry]\nType=Application\nName=Named Client\nExec=true\n");
    qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
