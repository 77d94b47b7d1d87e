#include "HeapPages.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace HeapPages {

namespace {

// Where the heap starts, from the process's own map; 0 if it cannot be read.
uintptr_t heapStart()
{
    FILE *maps = std::fopen("/proc/self/maps", "re");
    if (!maps)
        return 0;
    uintptr_t start = 0;
    char line[512];
    while (std::fgets(line, sizeof line, maps))
        if (std::strstr(line, "[heap]")) {
            start = uintptr_t(std::strtoull(line, nullptr, 16));
            break;
        }
    std::fclose(maps);
    return start;
}

} // namespace

void growInLargeSteps(size_t step)
{
    constexpr int largestBlock = 32 << 20; // the most malloc will take itself
    mallopt(M_MMAP_THRESHOLD, largestBlock);
    mallopt(M_ARENA_MAX, 1);
    const auto limited = [](size_t bytes) { return int(std::min<size_t>(bytes, std::numeric_limits<int>::max())); };
    mallopt(M_TOP_PAD, limited(step));
    mallopt(M_TRIM_THRESHOLD, limited(2 * step));
    // One block from the heap makes it grow by the step now, so the advice
    // covers the memory the next phase will touch.
    void *volatile block = std::malloc(largestBlock / 2);
    std::free(block);
    adviseHugePages();
}

void adviseHugePages()
{
    static const uintptr_t start = heapStart();
    const auto end = reinterpret_cast<uintptr_t>(sbrk(0));
    if (start && end > start)
        madvise(reinterpret_cast<void *>(start), end - start, MADV_HUGEPAGE);
}

} // namespace HeapPages
