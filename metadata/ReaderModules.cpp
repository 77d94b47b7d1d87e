#include "ReaderModules.h"

#include "PathCodec.h"
#include "SystemLog.h"

#include <QByteArray>
#include <array>
#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <mutex>
#include <unistd.h>

#ifndef NOMEN_MODULES_FROM_PROGRAM
#define NOMEN_MODULES_FROM_PROGRAM "../lib/nomen"
#endif
#ifndef NOMEN_MODULES_BUILD_DIR
#define NOMEN_MODULES_BUILD_DIR ""
#endif

namespace ReaderModules {

namespace {

const char *fileName(Module module)
{
    return module == Module::Heif ? "nomen_read_heif.so" : "nomen_read_media.so";
}

// Where the modules are: the folder NOMEN_MODULES names, the one an
// install puts beside the program's folder, or the build's.
QByteArray folder()
{
    if (const char *chosen = std::getenv("NOMEN_MODULES"); chosen && *chosen)
        return chosen;
    char program[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
    if (length > 0) {
        QByteArray installed(program, length);
        installed.truncate(installed.lastIndexOf('/') + 1);
        installed += NOMEN_MODULES_FROM_PROGRAM;
        if (access(installed.constData(), R_OK | X_OK) == 0)
            return installed;
    }
    return NOMEN_MODULES_BUILD_DIR;
}

const ReaderModule::Api *open(Module module)
{
    const QByteArray path = folder() + '/' + fileName(module);
    void *handle = dlopen(path.constData(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        SystemLog::write(QStringLiteral("the reader %1 cannot be loaded: %2").arg(PathCodec::decode(path), PathCodec::decode(dlerror())));
        return nullptr;
    }
    using Entry = const ReaderModule::Api *(*)();
    const auto entry = reinterpret_cast<Entry>(dlsym(handle, "nomen_reader_module"));
    const ReaderModule::Api *api = entry ? entry() : nullptr;
    if (!api || api->version != ReaderModule::version) {
        SystemLog::write(QStringLiteral("the reader %1 is not one this program can use").arg(PathCodec::decode(path)));
        return nullptr;
    }
    // Kept loaded for the rest of the run: its readers may be in use on
    // any thread.
    return api;
}

} // namespace

const ReaderModule::Api *load(Module module)
{
    static std::array<std::once_flag, 2> once;
    static std::array<const ReaderModule::Api *, 2> loaded{};
    const size_t index = size_t(module);
    std::call_once(once[index], [&] { loaded[index] = open(module); });
    return loaded[index];
}

} // namespace ReaderModules
