#pragma once

#include <QString>

// Letter case as Unicode defines it, the same in every locale: full
// mappings (ß raised is SS, ﬁ is FI), Greek final sigma lowered as ς at
// the end of a word, a dotted capital I lowered to i and a combining dot.
// A lone surrogate (a byte of a name that is not UTF-8) has no case and
// stays as it is.
namespace UnicodeCase {

QString upper(const QString &text);
QString lower(const QString &text);
// The first character (a whole code point) raised as a word's first letter
// is (ǆ gives ǅ, ß gives Ss), the rest lowered.
QString capitalized(const QString &word);
// The first character in upper case, the rest lowered.
QString upperFirst(const QString &text);

} // namespace UnicodeCase
