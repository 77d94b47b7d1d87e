#pragma once

#include "ClampedDates.h"
#include "FolderListing.h"
#include "ItemRecord.h"

#include <QVariant>
#include <vector>

// Item records as scripts see them: dictionaries with "include",
// "original", "location", "creation", "modification", "size" (a folder's
// is "-") and "new". Made only where a script asks for records, and read
// back only where a script hands rows in.
namespace ItemRecordValues {

QVariantMap toScript(const ItemRecord &record, const ClampedDates &dates);
QVariantList toScript(const std::vector<ItemRecord> &records, const ClampedDates &dates);
// A listing: its records, false where a subfolder's listing was stopped,
// or false alone when the listing was stopped at the top.
QVariant toScript(const Listing &listing, const ClampedDates &dates);

// Rows a script hands in: dictionaries become records (a missing
// "include" reads as NO), anything else is left out.
std::vector<ItemRecord> fromScript(const QVariantList &rows);

// One column of a record by its identifier; nil for an unknown one.
QVariant field(const ItemRecord &record, const QString &identifier, const ClampedDates &dates);
// False for an unknown identifier.
bool setField(ItemRecord &record, const QString &identifier, const QVariant &value);

} // namespace ItemRecordValues
