// Thumbnails in the window: on for folders of pictures, taken from the
// desktop's thumbnail cache when it holds a fresh one, else made aside and
// written there as file managers expect; a file with no picture shows its
// type's icon; the person's choice from the header's menu is kept.

#include "MainWindowController.h"
#include "PathCodec.h"
#include "WindowDriver.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QHeaderView>
#include <QProcess>
#include <QSettings>
#include <QUrl>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using WindowTests::Window;

QString cachedFile(const QString &size, const QString &path)
{
    const QByteArray uri = QUrl::fromLocalFile(path).toEncoded();
    return QString::fromLocal8Bit(qgetenv("XDG_CACHE_HOME")) + QStringLiteral("/thumbnails/") + size + u'/'
           + QString::fromLatin1(QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex()) + QStringLiteral(".png");
}

qint64 modifiedSeconds(const QString &path)
{
    return QFileInfo(path).lastModified().toSecsSinceEpoch();
}

// A thumbnail as a file manager writes one.
void writeCached(const QString &path, qint64 modified, const QColor &colour)
{
    QImage picture(128, 96, QImage::Format_RGB32);
    picture.fill(colour);
    QDir().mkpath(QFileInfo(cachedFile(QStringLiteral("normal"), path)).path());
    picture.setText(QStringLiteral("Thumb::URI"), QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded()));
    picture.setText(QStringLiteral("Thumb::MTime"), QString::number(modified));
    ASSERT_TRUE(picture.save(cachedFile(QStringLiteral("normal"), path), "PNG"));
}

QColor centreOf(const QVariant &decoration)
{
    const QImage picture = decoration.value<QPixmap>().toImage();
    return picture.isNull() ? QColor() : picture.pixelColor(picture.width() / 2, picture.height() / 2);
}

bool near(const QColor &seen, const QColor &wanted)
{
    return seen.isValid() && std::abs(seen.red() - wanted.red()) < 40 && std::abs(seen.green() - wanted.green()) < 40
           && std::abs(seen.blue() - wanted.blue()) < 40;
}

TEST_F(Window, ThumbnailsComeFromTheDesktopsCacheOrAreMadeForItAndAFileWithoutOneShowsItsType)
{
    QSettings().remove(QStringLiteral("columns/thumbnails"));
    QImage red(640, 480, QImage::Format_RGB32);
    red.fill(QColor(220, 20, 20));
    const QString fresh = folder.filePath(QStringLiteral("cached one.jpg"));
    const QString stale = folder.filePath(QStringLiteral("stale.jpg"));
    const QString made = folder.filePath(QStringLiteral("Фото.jpg"));
    for (const QString &path : {fresh, stale, made})
        ASSERT_TRUE(red.save(path, "JPEG"));
    // A picture whose name is not UTF-8 is pictured too.
    const QByteArray unnamed = PathCodec::encode(folder.path()) + "/caf\xe9.jpg";
    {
        QFile source(made);
        ASSERT_TRUE(source.open(QIODevice::ReadOnly));
        const QByteArray bytes = source.readAll();
        const int out = open(unnamed.constData(), O_WRONLY | O_CREAT | O_EXCL, 0644);
        ASSERT_GE(out, 0);
        ASSERT_EQ(write(out, bytes.constData(), size_t(bytes.size())), bytes.size());
        ASSERT_EQ(close(out), 0);
    }
    makeFiles(folder.path(), {"broken.jpg", "notes.txt"});
    writeCached(fresh, modifiedSeconds(fresh), QColor(20, 20, 220));
    writeCached(stale, modifiedSeconds(stale) - 60, QColor(20, 220, 20));

    showWindowAt(1060);
    listFolder(folder.path());
    FileTableView *table = fileTable();
    ASSERT_FALSE(table->isColumnHidden(FileTableModel::Thumbnail)) << "on for a folder of pictures";
    EXPECT_GE(table->verticalHeader()->defaultSectionSize(), 64);
    const FileTableModel &model = application->fileTableDataSource();
    const auto picture = [&](const QString &name) {
        return model.data(model.index(int(column(FileTableModel::Original).indexOf(name)), FileTableModel::Thumbnail),
                          Qt::DecorationRole);
    };
    const QString unnamedText = PathCodec::decode(unnamed).section(u'/', -1);
    ASSERT_TRUE(waitFor([&] {
        for (const QString &name : {QStringLiteral("cached one.jpg"), QStringLiteral("stale.jpg"), QStringLiteral("Фото.jpg"), unnamedText})
            if (!near(centreOf(picture(name)), QColor(220, 20, 20)) && !near(centreOf(picture(name)), QColor(20, 20, 220)))
                return false;
        return true;
    }, 10000)) << "fetched aside, then shown";
    EXPECT_TRUE(near(centreOf(picture(QStringLiteral("cached one.jpg"))), QColor(20, 20, 220))) << "the file manager's";
    for (const QString &name : {QStringLiteral("stale.jpg"), QStringLiteral("Фото.jpg"), unnamedText})
        EXPECT_TRUE(near(centreOf(picture(name)), QColor(220, 20, 20))) << name.toStdString();
    const QSize shown = picture(QStringLiteral("Фото.jpg")).value<QPixmap>().size();
    EXPECT_EQ(std::max(shown.width(), shown.height()), 64);

    // What was made is in the cache, as the file managers read it.
    for (const QString &path : {stale, made}) {
        const QString file = cachedFile(QStringLiteral("normal"), path);
        const QImage written(file, "PNG");
        EXPECT_EQ(written.text(QStringLiteral("Thumb::URI")), QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded()));
        EXPECT_EQ(written.text(QStringLiteral("Thumb::MTime")), QString::number(modifiedSeconds(path)));
        EXPECT_EQ(written.size(), QSize(128, 96)) << path.toStdString();
        EXPECT_EQ(QFileInfo(file).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
    }
    // A picture that cannot be read, and a text, show their type's icons;
    // the failure is noted so the next run does not try again.
    const QString broken = folder.filePath(QStringLiteral("broken.jpg"));
    ASSERT_TRUE(waitFor([&] { return QFileInfo::exists(cachedFile(QStringLiteral("fail/nomen-" NOMEN_VERSION), broken)); }));
    for (const char *name : {"broken.jpg", "notes.txt"}) {
        const QSize icon = picture(QLatin1String(name)).value<QPixmap>().size();
        EXPECT_TRUE(icon.isValid() && icon.width() <= 32) << name;
    }
    screenshot(QStringLiteral("window-thumbnails.png"));

    // Turned off from the header's menu, it stays off for the next folder
    // of pictures; a folder of texts shows none until asked.
    application->mainWindow().showColumn(FileTableModel::Thumbnail, false);
    EXPECT_TRUE(table->isColumnHidden(FileTableModel::Thumbnail));
    listFolder(folder.path());
    EXPECT_TRUE(table->isColumnHidden(FileTableModel::Thumbnail));
    EXPECT_LT(table->verticalHeader()->defaultSectionSize(), 40);
    QSettings().remove(QStringLiteral("columns/thumbnails"));
    TemporaryFolder texts;
    makeFiles(texts.path(), {"a.txt", "b.txt", "c.jpg"});
    listFolder(texts.path());
    EXPECT_TRUE(table->isColumnHidden(FileTableModel::Thumbnail));
    application->mainWindow().showColumn(FileTableModel::Thumbnail, true);
    EXPECT_FALSE(table->isColumnHidden(FileTableModel::Thumbnail));
    QSettings().remove(QStringLiteral("columns/thumbnails"));
    listFolder(folder.path());
    EXPECT_NO_SURPRISES();
}

