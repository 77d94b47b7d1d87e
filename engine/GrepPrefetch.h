#pragma once

#include "NameComposer.h"

#include <QStringList>

// The GREP replacement the composer uses: programs run by the Perl worker,
// those of a batch's names sent in one exchange ahead of the pass, so a
// pass costs the programs' own time, not a round trip each. Names not
// asked about ahead are answered one by one. Safe away from the main thread.
namespace GrepPrefetch {

NameComposer::GrepReplace replacementFor(const RenameRule &rule, const QStringList &names);

// Why the rule's GREP search and replace cannot run, as Perl says it in
// one line ("Unmatched ( in regex; ..."); empty when it runs or the rule
// does no GREP search.
QString patternError(const RenameRule &rule);

} // namespace GrepPrefetch
