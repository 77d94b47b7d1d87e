#include "FileSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Enough to tell any kind of file and to find where a JPEG keeps its EXIF;
// a larger block would be copied for every file only to be passed over.
constexpr qint64 headSize = 4 * 1024;

ssize_t readAt(int descriptor, char *into, size_t length, qint64 offset)
{
    size_t got = 0;
    while (got < length) {
        const ssize_t n = pread(descriptor, into + got, length - got, off_t(offset) + off_t(got));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return -1;
        if (n == 0)
            break;
        got += size_t(n);
    }
    return ssize_t(got);
}

// Up to `length` bytes from `offset` in one read, fewer at the end.
QByteArray readBytes(int descriptor, qint64 offset, qint64 length)
{
    QByteArray data(length, Qt::Uninitialized);
    const ssize_t got = readAt(descriptor, data.data(), size_t(length), offset);
    data.truncate(got < 0 ? 0 : got);
    return data;
}

} // namespace

FileSource::FileSource(const QByteArray &path)
{
    // Not followed through a link: a listing reads items as they are.
    m_file = FileDescriptor(open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK));
    struct stat status;
    if (!m_file.isOpen() || fstat(m_file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        m_file = FileDescriptor();
        return;
    }
    m_size = status.st_size;
    m_head = readBytes(m_file.get(), 0, std::min(m_size, headSize));
}

FileSource::~FileSource()
{
    if (m_mapping)
        munmap(m_mapping, size_t(m_size));
}

bool FileSource::read(qint64 offset, void *into, size_t length) const
{
    if (offset < 0 || length > size_t(m_size) || offset > m_size - qint64(length))
        return false;
    if (offset + qint64(length) <= m_head.size()) {
        std::memcpy(into, m_head.constData() + offset, length);
        return true;
    }
    if (length > size_t(headSize))
        return readAt(m_file.get(), static_cast<char *>(into), length, offset) == ssize_t(length);
    if (m_windowAt < 0 || offset < m_windowAt || offset + qint64(length) > m_windowAt + m_window.size()) {
        m_window.resize(std::min(m_size - offset, headSize));
        const ssize_t got = readAt(m_file.get(), m_window.data(), size_t(m_window.size()), offset);
        m_windowAt = got == m_window.size() ? offset : -1;
        if (m_windowAt < 0)
            return false;
    }
    std::memcpy(into, m_window.constData() + (offset - m_windowAt), length);
    return true;
}

QByteArray FileSource::bytes(qint64 offset, qint64 length) const
{
    if (offset < 0 || length <= 0 || offset >= m_size)
        return QByteArray();
    length = std::min(length, m_size - offset);
    if (offset + length <= m_head.size())
        return m_head.mid(offset, length);
    if (length > headSize)
        return readBytes(m_file.get(), offset, length);
    QByteArray data(length, Qt::Uninitialized);
    return read(offset, data.data(), size_t(length)) ? data : QByteArray();
}

const unsigned char *FileSource::mapped()
{
    if (!m_mapping && m_size > 0) {
        void *mapping = mmap(nullptr, size_t(m_size), PROT_READ, MAP_PRIVATE, m_file.get(), 0);
        if (mapping != MAP_FAILED)
            m_mapping = mapping;
    }
    return static_cast<const unsigned char *>(m_mapping);
}
