// What files say, in the window: columns chosen from the header's menu,
// filled aside, ordered by a click; names made from them as the rule is
// typed, a missing value told on its row; the columns remembered.

#include "MainWindowController.h"
#include "WindowDriver.h"

#include <QHeaderView>
#include <QMenu>
#include <QProcess>
#include <QSettings>
#include <QToolButton>

#include "SyntheticInput.h"

namespace {

using WindowTests::Window;

QStringList rowsOf(int column, const QStringList &names)
{
    QStringList found;
    const QStringList original = ::column(FileTableModel::Original);
    for (const QString &name : names)
        found.append(::column(column).value(original.indexOf(name)));
    return found;
}

TEST_F(Window, ColumnsOfWhatFilesSayComeFromTheHeaderAndNameFilesToo)
{
    for (const char *name : {"Canon_40D.jpg", "Nikon_D70.jpg", "IMG_5195.HEIC"})
        ASSERT_TRUE(QFile::copy(QStringLiteral(NOMEN_SHARED_TEST_DATA "/cameras/") + QLatin1String(name), folder.filePath(QLatin1String(name))));
    ASSERT_EQ(QProcess::execute(QStringLiteral("ffmpeg"), {"-loglevel", "error", "-y", "-f", "lavfi", "-i", "color=c=blue:s=1280x720:r=1:d=5.5",
                                                            "-c:v", "libx264", folder.filePath(QStringLiteral("clip.mp4"))}),
              0);
    showWindowAt(1200);
    listFolder(folder.path());
    FileTableView *table = fileTable();
    QHeaderView *header = table->horizontalHeader();
    for (int column = FileTableModel::firstMetadataColumn; column <= FileTableModel::lastMetadataColumn; ++column)
        EXPECT_TRUE(table->isColumnHidden(column)) << "only on request: " << column;

    // A right click on the header offers the columns; one is chosen.
    QStringList offered;
    QTimer::singleShot(300, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        for (QAction *action : menu->actions())
            if (!action->isSeparator())
                offered.append(action->text());
        screenshotOfScreen(QStringLiteral("window-column-menu.png"));
        menu->findChild<QAction *>(QStringLiteral("show_column_camera"))->trigger();
        menu->close();
    });
    SyntheticInput hand;
    ASSERT_TRUE(hand.usable());
    hand.moveTo(header->viewport()->mapToGlobal(QPoint(header->sectionViewportPosition(FileTableModel::Original) + 20, 5)));
    hand.button(true, 3);
    hand.button(false, 3);
    ASSERT_TRUE(waitFor([&] { return !offered.isEmpty(); })) << "the menu opened";
    EXPECT_EQ(offered, QStringList({"Thumbnails", "Camera", "Lens", "Dimensions", "Artist", "Album", "Title", "Duration"}));
    ASSERT_FALSE(table->isColumnHidden(FileTableModel::Camera));
    const QStringList files = {"Canon_40D.jpg", "Nikon_D70.jpg", "IMG_5195.HEIC", "clip.mp4"};
    ASSERT_TRUE(waitFor([&] { return rowsOf(FileTableModel::Camera, files).first() == QLatin1String("Canon EOS 40D"); }))
        << "read aside, then shown";
    EXPECT_EQ(rowsOf(FileTableModel::Camera, files), QStringList({"Canon EOS 40D", "NIKON D70", "Apple iPhone 11 Pro Max", ""}));
    application->mainWindow().showColumn(FileTableModel::Dimensions, true);
    application->mainWindow().showColumn(FileTableModel::Duration, true);
    ASSERT_TRUE(waitFor([&] { return !rowsOf(FileTableModel::Duration, files).last().isEmpty(); }));
    EXPECT_EQ(rowsOf(FileTableModel::Dimensions, files), QStringList({"100x68", "100x66", "2566x3313", "1280x720"}));
    EXPECT_EQ(rowsOf(FileTableModel::Duration, files), QStringList({"", "", "", "0.06"}));

    // A click on its header orders the rows by camera, those without one last.
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(FileTableModel::Camera) + 10, 5));
    EXPECT_EQ(::column(FileTableModel::Original), QStringList({"IMG_5195.HEIC", "Canon_40D.jpg", "Nikon_D70.jpg", "clip.mp4"}));

    // Names made from them as the rule is typed; a file without one says so.
    control<QLineEdit>("prefix")->setFocus();
    QTest::keyClicks(control<QLineEdit>("prefix"), QStringLiteral("«camera» «resolution» "));
    ASSERT_TRUE(waitFor([] { return ::column(FileTableModel::New).first() == QLatin1String("Apple iPhone 11 Pro Max 2566x3313 IMG_5195.HEIC"); }))
        << ::column(FileTableModel::New).join(u'|').toStdString();
    const FileTableModel &model = application->fileTableDataSource();
    ASSERT_TRUE(waitFor([&] { return !model.warningAt(3).isEmpty(); }));
    EXPECT_TRUE(model.data(model.index(3, FileTableModel::New), Qt::ToolTipRole).toString().startsWith("no camera recorded"))
        << model.warningAt(3).toStdString();
    EXPECT_EQ(model.warningAt(0), QString());
    screenshot(QStringLiteral("window-metadata-columns.png"));

    // The columns shown come back in the next run.
    script->handle(QStringLiteral("willQuit"));
    for (int column : {FileTableModel::Camera, FileTableModel::Dimensions, FileTableModel::Duration})
        application->mainWindow().showColumn(column, false);
    script->host().engine().evaluate(QStringLiteral("callMethod(application, 'restoreInterfaceState', [])"));
    EXPECT_FALSE(table->isColumnHidden(FileTableModel::Camera));
    EXPECT_FALSE(table->isColumnHidden(FileTableModel::Duration));
    EXPECT_TRUE(table->isColumnHidden(FileTableModel::Artist));
    for (int column : {FileTableModel::Camera, FileTableModel::Dimensions, FileTableModel::Duration})
        application->mainWindow().showColumn(column, false);
    header->setSortIndicator(FileTableModel::Original, Qt::AscendingOrder);
    EXPECT_NO_SURPRISES();
}

TEST_F(Window, TheTokenMenuOffersWhatFilesSay)
{
    listNewFolder({"a.jpg"});
    QMenu *menu = control<QToolButton>("suffix_tokens")->menu();
    QStringList offered;
    for (const QString kind : {"photograph", "music", "recording"}) {
        auto *submenu = menu->findChild<QMenu *>(QStringLiteral("suffix_tokens_menu_") + kind);
        ASSERT_NE(submenu, nullptr) << kind.toStdString();
        for (QAction *action : submenu->actions())
            offered.append(action->text().section(u'\t', 1));
    }
    EXPECT_EQ(offered, QStringList({"«camera»", "«make»", "«model»", "«lens»", "«iso»", "«aperture»", "«exposure»", "«focal»", "«width»",
                                    "«height»", "«artist»", "«albumartist»", "«album»", "«title»", "«track»", "«disc»", "«year»",
                                    "«genre»", "«duration»", "«resolution»"}));
    EXPECT_NO_SURPRISES();
}

} // namespace
