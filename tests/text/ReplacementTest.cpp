#include "NamedException.h"
#include "StringAdditions.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

using namespace StringAdditions;

namespace {

TEST(Snr, ReplacesLiterallyLeftToRightWithoutOverlap)
{
    EXPECT_EQ(snr(QStringLiteral("aaa"), QStringLiteral("aa"), QStringLiteral("b")), QStringLiteral("ba"));
    EXPECT_EQ(snr(QStringLiteral("a.b.c"), QStringLiteral("."), QStringLiteral("\\.")), QStringLiteral("a\\.b\\.c"));
    EXPECT_EQ(snr(QStringLiteral("Aa"), QStringLiteral("a"), QStringLiteral("x")), QStringLiteral("Ax"));
    // Inserted text is not searched again.
    EXPECT_EQ(snr(QStringLiteral("ab"), QStringLiteral("a"), QStringLiteral("aa")), QStringLiteral("aab"));
    EXPECT_EQ(snr(QStringLiteral("abc"), QString(), QStringLiteral("x")), QStringLiteral("abc"));
    EXPECT_EQ(snr(QString(), QStringLiteral("a"), QStringLiteral("x")), QString());
    EXPECT_EQ(snr(QStringLiteral("a(1)"), QStringLiteral("(1)"), QString()), QStringLiteral("a"));
}

TEST(SnrBatch, AppliesPairsInOrder)
{
    EXPECT_EQ(snrBatch(QStringLiteral("abc"), {"a", "b"}, {"b", "c"}), QStringLiteral("ccc"));
    EXPECT_EQ(snrBatch(QStringLiteral("abc"), {"b", "a"}, {"c", "b"}), QStringLiteral("bcc"));
    EXPECT_EQ(snrBatch(QStringLiteral("abc"), {}, {}), QStringLiteral("abc"));
    EXPECT_EQ(snrBatch(QStringLiteral("abc"), {"a"}, {"x", "unused"}), QStringLiteral("xbc"));
}

TEST(SnrBatch, ShorterReplacementListIsACallerFault)
{
    try {
        snrBatch(QStringLiteral("abc"), {"a", "b"}, {"x"});
        FAIL() << "no exception";
    } catch (const NamedException &e) {
        EXPECT_EQ(e.name(), NSRangeException);
        EXPECT_EQ(e.reason(), QStringLiteral("*** -[NSArray objectAtIndex:]: index 1 beyond bounds [0 .. 0]"));
    }
}

TEST(ContainsString, ConsidersCaseOnRequest)
{
    EXPECT_FALSE(containsString(QStringLiteral("Photo"), QStringLiteral("PHO"), true));
    EXPECT_TRUE(containsString(QStringLiteral("Photo"), QStringLiteral("PHO"), false));
    EXPECT_TRUE(containsString(QStringLiteral("Photo"), QStringLiteral("hot"), true));
    EXPECT_FALSE(containsString(QStringLiteral("Photo"), QString(), false));
    EXPECT_TRUE(containsString(QString::fromUtf8("CAFÉ"), QString::fromUtf8("café"), false));
}

struct DelimCase {
    const char *name;
    friend void PrintTo(const DelimCase &c, std::ostream *os) { *os << c.name; }
    QString input;
    QString start;
    QString end;
    QString expected;
};

class Delimited : public testing::TestWithParam<DelimCase> {};

TEST_P(Delimited, CutsBetweenFirstOccurrences)
{
    EXPECT_EQ(substringFromDelim(GetParam().input, GetParam().start, GetParam().end), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, Delimited,
                         testing::Values(DelimCase{"both_found", "a[b]c", "[", "]", "b"},
                                         DelimCase{"start_missing", "a[b]c", "<", ">", "a[b]c"},
                                         DelimCase{"end_missing", "a[b]c", "[", ">", "b]c"},
                                         DelimCase{"end_before_start_ignored", "]a[b]", "[", "]", "b"},
                                         DelimCase{"multi_character", "x<<y>>z", "<<", ">>", "y"},
                                         DelimCase{"empty_start", "abc", "", "c", "abc"},
                                         DelimCase{"empty_end", "a[bc", "[", "", "bc"}),
                         [](const auto &info) { return info.param.name; });

TEST(SubstringToDelim, StopsAtFirstOccurrence)
{
    EXPECT_EQ(substringToDelim(QStringLiteral("name.tar.gz"), QStringLiteral(".")), QStringLiteral("name"));
    EXPECT_EQ(substringToDelim(QStringLiteral("name"), QStringLiteral(".")), QStringLiteral("name"));
    EXPECT_EQ(substringToDelim(QStringLiteral(".hidden"), QStringLiteral(".")), QString(""));
    EXPECT_EQ(substringToDelim(QStringLiteral("abc"), QString()), QStringLiteral("abc"));
}

} // namespace
