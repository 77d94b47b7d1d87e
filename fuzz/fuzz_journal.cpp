// Journals as they may be found on disk: cut short, damaged, or not
// journals at all. Reading one must never crash, and a journal that is
// believed must be written back to the same text and read back the same.

#include "BatchJournal.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto journal = BatchJournal::parse(text);
    if (!journal) {
        if (journal.reason().isEmpty())
            abort(); // a refusal always says why
        return 0;
    }
    const QByteArray written = journal->serialize();
    const auto again = BatchJournal::parse(written);
    if (!again || again->serialize() != written || again->items.size() != journal->items.size()
        || again->steps.size() != journal->steps.size())
        abort();
    // Only the part before the checksum, and records appended after it,
    // make a journal: what was written is that part.
    if (!text.startsWith(written.left(written.lastIndexOf("sum "))))
        abort();
    return 0;
}
