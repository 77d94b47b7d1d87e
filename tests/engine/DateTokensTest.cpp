#include "CalendarFormat.h"
#include "DateTokens.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

namespace {

// The test process runs in Europe/Paris (see main).
const QDateTime march7 = QDateTime(QDate(2005, 3, 7), QTime(14, 5, 9, 42), Qt::LocalTime);

struct TokenCase {
    const char *name;
    QString text;
    QString expected;
    friend void PrintTo(const TokenCase &c, std::ostream *os) { *os << c.name; }
};

class Tokens : public testing::TestWithParam<TokenCase> {};

TEST_P(Tokens, FilledFromTheDate)
{
    EXPECT_EQ(DateTokens::replaceInsertConstants(GetParam().text, march7, LocalizedDateTokens()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Tokens,
    testing::Values(TokenCase{"free_form", "«date %Y%m%d»", "20050307"},
                    TokenCase{"fixed_orders", "«YYYY-MM-DD» «YY-MM-DD» «MM-DD-YYYY» «MM-DD-YY» «MM-DD»",
                              "2005-03-07 05-03-07 03-07-2005 03-07-05 03-07"},
                    TokenCase{"day_first_orders", "«YYYY-DD-MM» «YY-DD-MM» «DD-MM-YYYY» «DD-MM-YY» «DD-MM»",
                              "2005-07-03 05-07-03 07-03-2005 07-03-05 07-03"},
                    TokenCase{"only_first_free_form_format", "«date %Y» «date %m» «date %Y»", "2005 «date %m» 2005"},
                    TokenCase{"free_form_case_insensitive_test", "«DATE %Y»", "«DATE %Y»"},
                    TokenCase{"untouched_without_tokens", "holiday_«#»", "holiday_«#»"},
                    TokenCase{"unclosed_free_form", "«date %Y", "«date %Y"}),
    [](const auto &info) { return info.param.name; });

TEST(Tokens, WithoutADateTheyBecomeEmpty)
{
    EXPECT_EQ(DateTokens::replaceInsertConstants("a«YYYY-MM-DD»b«date %Y»c«DD-MM»", QDateTime(), LocalizedDateTokens()),
              QStringLiteral("abc"));
    EXPECT_EQ(DateTokens::replaceInsertConstants("plain", QDateTime(), LocalizedDateTokens()), QStringLiteral("plain"));
}

TEST(Tokens, LocalizedSpellingsAreWhatTheUserTypes)
{
    LocalizedDateTokens german;
    german.YYYY_MM_DD_localized = QStringLiteral("«JJJJ-MM-TT»");
    german.DD_MM_localized = QStringLiteral("«TT-MM»");
    EXPECT_EQ(DateTokens::replaceInsertConstants("«JJJJ-MM-TT» «TT-MM» «DD-MM»", march7, german),
              QStringLiteral("2005-03-07 07-03 «DD-MM»"));
}

struct FormatCase {
    const char *directive;
    const char *expected;
};

TEST(CalendarFormat, EveryDirective)
{
    for (const FormatCase &c : {FormatCase{"%Y", "2005"}, FormatCase{"%y", "05"}, FormatCase{"%m", "03"}, FormatCase{"%d", "07"},
                                FormatCase{"%e", "7"}, FormatCase{"%H", "14"}, FormatCase{"%I", "02"}, FormatCase{"%M", "05"},
                                FormatCase{"%S", "09"}, FormatCase{"%p", "PM"}, FormatCase{"%A", "Monday"}, FormatCase{"%a", "Mon"},
                                FormatCase{"%B", "March"}, FormatCase{"%b", "Mar"}, FormatCase{"%j", "066"}, FormatCase{"%Z", "CET"},
                                FormatCase{"%z", "+0100"}, FormatCase{"%F", "042"}, FormatCase{"%x", "Mon Mar 07 2005"},
                                FormatCase{"%X", "14:05:09"}, FormatCase{"%c", "Mon Mar 07 14:05:09 CET 2005"},
                                FormatCase{"%%", "%"}, FormatCase{"%q", "%q"}, FormatCase{"100%", "100%"}})
        EXPECT_EQ(CalendarFormat::format(march7, QString::fromUtf8(c.directive)), QString::fromUtf8(c.expected)) << c.directive;
    const QDateTime summer(QDate(2005, 7, 1), QTime(0, 30), Qt::LocalTime);
    EXPECT_EQ(CalendarFormat::format(summer, "%z %I %p"), QStringLiteral("+0200 12 AM"));
    EXPECT_EQ(CalendarFormat::format(march7.toUTC(), "%H"), QStringLiteral("14")) << "shown in the default time zone";
}

} // namespace
