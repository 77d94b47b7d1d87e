#include "StringAdditions.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

using namespace StringAdditions;

namespace {

struct CleanCase {
    const char *name;
    friend void PrintTo(const CleanCase &c, std::ostream *os) { *os << c.name; }
    QString input;
    QString allowed;
    QString expected;
};

class Clean : public testing::TestWithParam<CleanCase> {};

TEST_P(Clean, KeepsOnlyAllowedCharacters)
{
    EXPECT_EQ(clean(GetParam().input, GetParam().allowed), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Clean,
    testing::Values(CleanCase{"spaces_inside_allowed_run_kept", "a  b", "ab ", "a  b"},
                    CleanCase{"spaces_after_removed_character_dropped", "a-  b", "ab ", "ab"},
                    CleanCase{"leading_space_dropped_even_if_allowed", "  ab", "ab ", "ab"},
                    CleanCase{"digits_only", "IMG_0042.jpg", "0123456789", "0042"},
                    CleanCase{"nothing_allowed", "abc", "", ""},
                    CleanCase{"newline_is_skipped_like_space", "a\n\nb", "ab", "ab"},
                    CleanCase{"trailing_space_in_run_kept", "ab  ", "ab ", "ab  "},
                    CleanCase{"blank", "", "abc", ""}),
    [](const auto &info) { return info.param.name; });

struct TrimCase {
    const char *name;
    friend void PrintTo(const TrimCase &c, std::ostream *os) { *os << c.name; }
    QString input;
    QStringList set;
    QString start;
    QString end;
    QString both;
};

class Trim : public testing::TestWithParam<TrimCase> {};

TEST_P(Trim, RemovesMembersAtEachEnd)
{
    const TrimCase &c = GetParam();
    EXPECT_EQ(trimFromStart(c.input, c.set), c.start);
    EXPECT_EQ(trimFromEnd(c.input, c.set), c.end);
    EXPECT_EQ(trimFromBoth(c.input, c.set), c.both);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Trim,
    testing::Values(TrimCase{"all_members", "000", {"0"}, "", "", ""},
                    TrimCase{"leading_zeros", "0102", {"0"}, "102", "0102", "102"},
                    TrimCase{"several_members", "-_ a b _-", {"-", "_", " "}, "a b _-", "-_ a b", "a b"},
                    TrimCase{"longer_strings_never_match", "ababa", {"ab", "ba"}, "ababa", "ababa", "ababa"},
                    TrimCase{"empty_collection", " x ", {}, " x ", " x ", " x "},
                    TrimCase{"blank", "", {" "}, "", "", ""}),
    [](const auto &info) { return info.param.name; });

TEST(CleanWithReplace, ReplacesEachMemberByTheReplacement)
{
    const QStringList forbidden = {"/", ":", "*"};
    EXPECT_EQ(cleanWithReplace(QStringLiteral("a/b:c*d"), forbidden, QStringLiteral("_")), QStringLiteral("a_b_c_d"));
    EXPECT_EQ(cleanWithReplace(QStringLiteral("a/b"), forbidden, QString()), QStringLiteral("ab"));
    EXPECT_EQ(cleanWithReplace(QStringLiteral("a/b"), forbidden, QStringLiteral("--")), QStringLiteral("a--b"));
    EXPECT_EQ(cleanWithReplace(QString(), forbidden, QStringLiteral("_")), QString());
}

struct AffixCase {
    const char *name;
    friend void PrintTo(const AffixCase &c, std::ostream *os) { *os << c.name; }
    QString (*operation)(const QString &, const QString &);
    QString input;
    QString affix;
    QString expected;
};

class Affixes : public testing::TestWithParam<AffixCase> {};

TEST_P(Affixes, RemoveOnlyWhatMatches)
{
    EXPECT_EQ(GetParam().operation(GetParam().input, GetParam().affix), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Affixes,
    testing::Values(AffixCase{"deprefix_bare", &deprefix, "IMG_0001", "IMG", "_0001"},
                    AffixCase{"deprefix_keeps_space", &deprefix, "IMG 0001", "IMG", " 0001"},
                    AffixCase{"deprefix_keeps_dash_separator", &deprefix, "Photo - Beach", "Photo", " - Beach"},
                    AffixCase{"deprefix_empty_removes_one_space", &deprefix, "  x", "", " x"},
                    AffixCase{"deprefix_empty_removes_one_dash", &deprefix, "--x", "", "-x"},
                    AffixCase{"deprefix_empty_no_separator", &deprefix, "x", "", "x"},
                    AffixCase{"deprefix_case_sensitive", &deprefix, "img_1", "IMG", "img_1"},
                    AffixCase{"deprefix_not_a_prefix", &deprefix, "DSC_1", "IMG", "DSC_1"},
                    AffixCase{"desuffix_match", &desuffix, "a.jpg", ".jpg", "a"},
                    AffixCase{"desuffix_case_sensitive", &desuffix, "a.JPG", ".jpg", "a.JPG"},
                    AffixCase{"desuffix_empty", &desuffix, "a", "", "a"},
                    AffixCase{"deprefix_ci", &deprefixCaseInsensitive, "img_0001", "IMG", "_0001"},
                    AffixCase{"deprefix_ci_empty_changes_nothing", &deprefixCaseInsensitive, " x", "", " x"},
                    AffixCase{"desuffix_ci", &desuffixCaseInsensitive, "a.jpg", ".JPG", "a"},
                    AffixCase{"desuffix_ci_whole", &desuffixCaseInsensitive, "JPG", "jpg", ""},
                    // Lower-casing the dotted capital I gives two code units:
                    // the cut must stay inside the receiver.
                    AffixCase{"ci_length_change_stays_inside", &desuffixCaseInsensitive, "i\u0307",
                              QString::fromUtf8("\u0130"), "i"}),
    [](const auto &info) { return info.param.name; });

} // namespace
