#include "ExistingItems.h"

#include "OpenFiles.h"
#include "PathCodec.h"
#include "PathNames.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace {

bool comparesBytes(int folder)
{
    struct statfs system;
    if (fstatfs(folder, &system) != 0)
        return false;
    switch (system.f_type) {
    case EXT4_SUPER_MAGIC: // also ext2 and ext3
    case XFS_SUPER_MAGIC:
    case BTRFS_SUPER_MAGIC:
    case TMPFS_MAGIC: {
        // ext4 and tmpfs can fold case in single folders.
        long flags = 0;
        return ioctl(folder, FS_IOC_GETFLAGS, &flags) != 0 || !(flags & 0x40000000 /* FS_CASEFOLD_FL */);
    }
    default:
        return false;
    }
}

} // namespace

void ExistingItems::readFoldersOf(const QStringList &folders, const std::vector<int> &uses, const SeenFolders *seen)
{
    m_hashes.resize(uses.size());
    for (size_t folder = 0; folder < uses.size(); ++folder)
        if (uses[folder] >= int(SeenFolder::fewest))
            m_hashes[folder] = hashesIn(folders[qsizetype(folder)], seen);
}

bool ExistingItems::contains(int folder, const QString &path, const QString &name) const
{
    // Most names are not there: the whole path is made only to be sure.
    if (size_t(folder) < m_hashes.size() && m_hashes[size_t(folder)]) {
        const std::vector<quint32> &hashes = *m_hashes[size_t(folder)];
        if (!std::binary_search(hashes.cbegin(), hashes.cend(), SeenFolder::hashOf(PathCodec::encode(name))))
            return false;
    }
    struct stat info;
    return lstat(PathCodec::encode(PathNames::joined(path, name)).constData(), &info) == 0;
}

const std::vector<quint32> *ExistingItems::hashesIn(const QString &folder, const SeenFolders *seen)
{
    FileDescriptor descriptor(open(PathCodec::encode(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.isOpen() || !comparesBytes(descriptor.get()))
        return nullptr;
    if (const auto identity = seen ? FileIdentity::ofOpen(descriptor.get()) : std::nullopt)
        for (const SeenFolder &listed : *seen)
            if (listed.folder.isSameFile(*identity))
                return &listed.nameHashes;
    FolderEntries listing(std::move(descriptor));
    std::vector<quint32> hashes;
    while (const dirent *entry = listing.next())
        hashes.push_back(SeenFolder::hashOf(entry->d_name));
    if (!listing.isOpen() || listing.error() != 0)
        return nullptr;
    std::sort(hashes.begin(), hashes.end());
    return &m_read.emplace_back(std::move(hashes));
}
