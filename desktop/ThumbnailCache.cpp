#include "ThumbnailCache.h"

#include "ErrnoText.h"
#include "OpenFiles.h"
#include "PathCodec.h"
#include "PathNames.h"
#include "UserFolders.h"

#include <QColorSpace>
#include <QCryptographicHash>
#include <QImageReader>
#include <QImageWriter>
#include <QBuffer>
#include <cerrno>
#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ThumbnailCache {

namespace {

QByteArray fileNameOf(const QByteArray &uri)
{
    return QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex() + ".png";
}

// The picture at `file`, when it is a thumbnail of `uri` as it was at
// `modified`.
std::optional<QImage> validAt(const QByteArray &file, const QByteArray &uri, qint64 modified)
{
    QFile opened;
    if (!openForReading(opened, file))
        return std::nullopt;
    // The texts are taken from the decoded picture: the reader's own look
    // at them before decoding takes a key to end at its first colon, and
    // these hold two (and some writers put them after the picture).
    QImageReader reader(&opened, "png");
    QImage picture = reader.read();
    if (picture.text(QStringLiteral("Thumb::URI")).toUtf8() != uri
        || picture.text(QStringLiteral("Thumb::MTime")) != QString::number(modified))
        return std::nullopt;
    return picture.isNull() ? std::nullopt : std::optional(picture);
}

// The PNG written beside its place under a name of its own, then renamed
// over it, so a reader never sees half of one.
Result<> writeInPlace(const QByteArray &folderPath, const QByteArray &name, const QImage &picture,
                      const QList<std::pair<QString, QString>> &keys)
{
    if (const auto made = makeFolders(folderPath, 0700); !made)
        return made;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    // Keys set on the picture, not the writer: the writer takes a key to
    // end at its first colon, and each of these holds two.
    QImage keyed = picture;
    // In sRGB, which is what thumbnails are read as, and without a profile.
    if (keyed.colorSpace().isValid() && keyed.colorSpace() != QColorSpace(QColorSpace::SRgb))
        keyed.convertToColorSpace(QColorSpace::SRgb);
    keyed.setColorSpace(QColorSpace());
    for (const auto &[key, value] : keys)
        keyed.setText(key, value);
    QImageWriter writer(&buffer, "png");
    if (!writer.write(keyed))
        return Failure{QStringLiteral("a thumbnail cannot be written: %1").arg(writer.errorString())};
    const QByteArray target = folderPath + '/' + name;
    const QByteArray aside = PathNames::hiddenNameBeside(target, "thumbnail");
    int error = 0;
    {
        FileDescriptor written(open(aside.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!written.isOpen())
            return Failure{QStringLiteral("\"%1\" cannot be written: %2").arg(PathCodec::decode(aside), errnoText(errno))};
        error = writeAll(written.get(), png.constData(), size_t(png.size()));
        if (!error)
            error = written.close();
    }
    if (error) {
        unlink(aside.constData());
        return Failure{QStringLiteral("\"%1\" cannot be written: %2").arg(PathCodec::decode(aside), errnoText(error))};
    }
    if (rename(aside.constData(), target.constData()) != 0) {
        const int error = errno;
        unlink(aside.constData());
        return Failure{QStringLiteral("\"%1\" cannot be put in place: %2").arg(PathCodec::decode(target), errnoText(error))};
    }
    return {};
}

} // namespace

QByteArray uriOf(const QByteArray &path)
{
    gchar *uri = g_filename_to_uri(path.constData(), nullptr, nullptr);
    if (!uri)
        return QByteArray();
    QByteArray answer(uri);
    g_free(uri);
    return answer;
}

QByteArray folder()
{
    return PathCodec::encode(UserFolders::cacheHome()) + "/thumbnails";
}

std::optional<QImage> cached(const QByteArray &path, qint64 modified)
{
    const QByteArray uri = uriOf(path);
    if (uri.isEmpty())
        return std::nullopt;
    const QByteArray name = fileNameOf(uri);
    for (const char *size : {"normal", "large"})
        if (auto picture = validAt(folder() + '/' + size + '/' + name, uri, modified))
            return picture;
    return std::nullopt;
}

bool failedBefore(const QByteArray &path, qint64 modified)
{
    const QByteArray uri = uriOf(path);
    return !uri.isEmpty()
           && validAt(folder() + "/fail/nomen-" NOMEN_VERSION "/" + fileNameOf(uri), uri, modified).has_value();
}

Result<> store(const QByteArray &path, qint64 modified, qint64 size, const QString &mimeType, const QImage &picture)
{
    const QByteArray uri = uriOf(path);
    if (uri.isEmpty())
        return Failure{QStringLiteral("\"%1\" has no URI").arg(PathCodec::decode(path))};
    return writeInPlace(folder() + "/normal", fileNameOf(uri), picture,
                        {{QStringLiteral("Thumb::URI"), QString::fromUtf8(uri)},
                         {QStringLiteral("Thumb::MTime"), QString::number(modified)},
                         {QStringLiteral("Thumb::Size"), QString::number(size)},
                         {QStringLiteral("Thumb::Mimetype"), mimeType},
                         {QStringLiteral("Software"), QStringLiteral("Nomen " NOMEN_VERSION)}});
}

Result<> storeFailure(const QByteArray &path, qint64 modified)
{
    const QByteArray uri = uriOf(path);
    if (uri.isEmpty())
        return Failure{QStringLiteral("\"%1\" has no URI").arg(PathCodec::decode(path))};
    QImage mark(1, 1, QImage::Format_ARGB32);
    mark.fill(Qt::transparent);
    return writeInPlace(folder() + "/fail/nomen-" NOMEN_VERSION, fileNameOf(uri), mark,
                        {{QStringLiteral("Thumb::URI"), QString::fromUtf8(uri)},
                         {QStringLiteral("Thumb::MTime"), QString::number(modified)},
                         {QStringLiteral("Software"), QStringLiteral("Nomen " NOMEN_VERSION)}});
}

} // namespace ThumbnailCache
