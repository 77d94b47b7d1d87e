#include "StringAdditions.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

using namespace StringAdditions;

namespace {

struct Case {
    const char *name;
    friend void PrintTo(const Case &c, std::ostream *os) { *os << c.name; }
    QString input;
    QString expected;
};

class TitleCase : public testing::TestWithParam<Case> {};

TEST_P(TitleCase, Composes)
{
    EXPECT_EQ(titleCaseString(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TitleCase,
    testing::Values(Case{"small_words_inside", "the lord of the rings", "The Lord of the Rings"},
                    Case{"one_letter_first_word_lowered_by_A", "a b", "a B"},
                    Case{"separator_run_reduced_to_first", "x  y", "X Y"},
                    Case{"only_space_gives_empty", " ", ""},
                    Case{"leading_space_dropped_trailing_kept", "  ab ", "Ab "},
                    Case{"tab_kept_as_separator", "ab\tcd", "Ab\tCd"},
                    Case{"rest_of_word_never_lowered", "hELLO wORLD", "HELLO WORLD"},
                    Case{"capital_A_ending_a_word", "NASA report", "NASa Report"},
                    Case{"tale_of_two", "A Tale Of Two", "a Tale of Two"},
                    Case{"small_word_at_end_keeps_capital", "what it is", "What It Is"},
                    Case{"small_word_at_start_keeps_capital", "the end", "The End"},
                    Case{"non_overlapping_small_words", "x of of y", "X of Of Y"},
                    Case{"punctuation_is_part_of_word", "rock-n-roll, baby", "Rock-n-roll, Baby"},
                    Case{"non_breaking_space_is_inside_word", QString::fromUtf8("ab\u00a0cd ef"),
                         QString::fromUtf8("Ab\u00a0cd Ef")},
                    Case{"accented_first_letter", QString::fromUtf8("élan vital"), QString::fromUtf8("Élan Vital")},
                    Case{"blank_returns_receiver", "", ""}),
    [](const auto &info) { return info.param.name; });

class StripDiacritical : public testing::TestWithParam<Case> {};

TEST_P(StripDiacritical, RemovesEveryMark)
{
    EXPECT_EQ(stripDiacritical(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StripDiacritical,
    testing::Values(Case{"precomposed", QString::fromUtf8("Crème brûlée"), "Creme brulee"},
                    Case{"already_decomposed", QString::fromUtf8("e\u0301te\u0301"), "ete"},
                    Case{"stacked_marks", QString::fromUtf8("a\u0300\u0301\u0302"), "a"},
                    Case{"no_marks", "plain", "plain"},
                    // Decomposed stays decomposed: the Hangul syllable is not recomposed.
                    Case{"hangul_stays_decomposed", QString::fromUtf8("\uAC00"), QString::fromUtf8("\u1100\u1161")},
                    Case{"supplementary_mark_removed", QString::fromUtf8("a\U0001D167b"), "ab"},
                    Case{"emoji_untouched", QString::fromUtf8("\U0001F600"), QString::fromUtf8("\U0001F600")},
                    Case{"blank", "", ""}),
    [](const auto &info) { return info.param.name; });

// Names of Latin-1 characters take a shorter way; each character must come
// out as it does beside one that forces the general way (ā is past Latin-1).
TEST(StripDiacriticalLatin1, AgreesWithTheGeneralWayForEveryCharacter)
{
    const QString general = QString::fromUtf8("\u0101");
    for (char16_t c = 1; c < 256; ++c) {
        const QString alone = stripDiacritical(QString(QChar(c)) + u'x');
        EXPECT_EQ(alone + u'a', stripDiacritical(QString(QChar(c)) + u'x' + general)) << int(c);
    }
    EXPECT_EQ(stripDiacritical(QString::fromUtf8("Ærøskøbing Åbenrå ÿ")), QString::fromUtf8("Ærøskøbing Abenra y"));
}

TEST(Blank, OnlyTheEmptyStringIsBlank)
{
    EXPECT_TRUE(isBlankString(QString()));
    EXPECT_TRUE(isBlankString(QStringLiteral("")));
    EXPECT_FALSE(isBlankString(QStringLiteral(" ")));
    EXPECT_FALSE(isBlankString(QStringLiteral("\n")));
}

TEST(Reverse, ReversesCodeUnits)
{
    EXPECT_EQ(reverse(QStringLiteral("abc")), QStringLiteral("cba"));
    EXPECT_EQ(reverse(QString()), QString());
    // A surrogate pair is two characters, so reversing swaps its halves.
    const QString pair = QString::fromUtf8("\U0001F600");
    EXPECT_EQ(reverse(pair), QString(pair[1]) + pair[0]);
}

TEST(CaseInsensitiveAffixes, CompareLowercased)
{
    EXPECT_TRUE(hasCaseInsensitivePrefix(QStringLiteral("IMG_0001"), QStringLiteral("img")));
    EXPECT_TRUE(hasCaseInsensitiveSuffix(QStringLiteral("a.JPG"), QStringLiteral(".jpg")));
    EXPECT_FALSE(hasCaseInsensitivePrefix(QStringLiteral("abc"), QString()));
    EXPECT_FALSE(hasCaseInsensitiveSuffix(QStringLiteral("abc"), QString()));
    EXPECT_FALSE(hasCaseInsensitivePrefix(QStringLiteral("ab"), QStringLiteral("abc")));
}

TEST(SharedSets, HoldExactlyTheirCharacters)
{
    for (char16_t c : std::u16string_view(u" \t\n\r\v\f"))
        EXPECT_TRUE(allWhitespaceCharacterSet().contains(c)) << int(c);
    EXPECT_FALSE(allWhitespaceCharacterSet().contains(char16_t(0xA0)));
    EXPECT_TRUE(newlineCharacterSet().contains(u'\n'));
    EXPECT_TRUE(newlineCharacterSet().contains(u'\r'));
    EXPECT_FALSE(newlineCharacterSet().contains(char16_t(0x2028)));
    EXPECT_FALSE(newlineCharacterSet().contains(u' '));
}

} // namespace
