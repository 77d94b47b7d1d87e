#include "PathCodec.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

namespace {

TEST(PathCodec, EveryByteSequenceRoundTrips)
{
    const QList<QByteArray> names = {"plain.txt", "crème brûlée.jpg", "bad\xff\xfe.jpg", "\xc3", "trunc\xe2\x82",
                                     "\xed\xa0\x80surrogate-in-utf8", "overlong\xc0\xaf", "emoji \xf0\x9f\x98\x80",
                                     "\x80\x81\x82", "latin1 caf\xe9",
                                     // U+FEFF is a character of the name, not a byte order mark.
                                     "\xef\xbb\xbf" "bom.jpg", "\xcb\xef\xbb\xbf\xb9"};
    for (const QByteArray &name : names)
        EXPECT_EQ(PathCodec::encode(PathCodec::decode(name)), name) << name.toHex().toStdString();
    // Exhaustively over every pair of bytes.
    for (int a = 1; a < 256; ++a)
        for (int b = 1; b < 256; ++b) {
            const QByteArray pair = QByteArray(1, char(a)) + char(b);
            ASSERT_EQ(PathCodec::encode(PathCodec::decode(pair)), pair) << a << " " << b;
        }
}

TEST(PathCodec, ValidUtf8ReadsAsItsCharactersAndOtherBytesAsLoneSurrogates)
{
    EXPECT_EQ(PathCodec::decode("caf\xc3\xa9"), QString::fromUtf8("café"));
    EXPECT_EQ(PathCodec::decode("\xef\xbb\xbf" "a"), QStringLiteral("\uFEFFa"));
    const QString bad = PathCodec::decode("a\xff");
    ASSERT_EQ(bad.size(), 2);
    EXPECT_EQ(bad[1].unicode(), 0xDCFF);
    EXPECT_EQ(PathCodec::encode(QString::fromUtf8("café")), QByteArray("caf\xc3\xa9"));
}

} // namespace
