// Loaded into nomen-cli with LD_PRELOAD by the tests, to stop or fail it at
// exact renames instead of after guessed delays:
//   NOMEN_FAULT_SIGNAL_AFTER=k   raise a signal right after the k-th rename that succeeds
//   NOMEN_FAULT_SIGNAL=n         which signal (9 unless told)
//   NOMEN_FAULT_NO_REPLACE_FLAG  answer EINVAL to RENAME_NOREPLACE, as some file systems do
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>

namespace {

int signalAfter = -1;
int signalNumber = SIGKILL;
bool noReplaceFlag = false;
int renames = 0;

__attribute__((constructor)) void readSettings()
{
    if (const char *after = getenv("NOMEN_FAULT_SIGNAL_AFTER"))
        signalAfter = atoi(after);
    if (const char *number = getenv("NOMEN_FAULT_SIGNAL"))
        signalNumber = atoi(number);
    noReplaceFlag = getenv("NOMEN_FAULT_NO_REPLACE_FLAG") != nullptr;
    unsetenv("LD_PRELOAD"); // the programs it starts run as they are
}

} // namespace

extern "C" int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned int flags)
{
    using Rename = int (*)(int, const char *, int, const char *, unsigned int);
    static const Rename real = reinterpret_cast<Rename>(dlsym(RTLD_NEXT, "renameat2"));
    if (noReplaceFlag && (flags & RENAME_NOREPLACE)) {
        errno = EINVAL;
        return -1;
    }
    const int result = real(fromFolder, from, toFolder, to, flags);
    if (result == 0 && signalAfter >= 0 && ++renames == signalAfter)
        raise(signalNumber);
    return result;
}
