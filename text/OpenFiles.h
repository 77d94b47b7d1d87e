#pragma once

#include "Result.h"

#include <QByteArray>
#include <QFile>
#include <dirent.h>
#include <sys/types.h>

// A file descriptor that closes itself. close() is there for the writer
// that must know whether its last bytes reached the file.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor();
    FileDescriptor(FileDescriptor &&other) noexcept : m_descriptor(other.release()) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept;
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    int release();
    // Closes now: 0, or the errno of a close that failed (EINTR counts as
    // closed).
    int close();

private:
    int m_descriptor = -1;
};

// The entries of a folder, read once, "." and ".." left out; the stream
// closes itself.
class FolderEntries {
public:
    explicit FolderEntries(const QByteArray &path);
    // Reads the folder open at `descriptor`, which it takes over.
    explicit FolderEntries(FileDescriptor descriptor);
    ~FolderEntries();
    FolderEntries(const FolderEntries &) = delete;
    FolderEntries &operator=(const FolderEntries &) = delete;

    bool isOpen() const { return m_stream != nullptr; }
    int error() const { return m_error; } // errno of opening or of reading
    int descriptor() const { return m_stream ? dirfd(m_stream) : -1; }
    // The next entry, or nullptr at the end (error() tells a failed read).
    const dirent *next();

private:
    DIR *m_stream = nullptr;
    int m_error = 0;
};

// Opens `file` for reading the file at `path`, named by its bytes (Qt's
// own opening names files by text, which cannot name every file); not
// through a symbolic link at its end. False, with errno, when it cannot.
bool openForReading(QFile &file, const QByteArray &path);

// Writes all `size` bytes, however many calls it takes: 0, or an errno value.
int writeAll(int descriptor, const char *data, size_t size);
// Puts a folder's entries (new names, removed names) on disk: 0, or an
// errno value.
int flushFolder(const QByteArray &folder);
// Makes the folder and each missing one above it, as `mkdir -p` does, each
// with `mode`.
Result<> makeFolders(const QByteArray &path, mode_t mode);
