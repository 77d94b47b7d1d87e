// Feeds arbitrary text through the scanner-based operations, the case
// operations and regular-expression matching. The first byte picks the
// operation and its small parameters, the second where the rest is split
// into the receiver and the argument. Both are read as UTF-16 so that lone
// surrogates and every code unit are reachable.

#include "NamedException.h"
#include "StringAdditions.h"

#include <cstdint>

using namespace StringAdditions;

namespace {

QString utf16(const uint8_t *data, size_t size)
{
    return QString(reinterpret_cast<const QChar *>(data), qsizetype(size / 2));
}

QStringList asMembers(const QString &text)
{
    QStringList members;
    for (QChar c : text)
        members.append(QString(c));
    return members;
}

void checkShapes(const QString &self, const QString &argument)
{
    // Results that can never be longer than the receiver.
    const QStringList set = asMembers(argument);
    if (clean(self, argument).size() > self.size() || trimFromBoth(self, set).size() > self.size()
        || deprefix(self, argument).size() > self.size() || desuffixCaseInsensitive(self, argument).size() > self.size())
        __builtin_trap();
    // Stripped once, nothing is left to strip.
    const QString stripped = stripDiacritical(self);
    if (stripDiacritical(stripped) != stripped)
        __builtin_trap();
    qsizetype letters = 0;
    for (const QString &word : words(self))
        letters += word.size();
    if (letters > self.size())
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const uint8_t selector = data[0];
    const uint8_t *rest = data + 2;
    const size_t restSize = size - 2;
    const size_t selfSize = (restSize * data[1] / 255) & ~size_t(1);
    const QString self = utf16(rest, selfSize);
    const QString argument = utf16(rest + selfSize, restSize - selfSize);

    try {
        switch (selector % 6) {
        case 0:
            titleCaseString(self);
            stripDiacritical(self);
            reverse(self);
            break;
        case 1:
            clean(self, argument);
            cleanWithReplace(self, asMembers(argument), argument);
            break;
        case 2:
            words(self);
            paragraphs(self);
            tokensSeparatedByCharactersFromSet(self, CharacterSet::fromCharacters(argument));
            charAtIndex(self, selector >> 3);
            wordAtIndex(self, UINT32_MAX);
            paragraphAtIndex(self, selector >> 3);
            break;
        case 3: {
            // Patterns are kept short: the C library's matcher is
            // exponential on some patterns, which is its nature, not ours.
            const QString pattern = argument.left(24);
            QList<TextRange> ranges;
            std::optional<ErrorInfo> error;
            const auto matches =
                substringsMatchingRegularExpression(self, pattern, int(selector >> 3) - 2, selector >> 5, &ranges, &error);
            for (const TextRange &range : ranges)
                if (range.location < 0 || range.length < 0 || range.end() > self.size())
                    __builtin_trap();
            if (matches.has_value() == error.has_value())
                __builtin_trap();
            grep(self, pattern, selector >> 5);
            break;
        }
        case 4:
            snr(self, argument, self.left(3));
            substringFromDelim(self, argument.left(2), argument.mid(2));
            containsString(self, argument, selector & 8);
            hasCaseInsensitivePrefix(self, argument);
            deprefixCaseInsensitive(self, argument);
            break;
        case 5:
            checkShapes(self, argument);
            break;
        }
    } catch (const NamedException &exception) {
        // Only an empty list asked for an index may raise.
        if (exception.name() != NSRangeException)
            __builtin_trap();
    }
    return 0;
}
