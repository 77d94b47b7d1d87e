#pragma once

#include "CompiledScript.h"
#include "NameComposer.h"

#include <QDateTime>
#include <atomic>
#include "FolderListing.h"
#include <memory>

// The rename engine's state apart from any window: the composer with its
// settings, counters and duplicate list, the helper scripts, the fixed
// dates and the localized texts. Tests drive it directly.
class RenameEngine {
public:
    // Loads "perl.scpt" and "exif_info.scpt" from `scriptsDirectory` and
    // calls the EXIF script's "init". Raises NSGenericException with
    // "Error loading \"perl.scpt\"." (or exif_info) when one is missing or
    // does not compile.
    RenameEngine(const MethodRegistry &methods, const QString &scriptsDirectory);
    ~RenameEngine();

    NameComposer composer;
    bool display_realtime_preview = true;
    bool use_exif_date = false;
    std::atomic<bool> stopProgressBool{true}; // may be set from another thread
    QString sample_name;
    QString exiftime;
    QString localTimeZone;
    QDateTime date1904;
    QDateTime date1970;
    QDateTime date1970GMT;
    QDateTime date2040;

    RenameSettings &settings() { return composer.settings; }
    CompiledScript &perl() { return *m_perl; }
    CompiledScript &exif_info() { return *m_exifInfo; }

    QString snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase);
    // Before a batch pass: the GREP replacements of all these names are
    // worked out in one exchange with Perl (the helper script's
    // "execute_perl_batch"), so composing them costs no round trip each.
    void prefetchGrep(const QStringList &names);
    QVariant getEXIFDate(const QVariant &path);
    // A listing that reads dates as the settings say (EXIF when chosen).
    FolderListing listing();

private:
    std::unique_ptr<CompiledScript> m_perl;
    std::unique_ptr<CompiledScript> m_exifInfo;
    QHash<QString, QVariant> m_grepAnswers; // program -> what execute_perl answered
};

// Whether the system counts as release 10.4 or later, set once at start-up.
inline bool is104Plus = false;
