#include "LocaleDates.h"

#include <unicode/datefmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/locid.h>
#include <unicode/parsepos.h>
#include <unicode/uchar.h>
#include <memory>
#include <utility>

namespace LocaleDates {

namespace {

// Narrow and no-break spaces (in some locales' time patterns) read as spaces.
icu::UnicodeString plainSpaces(icu::UnicodeString text)
{
    return text.findAndReplace(icu::UnicodeString(char16_t(0x202F)), icu::UnicodeString(u' '))
        .findAndReplace(icu::UnicodeString(char16_t(0x00A0)), icu::UnicodeString(u' '));
}

// Lenient about the text, strict about the fields.
std::unique_ptr<icu::SimpleDateFormat> reader(const icu::UnicodeString &pattern, const icu::Locale &locale)
{
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(plainSpaces(pattern), locale, status);
    if (U_FAILURE(status))
        return nullptr;
    format->setLenient(true);
    format->setCalendarLenient(false);
    return format;
}

icu::UnicodeString patternOf(icu::DateFormat *made)
{
    std::unique_ptr<icu::DateFormat> format(made);
    icu::UnicodeString pattern;
    if (auto *simple = dynamic_cast<icu::SimpleDateFormat *>(format.get()))
        simple->toPattern(pattern);
    return pattern;
}

// Each lone digit with a zero before it: "4/7/2010" as "04/07/2010".
icu::UnicodeString padded(const icu::UnicodeString &text)
{
    icu::UnicodeString out;
    for (int32_t i = 0; i < text.length(); ++i) {
        const bool digit = u_isdigit(text.charAt(i));
        const bool alone = digit && (i == 0 || !u_isdigit(text.charAt(i - 1)))
                           && (i + 1 == text.length() || !u_isdigit(text.charAt(i + 1)));
        if (alone)
            out.append(u'0');
        out.append(text.charAt(i));
    }
    return out;
}

// The first character of a numeric date pattern that is not a field.
char16_t separatorOf(const icu::UnicodeString &pattern)
{
    for (int32_t i = 0; i < pattern.length(); ++i) {
        const char16_t c = pattern.charAt(i);
        if (c == u'/' || c == u'.' || c == u'-')
            return c;
    }
    return u'/';
}

} // namespace

QByteArray timeLocaleName()
{
    QByteArray name;
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        name = qgetenv(variable);
        if (!name.isEmpty())
            break;
    }
    for (const char mark : {'@', '.'})
        if (const qsizetype at = name.indexOf(mark); at >= 0)
            name.truncate(at);
    if (name.isEmpty() || name == "C" || name == "POSIX")
        return "en_US_POSIX";
    return name;
}

std::optional<QDateTime> parse(const QString &text)
{
    const icu::Locale locale(timeLocaleName().constData());
    using F = icu::DateFormat;
    const icu::UnicodeString datePattern = patternOf(F::createDateInstance(F::kShort, locale));
    const auto dateReader = reader(datePattern, locale);
    if (!dateReader)
        return std::nullopt;
    // The locale's own times first, then a 24-hour clock, then a 12-hour
    // one with the locale's and with English AM and PM.
    const icu::Locale english("en_US_POSIX");
    const std::pair<icu::UnicodeString, const icu::Locale *> timePatterns[] = {
        {patternOf(F::createTimeInstance(F::kShort, locale)), &locale},
        {patternOf(F::createTimeInstance(F::kMedium, locale)), &locale},
        {u"H:mm", &locale}, {u"H:mm:ss", &locale},
        {u"h:mm a", &locale}, {u"h:mm:ss a", &locale},
        {u"h:mm a", &english}, {u"h:mm:ss a", &english},
    };

    // Any of "/", "." and "-" separates the date's fields.
    icu::UnicodeString source = plainSpaces(icu::UnicodeString(reinterpret_cast<const UChar *>(text.trimmed().utf16()),
                                                               int32_t(text.trimmed().size())));
    const char16_t separator = separatorOf(datePattern);
    for (const char16_t other : {u'/', u'.', u'-'})
        if (other != separator)
            source.findAndReplace(icu::UnicodeString(other), icu::UnicodeString(separator));
    // Fields read strictly want two digits where the pattern shows two.
    source = padded(source);

    icu::ParsePosition position(0);
    const UDate day = dateReader->parse(source, position);
    if (position.getErrorIndex() >= 0)
        return std::nullopt;
    const QDate date = QDateTime::fromMSecsSinceEpoch(qint64(day)).date();
    // The time may follow after spaces or a comma, whatever the locale puts
    // between its date and time.
    int32_t at = position.getIndex();
    if (at == source.length())
        return QDateTime(date, QTime(0, 0));
    while (at < source.length() && (u_isspace(source.charAt(at)) || source.charAt(at) == u','))
        ++at;
    if (at == position.getIndex() || at == source.length())
        return std::nullopt;
    for (const auto &[pattern, timeLocale] : timePatterns) {
        const auto timeReader = reader(pattern, *timeLocale);
        icu::ParsePosition timePosition(at);
        const UDate time = timeReader ? timeReader->parse(source, timePosition) : 0;
        if (timeReader && timePosition.getErrorIndex() < 0 && timePosition.getIndex() == source.length())
            return QDateTime(date, QDateTime::fromMSecsSinceEpoch(qint64(time)).time());
    }
    return std::nullopt;
}

} // namespace LocaleDates
