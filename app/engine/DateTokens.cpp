#include "DateTokens.h"

#include "CalendarFormat.h"
#include "StringAdditions.h"

#include <QCoreApplication>

using namespace ROZ_NSStringAdditions;

LocalizedDateTokens LocalizedDateTokens::fromUiTable()
{
    LocalizedDateTokens tokens;
    for (QString *token : {&tokens.YYYY_MM_DD_localized, &tokens.YY_MM_DD_localized, &tokens.MM_DD_YYYY_localized,
                           &tokens.MM_DD_YY_localized, &tokens.MM_DD_localized, &tokens.YYYY_DD_MM_localized,
                           &tokens.YY_DD_MM_localized, &tokens.DD_MM_YYYY_localized, &tokens.DD_MM_YY_localized,
                           &tokens.DD_MM_localized})
        *token = QCoreApplication::translate("ui", token->toUtf8().constData());
    return tokens;
}

namespace DateTokens {

QString replaceInsertConstants(const QString &text, const QDateTime &date, const LocalizedDateTokens &tokens)
{
    QString result = text;
    static const QString opening = QStringLiteral("«date ");
    static const QString closing = QStringLiteral("»");
    if (containsString(result, opening, false) && containsString(result, closing, true)) {
        // One free-form format per text: the first token's.
        const QString format = substringFromDelim(result, opening, closing);
        result = snr(result, opening + format + closing, CalendarFormat::format(date, format));
    }
    const bool dated = date.isValid();
    const QString year = dated ? CalendarFormat::format(date, QStringLiteral("%Y")) : QString();
    const QString shortYear = year.mid(2);
    const QString month = dated ? CalendarFormat::format(date, QStringLiteral("%m")) : QString();
    const QString day = dated ? CalendarFormat::format(date, QStringLiteral("%d")) : QString();
    auto three = [dated](const QString &a, const QString &b, const QString &c) {
        return dated ? QStringLiteral("%1-%2-%3").arg(a, b, c) : QString();
    };
    auto two = [dated](const QString &a, const QString &b) { return dated ? QStringLiteral("%1-%2").arg(a, b) : QString(); };
    const std::pair<const QString &, QString> replacements[] = {
        {tokens.YYYY_MM_DD_localized, three(year, month, day)},
        {tokens.YY_MM_DD_localized, three(shortYear, month, day)},
        {tokens.MM_DD_YYYY_localized, three(month, day, year)},
        {tokens.MM_DD_YY_localized, three(month, day, shortYear)},
        {tokens.MM_DD_localized, two(month, day)},
        {tokens.YYYY_DD_MM_localized, three(year, day, month)},
        {tokens.YY_DD_MM_localized, three(shortYear, day, month)},
        {tokens.DD_MM_YYYY_localized, three(day, month, year)},
        {tokens.DD_MM_YY_localized, three(day, month, shortYear)},
        {tokens.DD_MM_localized, two(day, month)},
    };
    for (const auto &[token, value] : replacements)
        result = snr(result, token, value);
    return result;
}

} // namespace DateTokens
