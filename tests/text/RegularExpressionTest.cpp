#include "StringAdditions.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

using namespace StringAdditions;

namespace {

struct MatchCase {
    const char *name;
    friend void PrintTo(const MatchCase &c, std::ostream *os) { *os << c.name; }
    QString input;
    QString pattern;
    int count;
    int options;
    std::optional<QStringList> expected;
    QList<TextRange> ranges;
};

class Matching : public testing::TestWithParam<MatchCase> {};

TEST_P(Matching, AnswersGroupsAndRanges)
{
    const MatchCase &c = GetParam();
    QList<TextRange> ranges = {{99, 99}};
    std::optional<ErrorInfo> error = ErrorInfo{"stale", 1, "stale"};
    EXPECT_EQ(substringsMatchingRegularExpression(c.input, c.pattern, c.count, c.options, &ranges, &error),
              c.expected);
    if (c.expected && c.count != -1) {
        EXPECT_EQ(ranges, c.ranges);
    }
    EXPECT_EQ(error.has_value(), !c.expected.has_value());
}

INSTANTIATE_TEST_SUITE_P(
    Table, Matching,
    testing::Values(
        MatchCase{"two_groups", "file42", "([a-z]+)([0-9]+)", 2, 0, QStringList{"file42", "file", "42"},
                  {{0, 6}, {0, 4}, {4, 2}}},
        MatchCase{"count_zero_whole_match_only", "file42", "([a-z]+)([0-9]+)", 0, 0, QStringList{"file42"}, {{0, 6}}},
        MatchCase{"count_past_groups_stops", "file42", "([a-z]+)([0-9]+)", 5, 0, QStringList{"file42", "file", "42"},
                  {{0, 6}, {0, 4}, {4, 2}}},
        MatchCase{"group_not_taking_part_stops_list", "ac", "a(b)?(c)", 2, 0, QStringList{"ac"}, {{0, 2}}},
        MatchCase{"count_minus_one_gives_whole_receiver", "xx file42 yy", "[0-9]+", -1, 0,
                  QStringList{"xx file42 yy"}, {}},
        MatchCase{"count_below_minus_one_gives_empty_list", "abc", "b", -5, 0, QStringList{}, {}},
        MatchCase{"match_inside", "IMG_0042.JPG", "[0-9]+", 0, 0, QStringList{"0042"}, {{4, 4}}},
        MatchCase{"no_match_is_an_error", "xyz", "b+", 0, 0, std::nullopt, {}},
        MatchCase{"ignore_case_is_two", "ABC", "b", 0, 2, QStringList{"B"}, {{1, 1}}},
        MatchCase{"case_matters_by_default", "ABC", "b", 0, 0, std::nullopt, {}},
        // NEWLINE is 8 for scripts: "^" then matches after a line feed.
        MatchCase{"newline_is_eight", "a\nb", "^b", 0, 8, QStringList{"b"}, {{2, 1}}},
        MatchCase{"without_newline_caret_is_start_only", "a\nb", "^b", 0, 0, std::nullopt, {}},
        // NOSUB is 4: the match is reported, its positions are not.
        MatchCase{"nosub_is_four", "abc", "b", 0, 4, QStringList{""}, {{0, 0}}},
        // Byte offsets are used as character positions: after "é" (two
        // bytes) the match is cut one character late.
        MatchCase{"byte_offsets_shift_after_non_ascii", QString::fromUtf8("é42"), "[0-9]+", 0, 0,
                  QStringList{"2"}, {{2, 1}}},
        // ...and an offset past the end is clamped, never read beyond.
        MatchCase{"offsets_past_end_clamped", QString::fromUtf8("éé1"), "[0-9]", 0, 0, QStringList{""}, {{3, 0}}}),
    [](const auto &info) { return info.param.name; });

TEST(MatchingErrors, CarryDomainCodeAndMessage)
{
    std::optional<ErrorInfo> error;
    EXPECT_EQ(substringsMatchingRegularExpression(QStringLiteral("abc"), QStringLiteral("("), 0, 0, nullptr, &error),
              std::nullopt);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->domain, QStringLiteral("regerror"));
    EXPECT_EQ(error->code, 8); // REG_EPAREN
    EXPECT_FALSE(error->localizedDescription.isEmpty());

    substringsMatchingRegularExpression(QStringLiteral("abc"), QStringLiteral("x"), 0, 0, nullptr, &error);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, 1); // REG_NOMATCH

    substringsMatchingRegularExpression(QStringLiteral("abc"), QStringLiteral("b"), 0, 0, nullptr, &error);
    EXPECT_FALSE(error.has_value()) << "a success clears the error";
}

TEST(MatchingErrors, RangesUntouchedWithoutAMatch)
{
    QList<TextRange> ranges = {{7, 7}};
    substringsMatchingRegularExpression(QStringLiteral("abc"), QStringLiteral("x"), 2, 0, &ranges, nullptr);
    EXPECT_EQ(ranges, QList<TextRange>({{7, 7}}));
    substringsMatchingRegularExpression(QStringLiteral("abc"), QStringLiteral("b"), -1, 0, &ranges, nullptr);
    EXPECT_EQ(ranges, QList<TextRange>({{7, 7}}));
}

TEST(Grep, AnswersYesOnlyForAMatch)
{
    EXPECT_TRUE(grep(QStringLiteral("abbbc"), QStringLiteral("b+"), 0));
    EXPECT_FALSE(grep(QStringLiteral("xyz"), QStringLiteral("b+"), 0));
    EXPECT_FALSE(grep(QStringLiteral("abc"), QStringLiteral("("), 0));
    EXPECT_TRUE(grep(QStringLiteral("ABC"), QStringLiteral("abc"), 2));
    EXPECT_TRUE(grep(QStringLiteral("a|b"), QStringLiteral("a|b"), 0)) << "extended syntax is always on";
    EXPECT_TRUE(grep(QStringLiteral(""), QStringLiteral("^$"), 0));
}

TEST(ValidateWithRegEx, MatchesTheWholeString)
{
    EXPECT_TRUE(validateWithRegEx(QStringLiteral("IMG_0042"), QStringLiteral("[A-Z]+_\\d{4}")));
    EXPECT_FALSE(validateWithRegEx(QStringLiteral("IMG_0042.jpg"), QStringLiteral("[A-Z]+_\\d{4}")));
    EXPECT_FALSE(validateWithRegEx(QStringLiteral("xIMG_0042"), QStringLiteral("[A-Z]+_\\d{4}")));
    EXPECT_TRUE(validateWithRegEx(QString::fromUtf8("Ünïcödé"), QStringLiteral("\\p{L}+")));
    EXPECT_TRUE(validateWithRegEx(QStringLiteral("a@b.org"), QStringLiteral("(?i)[A-Z]+@[A-Z]+\\.ORG")));
    EXPECT_FALSE(validateWithRegEx(QStringLiteral("abc"), QStringLiteral("(")));
    EXPECT_TRUE(validateWithRegEx(QString(), QStringLiteral(".*")));
}

} // namespace
