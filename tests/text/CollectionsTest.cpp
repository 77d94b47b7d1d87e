#include "Collections.h"
#include "NamedException.h"
#include "TestPrinting.h"
#include "TsvTable.h"

#include <QSet>
#include <QStringEncoder>
#include <gtest/gtest.h>

namespace {

QVariantMap record(std::initializer_list<std::pair<QString, QString>> fields)
{
    QVariantMap map;
    for (const auto &[key, value] : fields)
        map.insert(key, value);
    return map;
}

struct TableCase {
    const char *name;
    QByteArray bytes;
    QVariantList records;
    friend void PrintTo(const TableCase &c, std::ostream *os) { *os << c.name; }
};

class TsvTables : public testing::TestWithParam<TableCase> {};

TEST_P(TsvTables, ReadRecordsByPosition)
{
    EXPECT_EQ(TsvTable::dictionariesFromBytes(GetParam().bytes), GetParam().records);
}

QByteArray utf16WithMark(const QString &text)
{
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    return encoder(text);
}

INSTANTIATE_TEST_SUITE_P(
    Files, TsvTables,
    testing::Values(
        TableCase{"comments_and_blank_lines_only", "# a\n\n#b\tc\n\n", {}},
        TableCase{"header_then_records", "# people\nname\tage\n\nAnn\t31\nBo\t7\n",
                  {record({{"name", "Ann"}, {"age", "31"}}), record({{"name", "Bo"}, {"age", "7"}})}},
        TableCase{"short_and_long_records", "a\tb\tc\n1\n1\t2\t3\t4\t5\n",
                  {record({{"a", "1"}}), record({{"a", "1"}, {"b", "2"}, {"c", "3"}})}},
        TableCase{"duplicate_header_keeps_later_field", "k\tk\tz\nfirst\tsecond\tz\n",
                  {record({{"k", "second"}, {"z", "z"}})}},
        TableCase{"crlf_and_lone_cr_line_ends", "a\tb\r\n1\t2\r\n3\t4\r5\t6\r\n",
                  {record({{"a", "1"}, {"b", "2"}}), record({{"a", "3"}, {"b", "4"}}), record({{"a", "5"}, {"b", "6"}})}},
        TableCase{"fields_neither_trimmed_nor_unquoted", "a\tb\n \"x\" \t\n",
                  {record({{"a", " \"x\" "}, {"b", ""}})}},
        TableCase{"hash_only_at_line_start_is_a_comment", "a\n#skip\nx#y\n", {record({{"a", "x#y"}})}},
        TableCase{"utf16_with_byte_order_mark", utf16WithMark(QStringLiteral("é\tß\n1\t2\n")),
                  {record({{"é", "1"}, {"ß", "2"}})}},
        TableCase{"not_text_gives_no_records", QByteArray("a\tb\n\xff\xfe\x80\t2\n", 10), {}},
        TableCase{"text_cut_inside_a_character_gives_no_records", "a\nBo\n\xc3", {}}),
    [](const auto &info) { return info.param.name; });

TEST(Collections, FiltersKeepOrderAndNeverMatchAMissingValue)
{
    using namespace Collections;
    const QVariantList items{
        QVariantMap{{"n", "c"}, {"tags", QVariantList{"x", "y"}}},
        QVariantMap{{"n", "a"}, {"tags", QVariantList{"y"}}},
        QVariantMap{{"tags", "y"}},
        QVariantMap{{"n", "b"}, {"tags", QVariantMap{{"k", "y"}}}},
    };
    const auto names = [](const QVariantList &list) {
        QStringList out;
        for (const QVariant &item : list)
            out.append(item.toMap().value("n", "-").toString());
        return out;
    };
    EXPECT_EQ(names(batchReturnDictionariesWhoseArrayContains(items, "y", "tags")), QStringList({"c", "a", "b"}));
    EXPECT_EQ(names(batchReturnDictionariesContainedIn(items, QVariantList{"b", "c"}, "n")), QStringList({"c", "b"}));
    EXPECT_EQ(names(batchReturnDictionariesNotContainedIn(items, QVariantList{"b", "c"}, "n")), QStringList({"a", "-"}));
    EXPECT_EQ(names(batchReturnDictionariesWithObject(items, "a", "n")), QStringList({"a"}));
    EXPECT_TRUE(batchReturnDictionariesWithObject(items, QVariant(), "n").isEmpty());
    EXPECT_EQ(batchReturnDictionaryObject(items, "n"), QVariantList({"c", "a", QVariant(), "b"}));
    // Numbers of different C types are equal by value.
    EXPECT_EQ(returnKeyValueIndex({QVariant(qint64(3)), QVariant(2.0)}, QVariant(2)), 2);
    EXPECT_EQ(returnKeyValueIndex({"a"}, "b"), 0);
    EXPECT_TRUE(batchReturnDictionariesContainedIn({}, QVariantList{"a"}, "n").isEmpty());
}

TEST(Collections, SortsAreStableAndLeaveTheirArgumentAlone)
{
    using namespace Collections;
    const QVariantList input{"b", "a", "B", "b", "A10", "a9"};
    const QVariantList copy = input;
    // Case is ignored in the order but not in what counts as a duplicate.
    EXPECT_EQ(sortArrayRemovingDuplicates(input), QVariantList({"a", "A10", "a9", "b", "B"}));
    EXPECT_EQ(sortArrayWithStringsAsNumbers(input).mid(0, 3), QVariantList({"a", "a9", "A10"}));
    EXPECT_EQ(reverseArray(input), QVariantList({"a9", "A10", "b", "B", "a", "b"}));
    EXPECT_EQ(input, copy);

    // Later keys decide only among equal earlier ones; equal records keep
    // their order.
    const QVariantList people{QVariantMap{{"last", "smith"}, {"first", "Bo"}, {"id", 1}},
                              QVariantMap{{"last", "Adams"}, {"first", "Zoe"}, {"id", 2}},
                              QVariantMap{{"last", "Smith"}, {"first", "al"}, {"id", 3}},
                              QVariantMap{{"last", "smith"}, {"first", "bo"}, {"id", 4}}};
    QVariantList ids;
    for (const QVariant &p : sortDictionaries(people, {"last", "first"}))
        ids.append(p.toMap().value("id"));
    EXPECT_EQ(ids, QVariantList({2, 3, 1, 4}));
}

TEST(Collections, UiPlaceholdersAreFilledInRisingOrderAsPlainText)
{
    using Collections::uisR;
    EXPECT_EQ(uisR("Item %1 of %2", {3, 7}), "Item 3 of 7");
    EXPECT_EQ(uisR("%1%2", {true, 2.5}), "12.5");
    QVariantList ten;
    for (int i = 0; i < 10; ++i)
        ten.append(QString(QChar(u'a' + i)));
    // "%1" is replaced first, so "%10" loses its start to it.
    EXPECT_EQ(uisR("%10 %1 %2", ten), "a0 a b");
    // A value that replaces with a placeholder is seen by the later ones.
    EXPECT_EQ(uisR("%1", {"%2", "x"}), "x");
    EXPECT_THROW(uisR("%1", QVariantList{QVariant(QVariantList{})}), NamedException);
}

TEST(Collections, RandomDrawsStayWithinTheirBoundsAndReachBothEnds)
{
    using Collections::randomLongFrom;
    QSet<int> seen;
    for (int i = 0; i < 2000; ++i) {
        const int drawn = randomLongFrom(0, 4);
        ASSERT_GE(drawn, 0);
        ASSERT_LE(drawn, 4);
        seen.insert(drawn);
        // Below zero the draw is truncated toward zero: in range, but the
        // low end is all but never drawn.
        const int negative = randomLongFrom(-3, -1);
        ASSERT_GE(negative, -3);
        ASSERT_LE(negative, -1);
    }
    EXPECT_EQ(seen.size(), 5);
    EXPECT_EQ(randomLongFrom(7, 7), 7);
    EXPECT_EQ(Collections::returnSomeObjectOfArray({"only"}), QVariant("only"));
    try {
        Collections::batchReturnArrayObject({QVariantList{1, 2}, QVariantList{3}}, 1);
        FAIL() << "a short inner list is a range fault";
    } catch (const NamedException &e) {
        EXPECT_EQ(e.name(), NSRangeException);
        EXPECT_EQ(e.reason(), "*** -[NSArray objectAtIndex:]: index 1 beyond bounds [0 .. 0]");
    }
    EXPECT_THROW(Collections::returnSomeObjectOfArray({}), NamedException);
}

} // namespace
