#include "StringAdditions.h"

#include <gtest/gtest.h>

using namespace StringAdditions;

TEST(Shaping, WrappingBreaksAtSpacesAndHyphensOrCutsOneShort)
{
    EXPECT_EQ(wrapToLength(QStringLiteral("aaaa bbbb cccc"), 10), "aaaa bbbb\ncccc");
    EXPECT_EQ(wrapToLength(QStringLiteral("abcdefghijklm"), 10), "abcdefghi\njklm");
    EXPECT_EQ(wrapToLength(QStringLiteral("aaaa-bbbbbbb"), 10), "aaaa\n-bbbbbbb");
    EXPECT_EQ(wrapToLength(QStringLiteral("short"), 10), "short");
    // Each line by itself; lines already short pass unchanged.
    // The break is looked for from one before the length down: a space just
    // at the length is not seen.
    EXPECT_EQ(wrapToLength(QStringLiteral("one two three\nok\nfour five six"), 9), "one two\nthree\nok\nfour\nfive six");
    EXPECT_EQ(wrapToLength(QStringLiteral("a  b"), 3), "a \nb") << "one space is taken off after the break";
    for (quint32 length = 2; length < 12; ++length)
        for (const QString &line : wrapToLength(QStringLiteral("the quick-brown fox jumpedoverthelazydog"), length).split(u'\n'))
            EXPECT_LE(line.size(), qsizetype(length)) << length;
    EXPECT_EQ(wrapToLength(QStringLiteral("abc"), 1), "abc") << "too short a line to wrap to";
}

TEST(Shaping, OrdinalsTakeTheLastDigitsSuffixSaveTheExceptions)
{
    const std::pair<qint32, const char *> cases[] = {
        {1, "1st"},   {2, "2nd"},    {3, "3rd"},     {4, "4th"},     {11, "11th"},  {12, "12th"},      {13, "13th"},
        {21, "21st"}, {101, "101st"}, {111, "111st"}, {112, "112nd"}, {0, "0"},      {-1, "-1st"},      {-11, "-11th"},
        {-21, "-21st"}, {-13, "-13th"}, {-112, "-112nd"}, {INT_MIN, "-2147483648th"}};
    for (const auto &[n, expected] : cases)
        EXPECT_EQ(ordinalStringForInt(n), QString::fromLatin1(expected)) << n;
}

TEST(Shaping, PluralsCountsChecksumsAndCharacterCuts)
{
    const QVariant none;
    EXPECT_EQ(pluralStringForCount(0, none, QStringLiteral("file"), QStringLiteral("files")), "files");
    EXPECT_EQ(pluralStringForCount(0, QStringLiteral("no files"), none, QStringLiteral("files")), "no files");
    EXPECT_EQ(pluralStringForCount(1, none, none, QStringLiteral("files")), "files");
    EXPECT_EQ(pluralStringForCount(-1, QStringLiteral("none"), QStringLiteral("file"), QStringLiteral("files")), "files");
    EXPECT_EQ(checksum(QStringLiteral("ab")), 195u);
    EXPECT_EQ(checksum(QString(70000, QChar(0xFFFF))), quint32(70000ull * 0xFFFF % (1ull << 32))) << "wraps";
    EXPECT_EQ(truncateStringToMaxCharacters(QStringLiteral("abcdef"), 3), QStringLiteral("abc…"));
    EXPECT_EQ(truncateStringToMaxCharacters(QStringLiteral("abc"), 3), "abc");
}
