#include "OpenFiles.h"

#include "ErrnoText.h"
#include "PathCodec.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

FileDescriptor::~FileDescriptor()
{
    close();
}

FileDescriptor &FileDescriptor::operator=(FileDescriptor &&other) noexcept
{
    if (this != &other) {
        close();
        m_descriptor = other.release();
    }
    return *this;
}

int FileDescriptor::release()
{
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    return descriptor;
}

int FileDescriptor::close()
{
    if (m_descriptor < 0)
        return 0;
    const int result = ::close(release());
    return result != 0 && errno != EINTR ? errno : 0;
}

FolderEntries::FolderEntries(const QByteArray &path) : m_stream(opendir(path.constData()))
{
    if (!m_stream)
        m_error = errno;
}

FolderEntries::FolderEntries(FileDescriptor descriptor)
{
    if (!descriptor.isOpen()) {
        m_error = EBADF;
        return;
    }
    m_stream = fdopendir(descriptor.get());
    if (m_stream)
        descriptor.release();
    else
        m_error = errno;
}

FolderEntries::~FolderEntries()
{
    if (m_stream)
        closedir(m_stream);
}

const dirent *FolderEntries::next()
{
    if (!m_stream)
        return nullptr;
    for (;;) {
        errno = 0;
        const dirent *entry = readdir(m_stream);
        if (!entry) {
            m_error = errno;
            return nullptr;
        }
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            return entry;
    }
}

bool openForReading(QFile &file, const QByteArray &path)
{
    const int descriptor = open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    if (!file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle)) {
        close(descriptor);
        errno = EBADF;
        return false;
    }
    return true;
}

int writeAll(int descriptor, const char *data, size_t size)
{
    while (size > 0) {
        const ssize_t written = write(descriptor, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written < 0 ? errno : EIO;
        data += written;
        size -= size_t(written);
    }
    return 0;
}

int flushFolder(const QByteArray &folder)
{
    FileDescriptor descriptor(open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.isOpen())
        return errno;
    return fsync(descriptor.get()) == 0 ? 0 : errno;
}

Result<> makeFolders(const QByteArray &path, mode_t mode)
{
    for (qsizetype end = 1; end <= path.size(); ++end) {
        if (end < path.size() && path[end] != '/')
            continue;
        if (mkdir(path.left(end).constData(), mode) != 0 && errno != EEXIST)
            return Failure{QStringLiteral("cannot make the folder \"%1\": %2")
                               .arg(PathCodec::decode(path.left(end)), errnoText(errno))};
    }
    return {};
}
