#pragma once

#include "NameComposer.h"

#include <QStringList>
#include <QVariantList>

// The new name every row of the table would get, as the user types: the
// batch pass worked out on a copy of the composer, so the engine's own
// counters, duplicate list and preview field stay exactly as they were.
namespace TablePreview {

QStringList newNames(NameComposer composer, const QVariantList &rows, qint32 prefixChoice, qint32 suffixChoice,
                     const QDateTime &supplied);

// GREP answers for all rows, worked out in one exchange with the Perl
// worker; safe to call away from the main thread.
NameComposer::GrepReplace prefetchedGrep(const RenameSettings &settings, const QVariantList &rows);

} // namespace TablePreview
