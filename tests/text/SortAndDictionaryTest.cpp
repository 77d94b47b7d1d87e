#include "DictionaryAdditions.h"
#include "NameCorpus.h"
#include "SortFunctions.h"
#include "TestPrinting.h"

#include <QCoreApplication>
#include <QDateTime>
#include <algorithm>
#include <gtest/gtest.h>

using namespace DictionaryAdditions;

namespace {

struct OrderCase {
    const char *name;
    QString left;
    QString right;
    int order; // sign of the comparison
    friend void PrintTo(const OrderCase &c, std::ostream *os) { *os << c.name; }
};

class NaturalOrder : public testing::TestWithParam<OrderCase> {};

TEST_P(NaturalOrder, ReadsDigitsAsNumbers)
{
    const int order = SortFunctions::stringAsNumberCompare(GetParam().left, GetParam().right);
    EXPECT_EQ((order > 0) - (order < 0), GetParam().order);
    const int reverse = SortFunctions::stringAsNumberCompare(GetParam().right, GetParam().left);
    EXPECT_EQ((reverse > 0) - (reverse < 0), -GetParam().order);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NaturalOrder,
    testing::Values(OrderCase{"numbers_by_value", "file2", "file10", -1},
                    OrderCase{"case_ignored", "File2", "file2", 0},
                    OrderCase{"width_ignored", QString::fromUtf8("ＡＢ"), "ab", 0},
                    OrderCase{"diacritics_count", QString::fromUtf8("é"), "e", 1},
                    OrderCase{"composition_ignored", QString::fromUtf8("e\u0301"), QString::fromUtf8("é"), 0},
                    OrderCase{"punctuation_counts", "a-b", "ab", -1},
                    OrderCase{"leading_zeros_same_value", "img007", "img7", 0},
                    OrderCase{"long_numbers", "x99999999999999999998", "x99999999999999999999", -1}),
    [](const auto &info) { return info.param.name; });

// Keys made in bulk (on two threads past a few thousand names) order names
// exactly as the collator compares them, in every script and with numbers.
TEST(SortFunctions, BulkNaturalKeysCompareAsTheCollator)
{
    QStringList names = NameCorpus::utf8Names(3000);
    for (int i = 0; i < 3000; ++i)
        names.append(QStringLiteral("img%1_%2").arg(i % 997).arg(QStringList{"a", "B", "é", "E\u0301"}[i % 4]));
    const SortFunctions::NaturalKeys keys(size_t(names.size()),
                                          [&names](size_t i) -> const QString & { return names[qsizetype(i)]; });
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    int disagreements = 0;
    for (qsizetype i = 0; i < names.size(); ++i)
        for (const qsizetype j : {qsizetype(0), (i + 1) % names.size(), (i * 7919) % names.size(), names.size() - 1 - i})
            disagreements += sign(keys.key(size_t(i)).compare(keys.key(size_t(j))))
                             != sign(SortFunctions::stringAsNumberCompare(names[i], names[j]));
    EXPECT_EQ(disagreements, 0);
}

TEST(SortFunctions, SortAListNaturally)
{
    QStringList names = {"IMG_10.jpg", "img_9.jpg", "IMG_100.jpg", "img_1.jpg"};
    std::sort(names.begin(), names.end(),
              [](const QString &a, const QString &b) { return SortFunctions::stringAsNumberCompare(a, b) < 0; });
    EXPECT_EQ(names, QStringList({"img_1.jpg", "img_9.jpg", "IMG_10.jpg", "IMG_100.jpg"}));
}

TEST(SortFunctions, RecordsCompareByTheContextKey)
{
    const QVariantMap early = {{"date", QDateTime(QDate(2001, 1, 1), QTime(0, 0))}, {"size", 10}, {"name", "b"}};
    const QVariantMap late = {{"date", QDateTime(QDate(2020, 1, 1), QTime(0, 0))}, {"size", 9}, {"name", "A"}};
    EXPECT_LT(SortFunctions::dateSort(early, late, QStringLiteral("date")), 0);
    EXPECT_GT(SortFunctions::numericSort(early, late, QStringLiteral("size")), 0);
    EXPECT_GT(SortFunctions::cleanedStringSort(early, late, QStringLiteral("name")), 0);
    EXPECT_EQ(SortFunctions::stringSort(QStringLiteral("abc"), QStringLiteral("ABC")), 0);
}

TEST(SortFunctions, StripListComesFromTheUiTable)
{
    // Without a translation the key answers itself, so the list is that
    // one word and ordinary names are compared whole.
    EXPECT_EQ(SortFunctions::stripList(), QStringList{"TheStripList"});
    EXPECT_LT(SortFunctions::cleanedStringSort(QStringLiteral("Alpha"), QStringLiteral("beta")), 0);
}

TEST(DictionaryGetters, ReadStringsOnlyExceptUint)
{
    QVariantMap d;
    MutableDictionaryAdditions::setBool(d, true, "flag");
    MutableDictionaryAdditions::setInteger(d, 12, "int");
    MutableDictionaryAdditions::setFloat(d, 1.5f, "float");
    MutableDictionaryAdditions::setUnsignedInteger(d, 7u, "uint");
    EXPECT_EQ(d.value("int").typeId(), QMetaType::Int);
    EXPECT_EQ(d.value("uint").typeId(), QMetaType::UInt);
    // Numbers stored by the setters read back as NO, 0 and 0.0 ...
    EXPECT_FALSE(boolForKey(d, "flag"));
    EXPECT_EQ(integerForKey(d, "int"), 0);
    EXPECT_EQ(floatForKey(d, "float"), 0.0f);
    // ... while uintForKey reads any number.
    EXPECT_EQ(uintForKey(d, "int"), 12u);
    EXPECT_EQ(uintForKey(d, "flag"), 1u);
    EXPECT_EQ(uintForKey({{"s", "12"}}, "s"), 0u) << "a string does not answer unsignedIntValue";
    EXPECT_EQ(stringForKey(d, "int"), std::nullopt);
    EXPECT_EQ(dateForKey({{"d", "2001-01-01"}}, "d"), std::nullopt);
}

struct BoolCase {
    const char *name;
    QVariant value;
    bool expected;
    friend void PrintTo(const BoolCase &c, std::ostream *os) { *os << c.name; }
};

class BoolForKey : public testing::TestWithParam<BoolCase> {};

TEST_P(BoolForKey, YesForNonZeroOrTheWordYes)
{
    EXPECT_EQ(boolForKey({{"k", GetParam().value}}, "k"), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, BoolForKey,
                         testing::Values(BoolCase{"YES", "YES", true}, BoolCase{"Yes", "Yes", true},
                                         BoolCase{"one", "1", true}, BoolCase{"twelve", "12", true},
                                         BoolCase{"leading_space_number", "  -3x", true},
                                         BoolCase{"no", "no", false}, BoolCase{"zero", "0", false},
                                         BoolCase{"yes_with_space", "yes ", false},
                                         BoolCase{"number_object", QVariant(1), false},
                                         BoolCase{"missing", QVariant(), false}),
                         [](const auto &info) { return info.param.name; });

TEST(DictionaryGetters, NumbersFromTextAsThePlatformReadsThem)
{
    EXPECT_EQ(intValue(QStringLiteral("  42abc")), 42);
    EXPECT_EQ(intValue(QStringLiteral("-7")), -7);
    EXPECT_EQ(intValue(QStringLiteral("x1")), 0);
    EXPECT_EQ(intValue(QStringLiteral("99999999999")), INT_MAX);
    EXPECT_EQ(intValue(QStringLiteral("-99999999999")), INT_MIN);
    EXPECT_EQ(floatValue(QStringLiteral(" 2.5e1xyz")), 25.0f);
    EXPECT_EQ(floatValue(QStringLiteral(".5")), 0.5f);
    EXPECT_EQ(floatValue(QStringLiteral("abc")), 0.0f);
}

TEST(FileAttributes, NamedReadersAndTypeTests)
{
    const QVariantMap folder = {{"NSFileType", "NSFileTypeDirectory"}, {"NSFileSize", 5000000000ULL},
                                {"NSFilePosixPermissions", 493}, {"NSFileOwnerAccountName", "ann"},
                                {"NSFileImmutable", true}, {"NSFileAppendOnly", false}};
    EXPECT_TRUE(isDirectory(folder));
    EXPECT_FALSE(isFile(folder));
    EXPECT_FALSE(isSymbolicLink(folder));
    EXPECT_TRUE(isType(folder, "NSFileTypeDirectory"));
    EXPECT_EQ(size(folder), quint32(5000000000ULL & 0xFFFFFFFF)) << "sizes are cut to 32 bits";
    EXPECT_EQ(posixPermissions(folder), 493u);
    EXPECT_EQ(owner(folder), QStringLiteral("ann"));
    EXPECT_TRUE(isReadOnly(folder));
    EXPECT_FALSE(isAppendOnly(folder));
    EXPECT_FALSE(isType({}, "NSFileTypeDirectory")) << "no type string, no type";
    EXPECT_FALSE(isUnknownType({}));
    EXPECT_EQ(creationDate(folder), std::nullopt);
}

TEST(FileAttributes, OsTypePutsTheFirstCharacterInTheLowestByte)
{
    EXPECT_EQ(osType(QStringLiteral("TXT")), quint32('T') | quint32('X') << 8 | quint32('T') << 16 | quint32(' ') << 24);
    EXPECT_EQ(osType(QStringLiteral("TEXTLONG")), quint32('T') | quint32('E') << 8 | quint32('X') << 16 | quint32('T') << 24);
    EXPECT_EQ(osType(QString()), 0x20202020u);
}

} // namespace
