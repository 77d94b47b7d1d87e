#include "StringAdditions.h"

#include <regex.h>
#include <unicode/uregex.h>

#include <memory>
#include <vector>

namespace StringAdditions {

namespace {

// Scripts number the options as REG_EXTENDED 1, REG_ICASE 2, REG_NOSUB 4,
// REG_NEWLINE 8; the C library numbers NOSUB and NEWLINE the other way round.
int compileFlags(int options)
{
    int flags = REG_EXTENDED;
    if (options & RegexOption::IgnoreCase)
        flags |= REG_ICASE;
    if (options & RegexOption::NoSubexpressions)
        flags |= REG_NOSUB;
    if (options & RegexOption::Newline)
        flags |= REG_NEWLINE;
    return flags;
}

struct CompiledPattern {
    regex_t regex{};
    int status = 0;

    CompiledPattern(const QByteArray &pattern, int flags) { status = regcomp(&regex, pattern.constData(), flags); }
    ~CompiledPattern()
    {
        if (status == 0)
            regfree(&regex);
    }
    CompiledPattern(const CompiledPattern &) = delete;
    CompiledPattern &operator=(const CompiledPattern &) = delete;
};

ErrorInfo regexError(int code, const regex_t *regex)
{
    ErrorInfo error{RegexErrorDomain, code, QString()};
    char buffer[256];
    if (regerror(code, regex, buffer, sizeof buffer) > 0)
        error.localizedDescription = QString::fromUtf8(buffer);
    return error;
}

// The matcher's offsets count bytes of the UTF-8 form; they are used as
// character positions, clamped so that nothing outside the string is cut.
TextRange rangeForSlot(const regmatch_t &slot, qsizetype textLength)
{
    const qsizetype location = std::min<qsizetype>(slot.rm_so, textLength);
    const qsizetype end = std::clamp<qsizetype>(slot.rm_eo, location, textLength);
    return {location, end - location};
}

} // namespace

std::optional<QStringList> substringsMatchingRegularExpression(const QString &self, const QString &pattern,
                                                               int count, int options,
                                                               QList<TextRange> *ranges,
                                                               std::optional<ErrorInfo> *error)
{
    if (error)
        error->reset();
    CompiledPattern compiled(pattern.toUtf8(), compileFlags(options));
    if (compiled.status != 0) {
        if (error)
            *error = regexError(compiled.status, &compiled.regex);
        return std::nullopt;
    }
    // Slots past the pattern's own groups never take part, so no more are
    // asked for than the pattern has.
    const qsizetype wanted = count < 0 ? 0 : std::min<qsizetype>(qsizetype(count) + 1, compiled.regex.re_nsub + 1);
    std::vector<regmatch_t> matchSlots(size_t(wanted), regmatch_t{0, 0});
    const QByteArray subject = self.toUtf8();
    const int status = regexec(&compiled.regex, subject.constData(), matchSlots.size(), matchSlots.data(), 0);
    if (status != 0) {
        if (error)
            *error = regexError(status, &compiled.regex);
        return std::nullopt;
    }
    // Count -1 asks only whether there is a match: the answer holds the whole
    // receiver, not the matched part.
    if (count == -1)
        return QStringList{self};
    QStringList matches;
    if (ranges)
        ranges->clear();
    for (const regmatch_t &slot : matchSlots) {
        if (slot.rm_so == -1 || slot.rm_eo == -1)
            break;
        const TextRange range = rangeForSlot(slot, self.size());
        matches.append(self.mid(range.location, range.length));
        if (ranges)
            ranges->append(range);
    }
    return matches;
}

bool grep(const QString &self, const QString &pattern, int options)
{
    const auto matches = substringsMatchingRegularExpression(self, pattern, -1, options, nullptr, nullptr);
    return matches && !matches->isEmpty();
}

bool validateWithRegEx(const QString &self, const QString &pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    std::unique_ptr<URegularExpression, decltype(&uregex_close)> regex(
        uregex_open(reinterpret_cast<const UChar *>(pattern.utf16()), int32_t(pattern.size()), 0, &parseError,
                    &status),
        &uregex_close);
    if (U_FAILURE(status))
        return false;
    uregex_setText(regex.get(), reinterpret_cast<const UChar *>(self.utf16()), int32_t(self.size()), &status);
    const bool matches = uregex_matches(regex.get(), 0, &status);
    return U_SUCCESS(status) && matches;
}

} // namespace StringAdditions
