#include "StringAdditions.h"
#include "SystemLog.h"
#include "TestPrinting.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

struct FormatCase {
    const char *name;
    friend void PrintTo(const FormatCase &c, std::ostream *os) { *os << c.name; }
    QString format;
    QString expected;
};

class LogFormat : public testing::TestWithParam<FormatCase> {};

TEST_P(LogFormat, DirectivesWithoutArgumentsReadNothing)
{
    EXPECT_EQ(SystemLog::formatWithoutArguments(GetParam().format), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, LogFormat,
                         testing::Values(FormatCase{"plain", "hello", "hello"},
                                         FormatCase{"percent", "100%%", "100%"},
                                         FormatCase{"object", "a %@ b", "a (null) b"},
                                         FormatCase{"c_string", "%s", "(null)"},
                                         FormatCase{"integer_with_width", "[%5d]", "[    0]"},
                                         FormatCase{"long_forms", "%ld %lld %lu %D", "0 0 0 0"},
                                         FormatCase{"hex", "%#x %04X", "0 0000"},
                                         FormatCase{"float", "%.2f", "0.00"},
                                         FormatCase{"character", "[%c]", "[]"},
                                         FormatCase{"star_width_has_no_argument", "[%*d]", "[0]"},
                                         FormatCase{"huge_width_clamped", "%999999999d", QString(4096 - 1, ' ') + "0"},
                                         FormatCase{"unknown_directive_kept", "%y %k", "%y %k"},
                                         FormatCase{"dangling_percent_kept", "50%", "50%"},
                                         FormatCase{"positional_kept", "%1$@", "%1$@"}),
                         [](const auto &info) { return info.param.name; });

TEST(SystemLog, WritesOneStampedLineToStandardError)
{
    testing::internal::CaptureStderr();
    StringAdditions::log(QStringLiteral("renamed %d files, 100%% done"));
    const QString written = QString::fromStdString(testing::internal::GetCapturedStderr());
    const QRegularExpression line(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} \\S+\\[\\d+\\] renamed 0 files, 100% done\\n$"));
    EXPECT_TRUE(line.match(written).hasMatch()) << written.toStdString();
}

} // namespace
