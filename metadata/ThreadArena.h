#pragma once

#include <cstddef>

// Memory for a library parsing one file on a listing thread: blocks handed
// out one after the other from a buffer of the thread's own, each after a
// header holding its size (the libraries reallocate), all given up at once
// when the file is done. What does not fit, and what is asked for while no
// file is being read (what outlives every file), comes from the heap.
// Reading a file so takes no lock and no heap work per entry.
namespace ThreadArena {

void *allocate(size_t size); // zeroed
void *reallocate(void *data, size_t size);
void release(void *data);

// While one exists, allocate() takes from this thread's buffer; when it
// ends the buffer is empty again. Not nested.
class Use {
public:
    Use();
    ~Use();
    Use(const Use &) = delete;
    Use &operator=(const Use &) = delete;
};

} // namespace ThreadArena
