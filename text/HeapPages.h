#pragma once

#include <cstddef>

// A table of a million rows is millions of small strings, and their memory
// is first touched page by page: where a page fault is dear (in a virtual
// machine it can cost microseconds) that is a good part of a run. The heap
// can instead grow in large steps that the kernel backs with huge pages
// where it allows them (transparent huge pages in "madvise" mode, the
// common default). Nothing here changes what a program computes.
namespace HeapPages {

// Once, early: from now on the heap grows `step` bytes ahead of what is
// asked, keeps freed memory for reuse instead of handing it back at once,
// and takes blocks of up to 32 MB itself instead of mapping each.
void growInLargeSteps(size_t step);
// Asks for huge pages over the heap as it now stands, the part grown ahead
// included. Cheap (two system calls); call it after work that may have
// grown the heap.
void adviseHugePages();

} // namespace HeapPages
