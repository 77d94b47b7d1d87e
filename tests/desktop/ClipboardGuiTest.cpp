// Runs on an X server (the test command starts a private one): the real
// CLIPBOARD selection, a real window and keystrokes posted through X Test.

#include "GuiWaiting.h"
#include "MiscMethods.h"
#include "TestPrinting.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMimeData>
#include <QVBoxLayout>
#include <QWidget>
#include <QWindow>
#include <gtest/gtest.h>

#include <X11/Xlib.h>

namespace {

using namespace GlobalKeys;

void putTwoFormats()
{
    auto *data = new QMimeData;
    data->setText(QStringLiteral("plain words"));
    data->setData(QStringLiteral("application/x-nomen-test"), QByteArray("\x00\x01\xfe\xff", 4));
    QApplication::clipboard()->setMimeData(data);
}

TEST(Clipboard, SavesAndRestoresEveryFormat)
{
    putTwoFormats();
    ASSERT_TRUE(QApplication::clipboard()->ownsClipboard()) << "we own the X CLIPBOARD selection";
    const QVariantMap saved = MiscMethods::returnClipboard();
    const QStringList types = saved.value(pbTypesKey).toStringList();
    EXPECT_TRUE(types.contains(QStringLiteral("text/plain")));
    EXPECT_TRUE(types.contains(QStringLiteral("application/x-nomen-test")));
    EXPECT_EQ(saved.value(returnDataKey).toList().size(), types.size());

    EXPECT_TRUE(MiscMethods::setClipboard(QStringLiteral("replacement")));
    EXPECT_EQ(MiscMethods::returnClipboardString(), QStringLiteral("replacement"));
    EXPECT_FALSE(QApplication::clipboard()->mimeData()->hasFormat(QStringLiteral("application/x-nomen-test")));

    MiscMethods::resetClipboard(saved);
    const QMimeData *back = QApplication::clipboard()->mimeData();
    EXPECT_EQ(back->text(), QStringLiteral("plain words"));
    EXPECT_EQ(back->data(QStringLiteral("application/x-nomen-test")), QByteArray("\x00\x01\xfe\xff", 4));
}

TEST(Clipboard, AnEmptyClipboardSavesAsEmptyListsAndRestoresEmpty)
{
    QApplication::clipboard()->clear();
    const QVariantMap saved = MiscMethods::returnClipboard();
    EXPECT_EQ(saved.value(returnDataKey).toList().size(), 0);
    EXPECT_EQ(saved.value(pbTypesKey).toStringList().size(), 0);
    EXPECT_EQ(MiscMethods::returnClipboardString(), std::nullopt);
    MiscMethods::setClipboard(QStringLiteral("something"));
    MiscMethods::resetClipboard(saved);
    EXPECT_EQ(MiscMethods::returnClipboardString(), std::nullopt);
}

TEST(Clipboard, AnEntryThatIsNotDataIsLoggedAndSkipped)
{
    const QVariantMap saved = {
        {pbTypesKey, QStringList{"text/plain", "application/x-bad"}},
        {returnDataKey, QVariantList{QVariantMap{{the_dataKey, 42}, {data_typeKey, "application/x-bad"}},
                                         QVariantMap{{the_dataKey, QByteArray("kept")},
                                                     {data_typeKey, "text/plain"}}}}};
    testing::internal::CaptureStderr();
    MiscMethods::resetClipboard(saved);
    const QString logged = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_EQ(MiscMethods::returnClipboardString(), QStringLiteral("kept"));
    EXPECT_TRUE(logged.contains(QStringLiteral("application/x-bad: application/x-bad"))) << logged.toStdString();
}

TEST(PasteAndRestore, PastesIntoTheFocusedFieldThenPutsTheOldClipboardBack)
{
    putTwoFormats();

    QWidget window;
    window.setWindowTitle(QStringLiteral("Nomen paste test"));
    auto *layout = new QVBoxLayout(&window);
    auto *field = new QLineEdit(&window);
    field->setPlaceholderText(QStringLiteral("paste lands here"));
    layout->addWidget(field);
    window.resize(420, 80);
    window.show();
    ASSERT_TRUE(waitFor([&] { return window.isVisible() && window.windowHandle()->isExposed(); }));
    // With no window manager on the test server, give the window the focus
    // the way one would.
    Display *display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    XSetInputFocus(display, Window(window.winId()), RevertToParent, CurrentTime);
    XSync(display, False);
    XCloseDisplay(display);
    field->setFocus();
    ASSERT_TRUE(waitFor([&] { return QApplication::focusWidget() == field && window.isActiveWindow(); }));

    MiscMethods::pasteAndRestore(QStringLiteral("IMG_0042 beach.jpg"));
    EXPECT_TRUE(waitFor([&] { return field->text() == QLatin1String("IMG_0042 beach.jpg"); })) << field->text().toStdString();

    // A screenshot of what a person would see.
    if (const QString file = screenshotFile(QStringLiteral("paste.png")); !file.isEmpty())
        window.grab().save(file);

    EXPECT_TRUE(waitFor([] { return MiscMethods::returnClipboardString() == QStringLiteral("plain words"); }));
    EXPECT_EQ(QApplication::clipboard()->mimeData()->data(QStringLiteral("application/x-nomen-test")),
              QByteArray("\x00\x01\xfe\xff", 4));
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
