#pragma once

#include "OpenFiles.h"

#include <QByteArray>
#include <QByteArrayView>
#include <cstddef>

// One file as every reader of it reads it: opened once, read where asked
// (pread, so readers need not share a position), its first bytes kept, and
// mapped whole only for a library that wants the file in memory.
class FileSource {
public:
    // Opens `path` for reading; isOpen() says whether that worked.
    explicit FileSource(const QByteArray &path);
    ~FileSource();
    FileSource(const FileSource &) = delete;
    FileSource &operator=(const FileSource &) = delete;

    bool isOpen() const { return m_file.isOpen(); }
    int descriptor() const { return m_file.get(); }
    qint64 size() const { return m_size; }
    // The first bytes of the file (a few kilobytes, or the whole of a small one).
    QByteArrayView head() const { return m_head; }

    // Exactly `length` bytes from `offset`, or false.
    bool read(qint64 offset, void *into, size_t length) const;
    // Up to `length` bytes from `offset`; shorter at the end of the file.
    QByteArray bytes(qint64 offset, qint64 length) const;
    // The whole file in memory, read-only; nullptr when it cannot be mapped.
    const unsigned char *mapped();

private:
    FileDescriptor m_file;
    qint64 m_size = 0;
    QByteArray m_head;
    // The last small read past the head, a block wide: the segment
    // headers that follow one another there are read with one call.
    mutable QByteArray m_window;
    mutable qint64 m_windowAt = -1;
    void *m_mapping = nullptr;
};
