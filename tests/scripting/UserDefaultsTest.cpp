#include "DateHelpers.h"
#include "MethodTable.h"
#include "NamedException.h"
#include "PathCodec.h"
#include "TestPrinting.h"
#include "UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QObject>
#include "TemporaryFolder.h"
#include <QTimeZone>
#include <gtest/gtest.h>
#include <plist/plist.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using D = UserDefaults;

// Every value kind a default may hold, with its C type.
QVariantMap typedValues()
{
    return {{"bool", true},
            {"char", QVariant::fromValue(char('x'))},
            {"short", QVariant::fromValue(short(-12))},
            {"ushort", QVariant::fromValue(ushort(65000))},
            {"int", -7},
            {"uint", 4000000000u},
            {"long", QVariant::fromValue(long(-1) << 40)},
            {"ulong", QVariant::fromValue(ulong(1) << 63)},
            {"longlong", qlonglong(-5)},
            {"float", 1.5f},
            {"double", 0.1},
            {"string", "é \n /"},
            {"date", QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6, 7), QTimeZone(3600))},
            {"data", QByteArray("\0\xff", 2)},
            {"list", QVariantList{1, "two", QVariantList{3.5}}},
            {"map", QVariantMap{{"a", QVariantMap{{"b", false}}}}}};
}

// The defaults live in a settings file under a private configuration
// folder; each test runs in a process of its own.
class Defaults : public testing::Test {
protected:
    void SetUp() override { qputenv("XDG_CONFIG_HOME", PathCodec::encode(config.path())); }
    // Written now, while the folder is there: else the defaults are written
    // as the process ends and make the folder again.
    void TearDown() override { D::synchronizeDefaults(); }
    TemporaryFolder config;
};

TEST_F(Defaults, KeepTheirTypesAcrossARestartOverTheRegisteredFallbacks)
{
    const QVariantMap values = typedValues();
    // The first run writes and ends; the second (this process, which has not
    // yet opened the settings) reads what it left.
    const pid_t writer = fork();
    if (writer == 0) {
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            D::writeDefault(it.value(), it.key() + "/key");
        D::writeDefault("user", "shadowed");
        D::synchronizeDefaults();
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(writer, &status, 0), writer);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);

    D::registerDefaults({{"shadowed", "fallback"}, {"onlyRegistered", 3}});
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        const QVariant read = D::readDefault(it.key() + "/key");
        EXPECT_EQ(read.metaType(), it.value().metaType()) << it.key().toStdString();
        EXPECT_EQ(read, it.value()) << it.key().toStdString();
    }
    EXPECT_EQ(D::readDefault("shadowed"), QVariant("user"));
    EXPECT_TRUE(D::defaultExists("onlyRegistered"));
    D::removeDefault("shadowed");
    EXPECT_EQ(D::readDefault("shadowed"), QVariant("fallback"));
    D::removeDefault("onlyRegistered");
    EXPECT_TRUE(D::defaultExists("onlyRegistered")) << "a registered fallback cannot be removed";
    D::writeDefault(QVariant(), "string/key");
    EXPECT_FALSE(D::defaultExists("string/key"));
    EXPECT_FALSE(D::readDefault("never").isValid());

    // Nothing registered reached the file.
    D::synchronizeDefaults();
    QFile file(config.path() + "/Nomen/Nomen.conf");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(file.readAll().contains("onlyRegistered"));
}

