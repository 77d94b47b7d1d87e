#include "TextScanner.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

namespace {

const CharacterSet digits = CharacterSet::fromCharacters(QStringLiteral("0123456789"));

TEST(Scanner, SkipsWhiteSpaceAndNewlinesBeforeEachScan)
{
    TextScanner scanner(QStringLiteral(" \n\t42 7"));
    QString run;
    ASSERT_TRUE(scanner.scanCharactersFromSet(digits, &run));
    EXPECT_EQ(run, QStringLiteral("42"));
    EXPECT_EQ(scanner.scanLocation(), 5);
    ASSERT_TRUE(scanner.scanCharactersFromSet(digits, &run));
    EXPECT_EQ(run, QStringLiteral("7"));
    EXPECT_TRUE(scanner.isAtEnd());
}

TEST(Scanner, FailedScanLeavesLocationAndOutputAlone)
{
    TextScanner scanner(QStringLiteral("  x1"));
    QString run = QStringLiteral("untouched");
    EXPECT_FALSE(scanner.scanCharactersFromSet(digits, &run));
    EXPECT_EQ(run, QStringLiteral("untouched"));
    EXPECT_EQ(scanner.scanLocation(), 0);
    // Scanning up to a character that is next gives nothing either.
    EXPECT_FALSE(scanner.scanUpToCharactersFromSet(CharacterSet::fromCharacters("x"), &run));
    EXPECT_EQ(scanner.scanLocation(), 0);
}

TEST(Scanner, ScanUpToStopsBeforeTheSetOrAtTheEnd)
{
    TextScanner scanner(QStringLiteral("ab,cd"));
    const CharacterSet comma = CharacterSet::fromCharacters(QStringLiteral(","));
    QString run;
    ASSERT_TRUE(scanner.scanUpToCharactersFromSet(comma, &run));
    EXPECT_EQ(run, QStringLiteral("ab"));
    scanner.setScanLocation(scanner.scanLocation() + 1);
    ASSERT_TRUE(scanner.scanUpToCharactersFromSet(comma, &run));
    EXPECT_EQ(run, QStringLiteral("cd"));
    EXPECT_FALSE(scanner.scanUpToCharactersFromSet(comma, &run));
}

TEST(Scanner, AtEndWhenOnlySkippableCharactersRemain)
{
    EXPECT_TRUE(TextScanner(QString()).isAtEnd());
    EXPECT_TRUE(TextScanner(QString::fromUtf8(" \u00a0\u2028\r\n")).isAtEnd());
    EXPECT_FALSE(TextScanner(QStringLiteral(" a")).isAtEnd());
    TextScanner custom(QStringLiteral(" "));
    custom.setCharactersToBeSkipped(CharacterSet());
    EXPECT_FALSE(custom.isAtEnd());
}

TEST(Scanner, LocationIsClampedToTheText)
{
    TextScanner scanner(QStringLiteral("abc"));
    scanner.setScanLocation(10);
    EXPECT_EQ(scanner.scanLocation(), 3);
    scanner.setScanLocation(-4);
    EXPECT_EQ(scanner.scanLocation(), 0);
}

TEST(CharacterSets, FollowUnicodeCategories)
{
    const CharacterSet &space = CharacterSet::whitespaceAndNewlines();
    for (char16_t c : {u' ', u'\t', u'\n', u'\v', u'\f', u'\r', char16_t(0x85), char16_t(0xA0), char16_t(0x2003),
                       char16_t(0x2028), char16_t(0x2029), char16_t(0x3000)})
        EXPECT_TRUE(space.contains(c)) << int(c);
    for (char16_t c : {u'a', u'_', char16_t(0x200B), char16_t(0xD800)})
        EXPECT_FALSE(space.contains(c)) << int(c);
    EXPECT_TRUE(CharacterSet::letters().contains(char16_t(0x0301)));
    EXPECT_TRUE(CharacterSet::letters().contains(char16_t(0x4E2D)));
    EXPECT_FALSE(CharacterSet::letters().contains(u'1'));
    EXPECT_TRUE(CharacterSet::nonBase().contains(char16_t(0x0301)));
    EXPECT_FALSE(CharacterSet::nonBase().contains(u'e'));
    const CharacterSet ab = CharacterSet::fromCharacters(QStringLiteral("ab"));
    EXPECT_FALSE(ab.inverted().contains(u'a'));
    EXPECT_TRUE(ab.inverted().contains(u'c'));
    EXPECT_TRUE(ab.united(digits).contains(u'5'));
}

} // namespace
