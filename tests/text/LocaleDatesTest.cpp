#include "LocalTimeZone.h"
#include "LocaleDates.h"
#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

struct DateCase {
    const char *name;
    const char *locale;
    QString text;
    QDateTime expected; // invalid: not a date in that locale
    friend void PrintTo(const DateCase &c, std::ostream *os) { *os << c.name; }
};

class LocaleDateReading : public testing::TestWithParam<DateCase> {};

TEST_P(LocaleDateReading, FollowsTheTimeLocaleAndRefusesFieldsOutOfRange)
{
    qputenv("TZ", "UTC");
    qunsetenv("LANG");
    qunsetenv("LC_TIME");
    qputenv("LC_ALL", GetParam().locale);
    const auto read = LocaleDates::parse(GetParam().text);
    if (!GetParam().expected.isValid())
        EXPECT_FALSE(read.has_value()) << read.value_or(QDateTime()).toString(Qt::ISODate).toStdString();
    else
        EXPECT_EQ(read.value_or(QDateTime()), GetParam().expected);
}

QDateTime at(int y, int m, int d, int h = 0, int min = 0, int s = 0)
{
    return QDateTime(QDate(y, m, d), QTime(h, min, s));
}

INSTANTIATE_TEST_SUITE_P(
    Locales, LocaleDateReading,
    testing::Values(
        DateCase{"us_month_first", "en_US.UTF-8", "12/21/2002", at(2002, 12, 21)},
        DateCase{"us_refuses_day_first", "en_US.UTF-8", "21/12/2002", {}},
        DateCase{"us_two_digit_year_and_12_hour_time", "en_US.UTF-8", "7/4/10 10:05 PM", at(2010, 7, 4, 22, 5)},
        DateCase{"us_comma_before_time_and_seconds", "en_US.UTF-8", "7/4/2010, 9:05:07 AM", at(2010, 7, 4, 9, 5, 7)},
        DateCase{"us_no_thirtieth_of_february", "en_US.UTF-8", "2/30/2010", {}},
        DateCase{"us_no_hour_25", "en_US.UTF-8", "2/3/2010 25:00", {}},
        DateCase{"gb_day_first_24_hour", "en_GB.UTF-8", "21/12/2002 17:30", at(2002, 12, 21, 17, 30)},
        DateCase{"gb_refuses_month_first", "en_GB.UTF-8", "12/21/2002", {}},
        DateCase{"de_dots_or_slashes", "de_DE.UTF-8", "21.12.2002", at(2002, 12, 21)},
        DateCase{"de_slashes_read_as_dots", "de_DE.UTF-8", "4/7/2010 10:00", at(2010, 7, 4, 10)},
        DateCase{"ja_year_first", "ja_JP.UTF-8", "2002/12/21", at(2002, 12, 21)},
        DateCase{"ja_refuses_year_day_month", "ja_JP.UTF-8", "2002/21/12", {}},
        DateCase{"ja_english_pm", "ja_JP.UTF-8", "2010/7/4 10:00 PM", at(2010, 7, 4, 22)},
        DateCase{"posix_locale_reads_month_first", "C", "12/21/2002", at(2002, 12, 21)},
        DateCase{"trailing_words_are_no_date", "en_US.UTF-8", "12/21/2002 tomorrow", {}},
        DateCase{"text_is_no_date", "en_US.UTF-8", "\"); x(\"", {}},
        DateCase{"empty_is_no_date", "en_US.UTF-8", "", {}}),
    [](const auto &info) { return info.param.name; });

TEST(LocaleDates, TheLocaleNameLosesItsCodesetAndModifier)
{
    qunsetenv("LC_ALL");
    qputenv("LC_TIME", "de_DE.UTF-8@euro");
    EXPECT_EQ(LocaleDates::timeLocaleName(), "de_DE");
    qputenv("LC_TIME", "POSIX");
    EXPECT_EQ(LocaleDates::timeLocaleName(), "en_US_POSIX");
    qunsetenv("LC_TIME");
    qputenv("LANG", "fr_FR");
    EXPECT_EQ(LocaleDates::timeLocaleName(), "fr_FR");
}

class TimeZoneCountry : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        QDir(folder.path()).mkpath("zoneinfo/America");
        QDir(folder.path()).mkpath("zoneinfo/US");
        write("zoneinfo/zone.tab", "# comment\tx\tEurope/London\n"
                                   "GB\t+513030-0000731\tEurope/London\n"
                                   "US\t+404251-0740023\tAmerica/New_York\tEastern (most areas)\n");
        write("zoneinfo/America/New_York", "TZif");
        ASSERT_EQ(::symlink("../America/New_York", path("zoneinfo/US/Eastern").toUtf8().constData()), 0);
    }
    QString path(const QString &relative) const { return folder.path() + u'/' + relative; }
    void write(const QString &relative, const QByteArray &bytes) const
    {
        QFile file(path(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QString country(const QString &zone) const { return SystemTimeZone::countryOfZone(zone, path("zoneinfo/zone.tab")); }

    TemporaryFolder folder;
};

TEST_F(TimeZoneCountry, ComesFromTheZoneTableOrTheZoneALinkNames)
{
    EXPECT_EQ(country("Europe/London"), "GB");
    EXPECT_EQ(country("America/New_York"), "US");
    EXPECT_EQ(country("US/Eastern"), "US");
    EXPECT_EQ(country("Etc/UTC"), "");
    EXPECT_EQ(country(""), "");
    EXPECT_EQ(SystemTimeZone::countryOfZone("Europe/London", path("missing.tab")), "");
}

TEST_F(TimeZoneCountry, TheZoneIsNamedByTheTimezoneFileElseTheLocaltimeLink)
{
    ASSERT_EQ(::symlink("/usr/share/zoneinfo/Europe/Berlin", path("localtime").toUtf8().constData()), 0);
    EXPECT_EQ(SystemTimeZone::zoneName(path("no-timezone"), path("localtime")), "Europe/Berlin");
    write("timezone", "\n");
    EXPECT_EQ(SystemTimeZone::zoneName(path("timezone"), path("localtime")), "Europe/Berlin");
    write("timezone", " Europe/London \nignored\n");
    EXPECT_EQ(SystemTimeZone::zoneName(path("timezone"), path("localtime")), "Europe/London");
    EXPECT_EQ(SystemTimeZone::zoneName(path("none"), path("none")), "");
}

} // namespace