TEST_F(Defaults, ArchivesRoundTripAndDamageAnswersNilWithALogLine)
{
    const QVariantMap values = typedValues();
    D::writeArchivedDataDefault(values, "archived");
    EXPECT_EQ(D::readArchivedDataDefault("archived"), QVariant(values));
    EXPECT_EQ(D::readDefault("archived").typeId(), QMetaType::QByteArray);

    D::writeDefault("plain", "plain");
    EXPECT_EQ(D::readArchivedDataDefault("plain"), QVariant("plain"));
    D::writeDefault(QByteArray("not an archive"), "bytes");
    EXPECT_EQ(D::readArchivedDataDefault("bytes"), QVariant(QByteArray("not an archive")));
    EXPECT_FALSE(D::readArchivedDataDefault("missing").isValid());

    const QByteArray whole = D::archive(values);
    for (const QByteArray &damaged : {whole.left(whole.size() - 3), whole.left(5), QByteArray("NMAR\x7f"),
                                      whole + "trailing"}) {
        D::writeDefault(damaged, "damaged");
        testing::internal::CaptureStderr();
        EXPECT_FALSE(D::readArchivedDataDefault("damaged").isValid());
        EXPECT_NE(testing::internal::GetCapturedStderr().find("readArchivedDataDefault: the archive under \"damaged\" is damaged"),
                  std::string::npos);
    }

    QObject window;
    try {
        D::writeArchivedDataDefault(QVariantList{1, QVariant::fromValue(&window)}, "window");
        FAIL() << "an object Qt cannot stream is refused";
    } catch (const NamedException &e) {
        EXPECT_EQ(e.name(), NSInvalidArgumentException);
        EXPECT_EQ(e.reason(), "-[QObject encodeWithCoder:]: unrecognized selector sent to instance");
    }
    EXPECT_THROW(D::writeDefault(QVariant::fromValue(&window), "window"), NamedException);
    EXPECT_FALSE(D::defaultExists("window"));
}

TEST_F(Defaults, TheCountryCodeIsTheCityRecordsFifthFieldInCapitals)
{
    const QString key = "com.apple.TimeZonePref.Last_Selected_City";
    D::writeDefault(QVariantList{"London", "51.5", "-0.1", "Europe/London", "gb"}, key);
    EXPECT_EQ(D::returnUserCountryCode(), "GB");
    D::writeDefault(QVariantList{"a", "b"}, key);
    EXPECT_THROW(D::returnUserCountryCode(), NamedException);
}

QString writeFile(const TemporaryFolder &folder, const QString &name, const QByteArray &bytes)
{
    QFile file(folder.filePath(name));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return file.fileName();
}

TEST_F(Defaults, PropertyListFilesInXmlOrBinaryAndGarbageLogsOneLine)
{
    plist_t dict = plist_new_dict();
    plist_dict_set_item(dict, "name", plist_new_string("Nomen ✓"));
    plist_dict_set_item(dict, "count", plist_new_uint(uint64_t(-3)));
    plist_dict_set_item(dict, "big", plist_new_uint(uint64_t(1) << 40));
    plist_dict_set_item(dict, "when", plist_new_date(86400 + 1, 0));
    plist_t list = plist_new_array();
    plist_array_append_item(list, plist_new_bool(1));
    plist_array_append_item(list, plist_new_data("\0x", 2));
    plist_array_append_item(list, plist_new_real(2.5));
    plist_dict_set_item(dict, "list", list);
    char *xml = nullptr;
    char *binary = nullptr;
    uint32_t xmlLength = 0;
    uint32_t binaryLength = 0;
    plist_to_xml(dict, &xml, &xmlLength);
    plist_to_bin(dict, &binary, &binaryLength);
    plist_free(dict);
    const TemporaryFolder folder;
    const QStringList files{writeFile(folder, "a.plist", QByteArray(xml, xmlLength)),
                            writeFile(folder, "b.plist", QByteArray(binary, binaryLength))};
    free(xml);
    free(binary);

    for (const QString &path : files) {
        EXPECT_EQ(D::returnPlistValueForKey(path, "name"), QVariant("Nomen ✓"));
        EXPECT_EQ(D::returnPlistValueForKey(path, "count"), QVariant(-3));
        EXPECT_EQ(D::returnPlistValueForKey(path, "big"), QVariant(qlonglong(1) << 40));
        EXPECT_EQ(D::returnPlistValueForKey(path, "when").toDateTime().toUTC().toString(Qt::ISODateWithMs),
                  "2001-01-02T00:00:01.000Z");
        EXPECT_EQ(D::returnPlistValueForKey(path, "list"), QVariant(QVariantList{true, QByteArray("\0x", 2), 2.5}));
        EXPECT_FALSE(D::returnPlistValueForKey(path, "absent").isValid());
    }

    const QString garbage = writeFile(folder, "c.plist", "<plist><dict><key>a</key>");
    for (const QString &bad : {garbage, folder.filePath("missing.plist"), folder.path()}) {
        testing::internal::CaptureStderr();
        EXPECT_FALSE(D::returnPlistValueForKey(bad, "a").isValid());
        const QString logged = QString::fromStdString(testing::internal::GetCapturedStderr());
        EXPECT_EQ(logged.count('\n'), 1) << logged.toStdString();
        EXPECT_TRUE(logged.contains("returnPlistValue error: " + bad)) << logged.toStdString();
    }
    EXPECT_EQ(D::returnPlistValue("CFBundleName"), QVariant("Nomen"));
    EXPECT_FALSE(D::returnPlistValue("CFBundleShortVersionString").toString().isEmpty());
}