// Camera files: pictured from the small pictures they carry (a HEIC's
// through its reader module), upright and in their own proportions.
TEST_F(Window, CameraPicturesAreShownUpright)
{
    QSettings().remove(QStringLiteral("columns/thumbnails"));
    for (const char *name : {"IMG_5195.HEIC", "Canon_40D.jpg", "DSCN0010.jpg"})
        ASSERT_TRUE(QFile::copy(QStringLiteral(NOMEN_SHARED_TEST_DATA "/cameras/") + QLatin1String(name), folder.filePath(QLatin1String(name))));
    // Held sideways: the camera's own small picture is turned upright too.
    const QString turned = folder.filePath(QStringLiteral("turned.jpg"));
    ASSERT_TRUE(QFile::copy(folder.filePath(QStringLiteral("DSCN0010.jpg")), turned));
    ASSERT_EQ(QProcess::execute(QStringLiteral("exiftool"), {"-q", "-overwrite_original", "-n", "-Orientation=6", turned}), 0);
    showWindowAt(1060);
    listFolder(folder.path());
    const FileTableModel &model = application->fileTableDataSource();
    const auto shown = [&](const char *name) {
        const int row = int(column(FileTableModel::Original).indexOf(QLatin1String(name)));
        return model.data(model.index(row, FileTableModel::Thumbnail), Qt::DecorationRole).value<QPixmap>().size();
    };
    // Sizes as exiftool reads them, turned as the files say.
    const std::pair<const char *, QSize> expected[] = {
        {"IMG_5195.HEIC", QSize(2566, 3313).scaled(64, 64, Qt::KeepAspectRatio)},
        {"Canon_40D.jpg", QSize(100, 68).scaled(64, 64, Qt::KeepAspectRatio)},
        {"DSCN0010.jpg", QSize(640, 480).scaled(64, 64, Qt::KeepAspectRatio)},
        {"turned.jpg", QSize(480, 640).scaled(64, 64, Qt::KeepAspectRatio)}};
    ASSERT_TRUE(waitFor([&] {
        return std::all_of(std::begin(expected), std::end(expected), [&](const auto &file) { return shown(file.first).width() > 32; });
    }, 15000));
    for (const auto &[name, size] : expected) {
        EXPECT_LE(std::abs(shown(name).width() - size.width()), 1) << name;
        EXPECT_LE(std::abs(shown(name).height() - size.height()), 1) << name;
    }
    QSettings().remove(QStringLiteral("columns/thumbnails"));
    EXPECT_NO_SURPRISES();
}

} // namespace
