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

namespace {

// Perl's own form of text keeps every lone surrogate as three bytes, so a
// name's bytes that are not UTF-8 go to Perl and back unchanged.
TEST(PathCodec, SurrogatesSurviveTheWayToPerlAndBack)
{
    for (const QByteArray &name : {QByteArray("bad\xff\xfe.jpg"), QByteArray("\xed\xa0\x80x"), QByteArray("caf\xe9 \xf0\x9f\x93")}) {
        const QString text = PathCodec::decode(name);
        const QByteArray carried = PathCodec::encodeKeepingSurrogates(text);
        EXPECT_EQ(carried.indexOf('\xff'), -1) << "no byte is sent bare";
        EXPECT_EQ(PathCodec::decodeKeepingSurrogates(carried), text) << name.toHex().toStdString();
    }
    EXPECT_EQ(PathCodec::encodeKeepingSurrogates(PathCodec::decode("a\xff")), QByteArray("a\xed\xb3\xbf"));
    EXPECT_EQ(PathCodec::decodeKeepingSurrogates("\xed\xa0\xbd"), QString(QChar(0xD83D)));
}

struct SplitCase {
    const char *name;
    QByteArray before;
    QString after; // as a rule made it
    bool splits;
    friend void PrintTo(const SplitCase &c, std::ostream *os) { *os << c.name; }
};

class SplitsCharacter : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitsCharacter, OnlyBytesTheNameHadMayStayBroken)
{
    EXPECT_EQ(PathCodec::splitsCharacter(PathCodec::decode(GetParam().before), GetParam().after), GetParam().splits);
}

const QString camera = QStringLiteral("📷");

INSTANTIATE_TEST_SUITE_P(
    Table, SplitsCharacter,
    testing::Values(SplitCase{"whole_characters", "📷7", QStringLiteral("x📷"), false},
                    SplitCase{"first_half_of_a_pair_trimmed", "📷7", camera.mid(1) + u'7', true},
                    SplitCase{"second_half_of_a_pair_trimmed", "📷7", camera.left(1), true},
                    SplitCase{"the_names_own_broken_byte_kept", "a\xff" "b", PathCodec::decode("X\xff"), false},
                    SplitCase{"part_of_its_own_broken_run", "a\xf0\x9f\x93" "b", PathCodec::decode("\x9f\x93"), false},
                    SplitCase{"a_broken_byte_it_never_had", "a\xff", PathCodec::decode("a\xfe"), true},
                    SplitCase{"its_broken_bytes_in_a_new_order", "a\xf0\x9f" "b", PathCodec::decode("\x9f\xf0"), true},
                    SplitCase{"broken_bytes_joined_into_a_character", "\xc3x\xa9", PathCodec::decode("\xc3") + PathCodec::decode("\xa9"), true},
                    SplitCase{"a_lone_surrogate_with_no_byte", "abc", QString(QChar(0xD800)) + u'a', true}),
    [](const auto &info) { return info.param.name; });

} // namespace