struct RelativeCase {
    const char *name;
    QDateTime now;
    QVariant date;
    QString expected;
    friend void PrintTo(const RelativeCase &c, std::ostream *os) { *os << c.name; }
};

class RelativeDays : public testing::TestWithParam<RelativeCase> {};

// Calendar days in Berlin: a day of 23 hours in March, of 25 in October.
TEST_P(RelativeDays, CountCalendarDaysInTheLocalTimeZone)
{
    qputenv("TZ", "Europe/Berlin");
    tzset();
    const QDateTime now = GetParam().now;
    DateHelpers::setClock([now] { return now; });
    EXPECT_EQ(DateHelpers::relativeDescriptionForDate(GetParam().date, "%d.%m.%Y %H:%M").toString(),
              GetParam().expected);
}

QDateTime berlin(int y, int mo, int d, int h, int mi)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi), QTimeZone("Europe/Berlin"));
}

INSTANTIATE_TEST_SUITE_P(
    FixedClock, RelativeDays,
    testing::Values(
        RelativeCase{"just_before_midnight_is_yesterday", berlin(2026, 3, 29, 0, 30), berlin(2026, 3, 28, 23, 59), "Yesterday"},
        RelativeCase{"later_on_a_23_hour_day_is_today", berlin(2026, 3, 29, 0, 30), berlin(2026, 3, 29, 23, 59), "Today"},
        RelativeCase{"after_spring_forward_is_tomorrow", berlin(2026, 3, 29, 23, 0), berlin(2026, 3, 30, 0, 0), "Tomorrow"},
        RelativeCase{"two_days_back_is_the_date", berlin(2026, 3, 29, 0, 30), berlin(2026, 3, 27, 23, 59), "27.03.2026 23:59"},
        RelativeCase{"end_of_a_25_hour_day_is_today", berlin(2026, 10, 25, 0, 10), berlin(2026, 10, 25, 23, 50), "Today"},
        RelativeCase{"an_instant_in_another_zone_counts_here", berlin(2026, 10, 25, 12, 0),
                     QDateTime(QDate(2026, 10, 25), QTime(20, 0), QTimeZone("America/New_York")), "Tomorrow"},
        RelativeCase{"a_text_in_the_default_form", berlin(2026, 3, 29, 0, 30), "2026-03-28 23:59:00 +0100", "Yesterday"},
        RelativeCase{"a_text_that_is_no_date_is_empty", berlin(2026, 3, 29, 0, 30), "yesterday", ""}),
    [](const auto &info) { return info.param.name; });

