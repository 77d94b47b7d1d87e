#include "InstalledData.h"

#include "PathCodec.h"

#include <climits>
#include <cstdlib>
#include <unistd.h>

#ifndef NOMEN_DATA_FROM_PROGRAM
#define NOMEN_DATA_FROM_PROGRAM "../share/nomen"
#endif

namespace InstalledData {

namespace {

QString locate()
{
    char program[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
    if (length <= 0)
        return {};
    QByteArray path(program, length);
    path.truncate(path.lastIndexOf('/') + 1);
    path += NOMEN_DATA_FROM_PROGRAM;
    // The main script marks a whole data folder.
    if (access((path + "/main.js").constData(), R_OK) != 0)
        return {};
    char *resolved = realpath(path.constData(), nullptr);
    if (!resolved)
        return {};
    const QString folder = PathCodec::decode(resolved);
    free(resolved);
    return folder;
}

} // namespace

QString folder()
{
    // The program does not move while it runs; every resource lookup asks.
    static const QString found = locate();
    return found;
}

} // namespace InstalledData
