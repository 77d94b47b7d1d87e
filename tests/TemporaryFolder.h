#pragma once

#include "PathCodec.h"

#include <QTemporaryDir>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

// A test's temporary folder, removed with all it holds when the test is
// done, also when it failed: items whose names are not UTF-8 (which Qt
// cannot name, so QTemporaryDir leaves them behind), and folders a test
// made unwritable.
class TemporaryFolder : public QTemporaryDir {
public:
    using QTemporaryDir::QTemporaryDir;
    ~TemporaryFolder()
    {
        if (!isValid() || !autoRemove())
            return;
        const QByteArray root = PathCodec::encode(path());
        // Folders first opened up, top down, so their items can go.
        nftw(root.constData(), [](const char *item, const struct stat *status, int kind, FTW *) {
            if (kind == FTW_D || kind == FTW_DNR)
                chmod(item, (status->st_mode & 07777) | S_IRWXU);
            return 0;
        }, 16, FTW_PHYS);
        nftw(root.constData(), [](const char *item, const struct stat *, int kind, FTW *) {
            return kind == FTW_DP ? rmdir(item) : unlink(item);
        }, 16, FTW_PHYS | FTW_DEPTH);
    }
};
