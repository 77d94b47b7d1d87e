#pragma once

#include "ClampedDates.h"
#include "FolderListing.h"
#include "NameComposer.h"
#include "RenameRule.h"

#include <QDateTime>
#include <QVariant>
#include <QVariantList>

// What scripts hand the engine and what they get back, read and made here
// alone: the 24 entries of the rename settings, the positional requests of
// composing, listing and the batch pass, and an item's information. Inside,
// the engine speaks its typed rule and requests.
namespace ScriptRequests {

inline constexpr int SettingsCount = 24;

// The 24 entries, in order: strings as they are, integers read as the
// platform reads numbers, booleans as it reads yes and no; "GREP" alone
// chooses a regular-expression search. Raises NSRangeException for a
// shorter array.
RenameRule ruleFromSettings(const QVariantList &entries);

// Six entries: name, row count, number duplicates, location, prefix date,
// suffix date; missing or nil entries read as empty, zero, NO or no date.
CompositionRequest compositionRequest(const QVariantList &entries);
// Nine entries: paths, type codes, extensions, long names only, descend,
// list folders, list unmatched files, honour Stop, the root.
ListingRequest listingRequest(const QVariantList &entries);

// Eight entries: the word of the lower progress line, the supplied date,
// the upper text, the lower format (row, count, word), the two date
// choices, the row count, and whether excluded rows use up counter values.
struct BatchRequest {
    QVariant word;
    QDateTime suppliedDate;
    QString upperText;
    QString lowerFormat;
    qint32 prefixChoice = 0;
    qint32 suffixChoice = 0;
    qint32 rowCount = 0;
    bool advanceExcluded = false;
};
BatchRequest batchRequest(const QVariantList &entries);

// An item's information as scripts read it: "the_extension", "type_code",
// "creation", "modification", "file_size" for a file; the two dates for a
// folder.
QVariantMap fileInfo(const FolderListing::ItemInfo &info, const ClampedDates &dates);
QVariantMap folderInfo(const FolderListing::ItemInfo &info, const ClampedDates &dates);

// Records whose "creation" or "modification" date is missing get `date1904`.
QVariantList cleanData(const QVariantList &records, const QDateTime &date1904);

} // namespace ScriptRequests
