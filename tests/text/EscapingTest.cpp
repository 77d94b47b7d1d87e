#include "StringAdditions.h"

#include <gtest/gtest.h>

using namespace StringAdditions;

namespace {

const QStringList samples = {QStringLiteral("plain"), QStringLiteral("it's \"quoted\""), QStringLiteral("a\\b\\\\c"),
                             QStringLiteral("café 🎞 ☺"), QStringLiteral(" %41+%zz/;:@&=?#"), QStringLiteral("\t\n")};

} // namespace

TEST(Escaping, ThePairsThatRoundTripDoAndTheOneWayCasesStayOneWay)
{
    for (const QString &text : samples) {
        EXPECT_EQ(removePercentEscapes(addPercentEscapes(text)), text) << text.toStdString();
        if (!text.contains(u'\\')) {
            EXPECT_EQ(removeQuoteEscapes(addQuoteEscapes(text)), text) << text.toStdString();
        }
    }
    // Backslashes doubled by the quote escapes do not come back alone when
    // a backslash stood before a quote: the removal order is kept.
    EXPECT_EQ(addQuoteEscapes(QStringLiteral("a\\\"")), "a\\\\\\\"");
    EXPECT_EQ(removeQuoteEscapes(addQuoteEscapes(QStringLiteral("a\\\""))), "a\\\"");
    EXPECT_EQ(quotedForm(QStringLiteral("it's")), "'it'\\\\''s'");
    EXPECT_EQ(quotedForm(QString()), "''");
}

TEST(Escaping, PercentEscapesFollowTheUrlGrammarAndRefuseWhatIsNotUtf8)
{
    EXPECT_EQ(addPercentEscapes(QStringLiteral("a b/c")), "a%20b%2Fc");
    EXPECT_EQ(prepForURL(QStringLiteral("a b/c")), "a+b%2Fc");
    // Unreserved and reserved characters stay, but for " ;+:@&=/"; "%" is escaped.
    EXPECT_EQ(addPercentEscapes(QStringLiteral("-._~?#[]!$'()*, ;+:@&=/%é")),
              "-._~?#[]!$'()*,%20%3B%2B%3A%40%26%3D%2F%25%C3%A9");
    EXPECT_EQ(removePercentEscapes(QStringLiteral("%e2%98%BA")), QStringLiteral("☺")) << "either case of digits";
    for (const char *bad : {"%", "%4", "%G0", "a%2x", "%FF", "%C3", "%C3%28"})
        EXPECT_FALSE(removePercentEscapes(QString::fromLatin1(bad)).has_value()) << bad;
    const QString uuid = uuidString();
    EXPECT_EQ(uuid.size(), 36);
    EXPECT_EQ(uuid, uuid.toUpper());
    EXPECT_NE(uuid, uuidString());
    EXPECT_TRUE(isValidURL(QStringLiteral("https://example.org/a?b=c#d")));
    EXPECT_FALSE(isValidURL(QStringLiteral("https://example.org/a b")));
    EXPECT_FALSE(isValidURL(QString()));
}

TEST(Escaping, UrlDecodingDropsTheWhiteSpaceItsScannerSkipsAndHighBytes)
{
    EXPECT_EQ(decodeURLString(QStringLiteral("a+b%41c")), "a bAc");
    EXPECT_EQ(decodeURLString(QStringLiteral("%41 b")), "Ab");
    EXPECT_EQ(decodeURLString(QStringLiteral("  lead and trail  ")), "lead and trail");
    EXPECT_EQ(decodeURLString(QStringLiteral("x+ y")), "x y") << "white space after a decoded + goes";
    EXPECT_EQ(decodeURLString(QStringLiteral("%C3%A9!")), "!") << "bytes of 0x80 and up are no character alone";
    EXPECT_EQ(decodeURLString(QStringLiteral("%4")), "@") << "a missing digit counts as 0";
    EXPECT_EQ(decodeURLString(QStringLiteral("%")), "");
    EXPECT_EQ(decodeURLString(QStringLiteral("a\u3000%41")), "a\u3000A") << "any white space the scanner skips";
    EXPECT_EQ(decodeURLString(QStringLiteral(" +x \n%41")), " x \nA") << "white space inside a run stays";
}

TEST(Escaping, XmlEscapesStopAtTheLengthTheTextHadAtFirst)
{
    EXPECT_EQ(safeForXML(QStringLiteral("a<b")), "a&lt;b");
    EXPECT_EQ(safeForXML(QStringLiteral("&<")), "&amp;<");
    EXPECT_EQ(safeForXML(QStringLiteral("<'\"")), "&lt;'\"");
    EXPECT_EQ(safeForXML(QStringLiteral("x>\"'")), "x&gt;\"'");
    EXPECT_EQ(safeForXML(QString()), "");
}

TEST(Escaping, HexRoundTripsBelow256AndToleratesOddLengthsAndBadPairs)
{
    EXPECT_EQ(convertToHex(QStringLiteral("AB")), "4142");
    EXPECT_EQ(convertToHex(QStringLiteral("☺é")), "263AE9");
    EXPECT_EQ(convertFromHex(QStringLiteral("41424")), "AB");
    QString latin1;
    for (int c = 0; c < 256; ++c)
        latin1 += QChar(c);
    EXPECT_EQ(convertFromHex(convertToHex(latin1)), latin1);
    EXPECT_EQ(convertFromHex(QStringLiteral("41ZZ42")), "AAB") << "a bad pair repeats the one before";
    EXPECT_EQ(convertFromHex(QStringLiteral("4g")), "\x04") << "a pair reads as far as it is hexadecimal";
    EXPECT_EQ(convertFromHex(QStringLiteral("ZZ")), QString(QChar(0)));
}
