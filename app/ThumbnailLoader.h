#pragma once

#include <QCache>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QString>
#include <QThreadPool>
#include <memory>

// Pictures for the table's thumbnail column, fetched aside so scrolling
// and typing never wait for them: from the desktop's thumbnail cache (what
// the file managers made), else made from the file and written to that
// cache for them too, else none (the row shows its file type's icon).
// What was asked last is fetched first, so the rows on screen come first
// while scrolling; asks that fall far behind are dropped, to be asked again
// if their rows come back into sight.
class ThumbnailLoader : public QObject {
    Q_OBJECT
public:
    // Pictures at most `side` pixels a side.
    explicit ThumbnailLoader(int side, QObject *parent = nullptr);
    ~ThumbnailLoader() override;

    int side() const { return m_side; }
    // The picture of the file as it was modified then (milliseconds), if
    // at hand; else a null pixmap, and it is fetched.
    QPixmap pixmap(const QString &path, qint64 modified);
    // Whether the file has no picture to show.
    bool hasNone(const QString &path) const { return m_none.contains(path); }

signals:
    void ready(const QString &path);

private:
    struct Queue;
    void take(const QString &path, const QImage &picture);

    const int m_side;
    QCache<QString, QPixmap> m_pixmaps;
    QSet<QString> m_none;
    QSet<QString> m_asked; // fetched or waiting
    std::shared_ptr<Queue> m_queue;
    QThreadPool m_workers;
};
