#include "MetadataReads.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace MetadataReads {

std::optional<std::vector<Metadata::Values>> readEach(const std::vector<QByteArray> &paths, const Metadata::Request &request,
                                                      const Reader &read, const std::function<bool()> &goOn)
{
    std::vector<Metadata::Values> found(paths.size());
    std::atomic<size_t> next{0};
    std::atomic<bool> abandoned{false};
    constexpr size_t step = 16;
    const auto readRange = [&](size_t from) {
        for (size_t i = from; i < std::min(from + step, paths.size()); ++i)
            found[i] = read(paths[i], request);
    };
    const auto work = [&] {
        for (size_t from; !abandoned.load() && (from = next.fetch_add(step)) < paths.size();)
            readRange(from);
    };
    const unsigned helpers = paths.size() < 2 * step ? 0 : std::clamp(std::thread::hardware_concurrency(), 2u, 8u) - 1;
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < helpers; ++i)
        threads.emplace_back(work);
    for (size_t from; (from = next.fetch_add(step)) < paths.size();) {
        readRange(from);
        if (goOn && !goOn()) {
            abandoned.store(true);
            break;
        }
    }
    for (std::thread &thread : threads)
        thread.join();
    if (abandoned.load())
        return std::nullopt;
    return found;
}

} // namespace MetadataReads
