#include "DateTokens.h"

#include "CalendarFormat.h"
#include "StringAdditions.h"

#include <QCoreApplication>
#include <algorithm>

using namespace StringAdditions;

LocalizedDateTokens LocalizedDateTokens::fromUiTable()
{
    LocalizedDateTokens tokens;
    for (QString *token : allOf(tokens))
        *token = QCoreApplication::translate("ui", token->toUtf8().constData());
    return tokens;
}

namespace DateTokens {

QString replaceInsertConstants(const QString &text, const QDateTime &date, const LocalizedDateTokens &tokens)
{
    // Every token opens with a guillemet; most texts have none.
    if (!text.contains(u'«'))
        return text;
    QString result = text;
    static const QString opening = QStringLiteral("«date ");
    static const QString closing = QStringLiteral("»");
    if (containsString(result, opening, false) && containsString(result, closing, true)) {
        // One free-form format per text: the first token's.
        const QString format = substringFromDelim(result, opening, closing);
        result = snr(result, opening + format + closing, CalendarFormat::format(date, format));
    }
    const auto fixed = tokens.all();
    // The date's parts are worked out only once a fixed token is there.
    if (std::none_of(std::begin(fixed), std::end(fixed), [&](const QString *token) { return result.contains(*token); }))
        return result;
    const bool dated = date.isValid();
    const QString year = dated ? CalendarFormat::format(date, QStringLiteral("%Y")) : QString();
    const QString shortYear = year.mid(2);
    const QString month = dated ? CalendarFormat::format(date, QStringLiteral("%m")) : QString();
    const QString day = dated ? CalendarFormat::format(date, QStringLiteral("%d")) : QString();
    auto three = [dated](const QString &a, const QString &b, const QString &c) {
        return dated ? QStringLiteral("%1-%2-%3").arg(a, b, c) : QString();
    };
    auto two = [dated](const QString &a, const QString &b) { return dated ? QStringLiteral("%1-%2").arg(a, b) : QString(); };
    const QString values[] = {three(year, month, day),      three(shortYear, month, day), three(month, day, year),
                              three(month, day, shortYear), two(month, day),              three(year, day, month),
                              three(shortYear, day, month), three(day, month, year),      three(day, month, shortYear),
                              two(day, month)};
    for (size_t i = 0; i < std::size(fixed); ++i)
        if (result.contains(*fixed[i]))
            result = snr(result, *fixed[i], values[i]);
    return result;
}

} // namespace DateTokens
