#include "NamedException.h"
#include "StringAdditions.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

using namespace StringAdditions;

namespace {

struct SplitCase {
    const char *name;
    friend void PrintTo(const SplitCase &c, std::ostream *os) { *os << c.name; }
    QString input;
    QStringList expected;
};

class Words : public testing::TestWithParam<SplitCase> {};

TEST_P(Words, AreRunsOfLettersMarksAndDashes)
{
    EXPECT_EQ(words(GetParam().input), GetParam().expected);
    EXPECT_EQ(wordCount(GetParam().input), GetParam().expected.size());
}

INSTANTIATE_TEST_SUITE_P(
    Table, Words,
    testing::Values(SplitCase{"dashes_join_punctuation_splits", "rock-n-roll, baby", {"rock-n-roll", "baby"}},
                    SplitCase{"digits_separate", "abc123def", {"abc", "def"}},
                    SplitCase{"marks_stay_in_words", "e\u0301te\u0301 ok", {"e\u0301te\u0301", "ok"}},
                    SplitCase{"non_latin_letters", "Привет мир", {"Привет", "мир"}},
                    SplitCase{"underscore_separates", "IMG_0042_final", {"IMG", "final"}},
                    SplitCase{"no_letters", "123 456", {}},
                    SplitCase{"empty", "", {}}),
    [](const auto &info) { return info.param.name; });

class Paragraphs : public testing::TestWithParam<SplitCase> {};

TEST_P(Paragraphs, EndAtEveryLineTerminator)
{
    EXPECT_EQ(paragraphs(GetParam().input), GetParam().expected);
    EXPECT_EQ(paragraphCount(GetParam().input), GetParam().expected.size());
}

INSTANTIATE_TEST_SUITE_P(
    Table, Paragraphs,
    testing::Values(SplitCase{"trailing_terminator_adds_empty", "a\nb\n", {"a", "b", ""}},
                    SplitCase{"no_terminator", "a", {"a"}},
                    SplitCase{"crlf_is_one_terminator", "a\r\nb", {"a", "b"}},
                    SplitCase{"lf_cr_is_two", "a\n\rb", {"a", "", "b"}},
                    SplitCase{"unicode_separators", "a\u2028b\u2029c\u0085d", {"a", "b", "c", "d"}},
                    SplitCase{"form_feed_is_not_a_terminator", "a\fb", {"a\fb"}},
                    SplitCase{"only_terminator", "\n", {"", ""}},
                    SplitCase{"empty", "", {}}),
    [](const auto &info) { return info.param.name; });

TEST(Tokens, SkipSeparatorsAndNeverYieldEmptyTokens)
{
    const CharacterSet separators = CharacterSet::fromCharacters(QStringLiteral(",; "));
    EXPECT_EQ(tokensSeparatedByCharactersFromSet(QStringLiteral(",,a;b ,c,,"), separators),
              QStringList({"a", "b", "c"}));
    EXPECT_EQ(tokensSeparatedByCharactersFromSet(QStringLiteral(",,;"), separators), QStringList());
    // The separator set replaces the default skipping: white space that is
    // not a separator stays inside tokens.
    EXPECT_EQ(tokensSeparatedByCharactersFromSet(QStringLiteral("a b,c"), CharacterSet::fromCharacters(",")),
              QStringList({"a b", "c"}));
}

TEST(Characters, AreCodeUnits)
{
    EXPECT_EQ(characters(QStringLiteral("ab")), QStringList({"a", "b"}));
    EXPECT_EQ(characterCount(QString::fromUtf8("\U0001F600")), 2);
    EXPECT_TRUE(characters(QString()).isEmpty());
    EXPECT_EQ(firstCharacter(QStringLiteral("xyz")), QStringLiteral("x"));
    EXPECT_EQ(firstCharacter(QStringLiteral("x")), QStringLiteral("x"));
    EXPECT_EQ(firstCharacter(QString()), QString());
}

TEST(IndexedAccess, UsesUnsignedThirtyTwoBitIndexes)
{
    const QString abc = QStringLiteral("abc");
    EXPECT_EQ(charAtIndex(abc, 0), QStringLiteral("a"));
    EXPECT_EQ(charAtIndex(abc, 2), QStringLiteral("c"));
    EXPECT_EQ(charAtIndex(abc, UINT32_MAX), QStringLiteral("c"));
    EXPECT_EQ(charAtIndex(abc, 3), std::nullopt);
    EXPECT_EQ(charAtIndex(abc, UINT32_MAX - 1), std::nullopt);
    EXPECT_EQ(wordAtIndex(QStringLiteral("one two three"), 1), QStringLiteral("two"));
    EXPECT_EQ(wordAtIndex(QStringLiteral("one two three"), UINT32_MAX), QStringLiteral("three"));
    EXPECT_EQ(paragraphAtIndex(QStringLiteral("a\nb\n"), UINT32_MAX), QString(""));
    EXPECT_EQ(paragraphAtIndex(QStringLiteral("a\nb"), 5), std::nullopt);
}

TEST(IndexedAccess, EmptyListAnswersNilForLastAndRaisesOtherwise)
{
    EXPECT_EQ(charAtIndex(QString(), UINT32_MAX), std::nullopt);
    EXPECT_EQ(wordAtIndex(QStringLiteral("123"), UINT32_MAX), std::nullopt);
    for (quint32 index : {0u, 1u, UINT32_MAX - 1}) {
        try {
            charAtIndex(QString(), index);
            ADD_FAILURE() << "no exception for index " << index;
        } catch (const NamedException &e) {
            EXPECT_EQ(e.name(), NSRangeException);
            EXPECT_TRUE(e.reason().contains(QString::number(index))) << e.reason().toStdString();
        }
    }
    EXPECT_THROW(paragraphAtIndex(QString(), 0), NamedException);
}

} // namespace
