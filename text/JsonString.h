#pragma once

#include <QString>

namespace JsonString {

// A JSON string literal, good as a script's string literal too: quotes,
// backslashes, control characters and U+2028 and U+2029 escaped; a surrogate standing alone (a byte of a name that is not UTF-8)
// as its \\u escape, so the text stays valid UTF-8.
QString quoted(const QString &text);

} // namespace JsonString