TEST(RelativeDescription, AnEmptyFormatFallsBackToTheDefaultThenTheLocale)
{
    TemporaryFolder config;
    qputenv("XDG_CONFIG_HOME", PathCodec::encode(config.path()));
    const struct Written {
        ~Written() { D::synchronizeDefaults(); } // while the folder is there
    } written;
    qputenv("LC_ALL", "en_US.UTF-8");
    const QDateTime now(QDate(2026, 5, 10), QTime(12, 0));
    DateHelpers::setClock([now] { return now; });
    const QDateTime then(QDate(2026, 5, 1), QTime(8, 0));
    EXPECT_EQ(DateHelpers::relativeDescriptionForDate(then, QVariant()).toString().left(19), "2026-05-01 08:00:00");
    EXPECT_FALSE(DateHelpers::relativeDescriptionForDate(then, "").toString().isEmpty());
    D::writeDefault("%Y/%m/%d", "NSDateFormatString");
    EXPECT_EQ(DateHelpers::relativeDescriptionForDate(then, ""), QVariant("2026/05/01"));
    EXPECT_EQ(DateHelpers::relativeDescriptionForDate(42, ""), QVariant(42));
}

struct ProbeCase {
    const char *locale;
    QString label;
    QString numeric;
    QString localDate; // month 7, day 4, year 2010, "10:00"
    friend void PrintTo(const ProbeCase &c, std::ostream *os) { *os << c.locale; }
};

class DateProbe : public testing::TestWithParam<ProbeCase> {};

TEST_P(DateProbe, FindsTheLocalesOrderAndBuildsDatesInIt)
{
    qputenv("LC_ALL", GetParam().locale);
    qputenv("TZ", "UTC");
    tzset();
    const MethodRegistry methods = buildMethodTable();
    using namespace DateHelpers;
    EXPECT_EQ(returnDateFormat(methods, false, false, false), QVariant(GetParam().label));
    EXPECT_EQ(returnDateFormat(methods, false, false, true), QVariant(GetParam().numeric));
    EXPECT_EQ(makeLocalDate(methods, true, 7, 4, 2010, "10:00"), QVariant(GetParam().localDate));
    EXPECT_EQ(makeLocalDate(methods, false, 7, 4, 2010, "10:00"),
              QVariant(QDateTime(QDate(2010, 7, 4), QTime(10, 0))));
    // A text that would be code if it were not quoted stays a text.
    for (const QString &text : {QString("12/21/2002\") || (\""), QString("${1}\\\u2028\n'"), QString("12/21/2002\\")})
        EXPECT_FALSE(testDate(methods, text)) << text.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Locales, DateProbe,
                         testing::Values(ProbeCase{"en_US.UTF-8", "MM/DD/YYYY", "1/2/3", "7/4/2010 10:00"},
                                         ProbeCase{"en_GB.UTF-8", "DD/MM/YYYY", "2/1/3", "4/7/2010 10:00"},
                                         ProbeCase{"de_DE.UTF-8", "DD/MM/YYYY", "2/1/3", "4/7/2010 10:00"},
                                         ProbeCase{"ja_JP.UTF-8", "YYYY/MM/DD", "3/1/2", "2010/7/4 10:00"}),
                         [](const auto &info) { return std::string(info.param.locale).substr(0, 5); });

TEST(ScriptedSelectors, BatchCallsReachExactlyWhatAScriptCould)
{
    const MethodRegistry methods = buildMethodTable();
    const NativeMethod *batch = methods.find(MethodKind::Class, "ROZ_MiscMethods", "batchReturnObjectFromObjects:forKey:");
    ASSERT_NE(batch, nullptr);
    Invocation call;
    call.methods = &methods;
    call.arguments = {QVariantList{"two words", 5, QVariantMap{{"a", 1}}, "one"}, "wordCount"};
    EXPECT_EQ((*batch)(call), QVariant(QVariantList{qlonglong(2), qlonglong(1)}));
    call.arguments = {QVariantList{QVariantMap{{"a", 1}}, "x"}, "count"};
    EXPECT_EQ((*batch)(call), QVariant(QVariantList{}));
    call.arguments = {QVariantList{"a"}, "clean:"};
    EXPECT_EQ((*batch)(call), QVariant(QVariantList{})) << "a selector that takes an argument is answered by none";
}

} // namespace
