#include "ThumbnailLoader.h"

#include "OpenFiles.h"
#include "PathCodec.h"
#include "SmallPictures.h"
#include "ThumbnailCache.h"

#include <QFile>
#include <QImageReader>
#include <QMimeDatabase>
#include <QTransform>
#include <deque>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A photograph's EXIF orientation applied to a picture that does not apply
// it itself (a camera's small thumbnail).
QImage turned(const QImage &picture, int orientation)
{
    const bool mirrored = orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
    const int degrees = orientation == 3 || orientation == 4 ? 180 : orientation == 5 || orientation == 8 ? 270
                        : orientation == 6 || orientation == 7                                          ? 90
                                                                                                         : 0;
    QImage result = mirrored ? picture.mirrored(true, false) : picture;
    return degrees ? result.transformed(QTransform().rotate(degrees)) : result;
}

// The file's picture, at most `side` pixels a side: a small one it carries
// when that is large enough, else its picture read through the file
// (opened by its own bytes, so any name will do).
QImage made(const QByteArray &path, int side)
{
    if (const auto small = SmallPictures::of(path, side)) {
        if (!small->pixels.rgba.empty())
            return QImage(small->pixels.rgba.data(), small->pixels.width, small->pixels.height, small->pixels.stride,
                          QImage::Format_RGBA8888)
                .copy();
        const QImage thumbnail = QImage::fromData(small->jpeg, "JPEG");
        if (!thumbnail.isNull() && std::max(thumbnail.width(), thumbnail.height()) >= side)
            return turned(thumbnail, small->orientation);
    }
    QFile file;
    if (!openForReading(file, path))
        return QImage();
    QImageReader reader(&file);
    reader.setAutoTransform(true);
    if (const QSize size = reader.size(); size.isValid() && (size.width() > side || size.height() > side))
        reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio));
    return reader.read();
}

// What the column shows for the file: the cache's picture, else one made
// and written to the cache; none for a file no picture can be had of (and
// that is written to the cache too, for a picture that cannot be read).
QImage fetched(const QString &name, qint64 modifiedMs, int side)
{
    const QByteArray path = PathCodec::encode(name);
    // The cache's own pictures are not pictured again.
    if (path.startsWith(ThumbnailCache::folder() + '/'))
        return QImage();
    const qint64 modified = modifiedMs / 1000;
    std::optional<QImage> picture = ThumbnailCache::cached(path, modified);
    if (!picture && !ThumbnailCache::failedBefore(path, modified)) {
        // The type by the name, else by the first bytes (read by the
        // file's own bytes, as a name Qt cannot spell would not be).
        QFile file;
        const QMimeType type = openForReading(file, path) ? QMimeDatabase().mimeTypeForFileNameAndData(name, &file)
                                                          : QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension);
        file.close();
        if (type.name().startsWith(QLatin1String("image/"))) {
            const QImage normal = made(path, ThumbnailCache::normalSize);
            struct stat status;
            const qint64 size = lstat(path.constData(), &status) == 0 ? qint64(status.st_size) : 0;
            if (normal.isNull())
                (void)ThumbnailCache::storeFailure(path, modified);
            else
                (void)ThumbnailCache::store(path, modified, size, type.name(), normal);
            if (!normal.isNull())
                picture = normal;
        }
    }
    if (!picture || picture->isNull())
        return QImage();
    return picture->width() > side || picture->height() > side
               ? picture->scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
               : *picture;
}

} // namespace

struct ThumbnailLoader::Queue {
    struct Ask {
        QString path;
        qint64 modified;
    };
    std::mutex lock;
    std::deque<Ask> asks; // the newest first
    int working = 0;      // workers fetching
    bool closing = false;
};

ThumbnailLoader::ThumbnailLoader(int side, QObject *parent)
    : QObject(parent), m_side(side), m_queue(std::make_shared<Queue>())
{
    // About twenty screens of rows at hand.
    m_pixmaps.setMaxCost(1500);
    m_workers.setMaxThreadCount(2);
    // Pictures are made with what the window leaves over: on a machine
    // of two cores, two workers at the usual priority made typing wait.
    m_workers.setThreadPriority(QThread::IdlePriority);
}

ThumbnailLoader::~ThumbnailLoader()
{
    {
        const std::lock_guard guard(m_queue->lock);
        m_queue->closing = true;
        m_queue->asks.clear();
    }
    m_workers.waitForDone();
}

QPixmap ThumbnailLoader::pixmap(const QString &path, qint64 modified)
{
    if (const QPixmap *known = m_pixmaps.object(path))
        return *known;
    if (m_none.contains(path) || m_asked.contains(path))
        return QPixmap();
    m_asked.insert(path);
    // A screen or two of rows ahead of the rest; the others are dropped
    // and asked for again when shown.
    constexpr size_t waiting = 200;
    bool anotherWorker = false;
    {
        const std::lock_guard guard(m_queue->lock);
        m_queue->asks.push_front({path, modified});
        while (m_queue->asks.size() > waiting) {
            m_asked.remove(m_queue->asks.back().path);
            m_queue->asks.pop_back();
        }
        anotherWorker = m_queue->working < m_workers.maxThreadCount();
        if (anotherWorker)
            ++m_queue->working;
    }
    if (anotherWorker)
        m_workers.start([this, queue = m_queue] {
            for (;;) {
                Queue::Ask ask;
                {
                    const std::lock_guard guard(queue->lock);
                    if (queue->closing || queue->asks.empty()) {
                        --queue->working;
                        return;
                    }
                    ask = queue->asks.front();
                    queue->asks.pop_front();
                }
                const QImage picture = fetched(ask.path, ask.modified, m_side);
                QMetaObject::invokeMethod(this, [this, path = ask.path, picture] { take(path, picture); }, Qt::QueuedConnection);
            }
        });
    return QPixmap();
}

void ThumbnailLoader::take(const QString &path, const QImage &picture)
{
    m_asked.remove(path);
    if (picture.isNull())
        m_none.insert(path);
    else
        m_pixmaps.insert(path, new QPixmap(QPixmap::fromImage(picture)));
    emit ready(path);
}
