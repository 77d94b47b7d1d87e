#pragma once

#include "PathCodec.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// A folder of files for tests, made from relative paths; each file holds its
// own first path, so where every content went can be read back.
class FileTree {
public:
    explicit FileTree(QString root) : m_root(std::move(root)) {}
    // Gone with whatever it holds, names that are not UTF-8 included.
    ~FileTree() { clear(); }
    FileTree(const FileTree &) = delete;
    FileTree &operator=(const FileTree &) = delete;

    void clear() const { removeTree(PathCodec::encode(m_root)); }

    const QString &root() const { return m_root; }
    QString path(const QString &relative) const { return m_root + u'/' + relative; }

    bool make(const QString &relative, const QByteArray &contents) const
    {
        const QByteArray full = PathCodec::encode(path(relative));
        for (qsizetype slash = full.indexOf('/', 1); slash > 0; slash = full.indexOf('/', slash + 1))
            mkdir(full.left(slash).constData(), 0755);
        const int descriptor = open(full.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (descriptor < 0)
            return false;
        const bool written = write(descriptor, contents.constData(), size_t(contents.size())) == contents.size();
        return close(descriptor) == 0 && written;
    }
    bool makeAll(const QStringList &relatives) const
    {
        for (const QString &relative : relatives)
            if (!make(relative, PathCodec::encode(relative)))
                return false;
        return true;
    }

    QByteArray read(const QString &relative) const
    {
        const int descriptor = open(PathCodec::encode(path(relative)).constData(), O_RDONLY);
        if (descriptor < 0)
            return "<missing>";
        QByteArray contents(4096, '\0');
        const ssize_t got = ::read(descriptor, contents.data(), size_t(contents.size()));
        close(descriptor);
        return contents.left(got < 0 ? 0 : got);
    }

    // Every file below the root, by relative path, with its contents.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> found;
        collect(QString(), found);
        return found;
    }

private:
    static void removeTree(const QByteArray &path)
    {
        struct stat info;
        if (lstat(path.constData(), &info) != 0)
            return;
        if (S_ISDIR(info.st_mode)) {
            if (DIR *listing = opendir(path.constData())) {
                while (const dirent *entry = readdir(listing))
                    if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0)
                        removeTree(path + '/' + entry->d_name);
                closedir(listing);
            }
            rmdir(path.constData());
        } else {
            unlink(path.constData());
        }
    }

    void collect(const QString &relative, QMap<QString, QByteArray> &found) const
    {
        const QString folder = relative.isEmpty() ? m_root : path(relative);
        DIR *listing = opendir(PathCodec::encode(folder).constData());
        if (!listing)
            return;
        while (const dirent *entry = readdir(listing)) {
            const QString name = PathCodec::decode(entry->d_name);
            if (name == QLatin1String(".") || name == QLatin1String(".."))
                continue;
            const QString inner = relative.isEmpty() ? name : relative + u'/' + name;
            struct stat info;
            if (lstat(PathCodec::encode(path(inner)).constData(), &info) == 0 && S_ISDIR(info.st_mode))
                collect(inner, found);
            else
                found.insert(inner, read(inner));
        }
        closedir(listing);
    }

    QString m_root;
};
