#pragma once

#include "ClampedDates.h"
#include "FolderListing.h"
#include "NameComposer.h"

#include <QDateTime>
#include <atomic>

// The rename engine's state apart from any window: the composer with its
// settings, counters and duplicate list, the fixed dates and the localized
// texts. GREP runs in the Perl worker and EXIF dates come from exiv2
// directly. Tests, the command line and the window drive it alike.
class RenameEngine {
public:
    RenameEngine();

    NameComposer composer;
    bool display_realtime_preview = true;
    bool use_exif_date = false;
    std::atomic<bool> stopProgressBool{true}; // may be set from another thread
    QString sample_name;
    QString exiftime;
    QString localTimeZone;
    ClampedDates dates; // date1904, date1970, date1970GMT, date2040

    RenameSettings &settings() { return composer.settings; }

    // Before a batch pass: the GREP replacements of all these names are
    // worked out in one exchange with Perl, so composing them costs no
    // round trip each.
    void prefetchGrep(const QStringList &names);
    // When the photograph was taken or the recording made, at the offset
    // it was recorded at; false when the file records none.
    static QVariant exifDate(const QString &path);
    // A listing that reads dates as the settings say (dates taken when chosen).
    FolderListing listing();
};
