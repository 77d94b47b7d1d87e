#pragma once

#include "ItemRecord.h"

#include <functional>
#include <vector>

// The order of the table's rows, one for the window and the command line.
namespace RowOrder {

// Natural order of the name within a folder, folders in natural order of
// their path (digits as numbers, case ignored). Keys are made once per
// name and per folder, never a collator call per comparison. Stable.
void byName(std::vector<ItemRecord> &rows, bool descending = false);
// By modification date, by creation date, by size, by a recording's length
// or a picture's pixels, oldest or smallest first; rows that compare equal
// keep their order.
enum class Value { Created, Modified, Size, Include, Duration, Pixels };
void byValue(std::vector<ItemRecord> &rows, Value value, bool descending = false);

// The same orders as positions (order[i] is the row that goes to i), worked
// out without touching the rows, so they may be worked out aside; then
// applied in place.
std::vector<size_t> orderByName(const std::vector<ItemRecord> &rows, bool descending = false);
std::vector<size_t> orderByValue(const std::vector<ItemRecord> &rows, Value value, bool descending = false);
void arrange(std::vector<ItemRecord> &rows, std::vector<size_t> order);
// By a text of each row (a camera, an artist) in natural order; rows with no
// text after the others.
std::vector<size_t> orderByText(const std::vector<ItemRecord> &rows, const std::function<QString(const ItemRecord &)> &textOf,
                                bool descending = false);

} // namespace RowOrder
