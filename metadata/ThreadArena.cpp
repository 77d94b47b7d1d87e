#include "ThreadArena.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr size_t capacity = 256 * 1024;
constexpr size_t alignment = 16;

struct Arena {
    std::unique_ptr<unsigned char[]> buffer{new unsigned char[capacity]};
    size_t used = 0;
    bool active = false;

    bool holds(const unsigned char *block) const { return block >= buffer.get() && block < buffer.get() + capacity; }
};

Arena &current()
{
    thread_local Arena arena;
    return arena;
}

} // namespace

namespace ThreadArena {

void *allocate(size_t size)
{
    Arena &arena = current();
    const size_t whole = ((size + alignment - 1) & ~(alignment - 1)) + alignment;
    if (whole < size)
        return nullptr;
    unsigned char *block;
    if (arena.active && arena.used + whole <= capacity) {
        block = arena.buffer.get() + arena.used;
        arena.used += whole;
        std::memset(block + alignment, 0, size);
    } else {
        block = static_cast<unsigned char *>(std::calloc(1, whole));
        if (!block)
            return nullptr;
    }
    std::memcpy(block, &size, sizeof size);
    return block + alignment;
}

void release(void *data)
{
    if (!data)
        return;
    unsigned char *block = static_cast<unsigned char *>(data) - alignment;
    if (!current().holds(block))
        std::free(block);
}

void *reallocate(void *data, size_t size)
{
    if (!data)
        return allocate(size);
    size_t old;
    std::memcpy(&old, static_cast<unsigned char *>(data) - alignment, sizeof old);
    void *moved = allocate(size);
    if (moved) {
        std::memcpy(moved, data, std::min(old, size));
        release(data);
    }
    return moved;
}

Use::Use()
{
    current().active = true;
}

Use::~Use()
{
    Arena &arena = current();
    arena.active = false;
    arena.used = 0;
}

} // namespace ThreadArena
