#include "ScriptCoertions.h"
#include "TestPrinting.h"
#include "TextRange.h"

#include <QRect>
#include <QRectF>
#include <gtest/gtest.h>

using namespace ScriptCoertions;

namespace {

QString typeOf(const Descriptor &d)
{
    return fourCharString(d.descriptorType());
}

void expectRaises(const std::function<void()> &action, const QString &name, const QString &reason)
{
    try {
        action();
        ADD_FAILURE() << "no exception, expected " << reason.toStdString();
    } catch (const NamedException &e) {
        EXPECT_EQ(e.name(), name);
        EXPECT_EQ(e.reason(), reason);
    }
}

struct NumberCase {
    const char *name;
    QVariant number;
    const char *type;
    double value;
    friend void PrintTo(const NumberCase &c, std::ostream *os) { *os << c.name; }
};

class NumbersToDescriptors : public testing::TestWithParam<NumberCase> {};

TEST_P(NumbersToDescriptors, TheCTypePicksTheLayout)
{
    const Descriptor d = aeDescriptorValue(GetParam().number);
    EXPECT_EQ(typeOf(d), QString::fromLatin1(GetParam().type));
    EXPECT_EQ(float64Value(d), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NumbersToDescriptors,
    testing::Values(NumberCase{"bool_is_boolean", QVariant(true), "bool", 1},
                    NumberCase{"char_is_boolean", QVariant::fromValue(char(65)), "bool", 1},
                    NumberCase{"char_zero_is_false", QVariant::fromValue(char(0)), "bool", 0},
                    NumberCase{"short", QVariant::fromValue(short(3)), "shor", 3},
                    NumberCase{"negative_short", QVariant::fromValue(short(-3)), "shor", -3},
                    NumberCase{"int", QVariant::fromValue(3), "long", 3},
                    NumberCase{"long_travels_as_32_bits", QVariant::fromValue(long(-7)), "long", -7},
                    NumberCase{"long_long_is_double", QVariant::fromValue(3LL), "doub", 3},
                    NumberCase{"unsigned_char", QVariant::fromValue<unsigned char>(200), "magn", 200},
                    NumberCase{"unsigned_short", QVariant::fromValue<unsigned short>(65535), "magn", 65535},
                    NumberCase{"unsigned_int", QVariant::fromValue(4000000000u), "magn", 4000000000.0},
                    NumberCase{"unsigned_long_long_is_double", QVariant::fromValue(1ULL << 40), "doub",
                               double(1ULL << 40)},
                    NumberCase{"float", QVariant::fromValue(1.5f), "sing", 1.5},
                    NumberCase{"double", QVariant::fromValue(0.1), "doub", 0.1}),
    [](const auto &info) { return info.param.name; });

struct BackCase {
    const char *name;
    Descriptor descriptor;
    QMetaType::Type type;
    double value;
    friend void PrintTo(const BackCase &c, std::ostream *os) { *os << c.name; }
};

class DescriptorsToNumbers : public testing::TestWithParam<BackCase> {};

TEST_P(DescriptorsToNumbers, GiveTheCTypeOfTheLayout)
{
    const QVariant number = objCObjectValue(GetParam().descriptor);
    EXPECT_EQ(number.typeId(), GetParam().type) << number.typeName();
    EXPECT_EQ(number.toDouble(), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DescriptorsToNumbers,
    testing::Values(BackCase{"true", Descriptor(DescType::True, {}), QMetaType::Bool, 1},
                    BackCase{"fals", Descriptor(DescType::False, {}), QMetaType::Bool, 0},
                    BackCase{"bool", Descriptor::boolean(true), QMetaType::Bool, 1},
                    BackCase{"shor", descriptorWithInt16(-5), QMetaType::Short, -5},
                    BackCase{"long", Descriptor::int32(70000), QMetaType::Int, 70000},
                    BackCase{"magn", descriptorWithUnsignedInt32(4000000000u), QMetaType::UInt, 4000000000.0},
                    BackCase{"sing", descriptorWithFloat32(2.5f), QMetaType::Float, 2.5},
                    // Every real number from a script ends as a float.
                    BackCase{"doub_narrowed_to_float", descriptorWithFloat64(0.1), QMetaType::Float,
                             0.10000000149011612},
                    BackCase{"comp_through_doub", Descriptor::ofValue<qint64>(DescType::SInt64, 5), QMetaType::Float,
                             5},
                    BackCase{"ldbl_through_doub", Descriptor::ofValue<long double>(DescType::LongDouble, 0.5L),
                             QMetaType::Float, 0.5}),
    [](const auto &info) { return info.param.name; });

TEST(NumericDescriptors, ReadersCoerceAndReadZeroWhenTheyCannot)
{
    EXPECT_EQ(int16Value(Descriptor::int32(300)), 300);
    EXPECT_EQ(int16Value(Descriptor::int32(70000)), 0) << "out of range for 16 bits";
    EXPECT_EQ(unsignedInt32Value(Descriptor::int32(-1)), 0u);
    EXPECT_EQ(float32Value(descriptorWithFloat64(0.1)), 0.1f);
    EXPECT_EQ(float64Value(Descriptor::string(QStringLiteral(" 42 "))), 42.0);
    EXPECT_EQ(float64Value(Descriptor::string(QStringLiteral("x"))), 0.0);
    EXPECT_EQ(Descriptor::string(QStringLiteral("17")).int32Value(), 17);
    EXPECT_EQ(descriptorWithFloat64(2.5).int32Value(), 0) << "only whole numbers become integers";
    EXPECT_EQ(longDateTimeValue(descriptorWithLongDateTime(-5)), -5);
    EXPECT_EQ(longDateTimeValue(Descriptor::int32(5)), 0);
    EXPECT_EQ(typeOf(descriptorWithFloat32(1)), QStringLiteral("sing"));
    EXPECT_EQ(descriptorWithInt16(-2).data().size(), 2);
}

TEST(NumericDescriptors, MissingValueIsATypeCodeOfExactlyFourBytes)
{
    EXPECT_TRUE(isMissingValue(Descriptor::missingValue()));
    EXPECT_FALSE(isMissingValue(Descriptor::typeCode(DescType::Null)));
    EXPECT_FALSE(isMissingValue(Descriptor::typeCode(DescType::MissingValue, DescType::Enumerated)));
    EXPECT_FALSE(isMissingValue(Descriptor(DescType::Type, QByteArray("gnsm\0", 5))));
}

TEST(NumericDescriptors, RoutesByByteCount)
{
    const QVariant number = QVariant::fromValue(3.75);
    const qint64 wide = 1LL << 33;
    EXPECT_EQ(typeOf(DescriptorValueWithSignedIntP(QVariant(7), &wide, 0)), QStringLiteral("long"));
    EXPECT_EQ(typeOf(DescriptorValueWithSignedIntP(number, &wide, 3)), QStringLiteral("doub"));
    EXPECT_EQ(float64Value(DescriptorValueWithSignedIntP(number, &wide, 8)), 3.75) << "re-reads the number";
    EXPECT_EQ(typeOf(DescriptorValueWithUnsignedIntP(QVariant(7u), &wide, 3)), QStringLiteral("magn"));
    EXPECT_EQ(typeOf(DescriptorValueWithUnsignedIntP(QVariant(7u), &wide, 8)), QStringLiteral("doub"));
    EXPECT_EQ(typeOf(DescriptorValueWithFloatP(number, &wide, 2)), QStringLiteral("sing"));
    EXPECT_EQ(float64Value(DescriptorValueWithFloatP(number, &wide, 16)), 3.75);
    for (int count : {5, 6, 7})
        expectRaises([&] { DescriptorValueWithFloatP(number, &wide, count); }, NSInvalidArgumentException,
                     QStringLiteral("Cannot create an NSAppleEventDescriptor for float with %1 bytes of data.").arg(count));
}

TEST(NumericDescriptors, NumberFactoriesTakeTheWidthTheCountGives)
{
    const quint8 bytes[8] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(NumberWithSignedIntP(bytes, 1).typeId(), QMetaType::Char);
    EXPECT_EQ(NumberWithSignedIntP(bytes, 2), QVariant::fromValue(short(-1)));
    EXPECT_EQ(NumberWithSignedIntP(bytes, 4), QVariant::fromValue(-1));
    EXPECT_EQ(NumberWithSignedIntP(bytes, 8), QVariant::fromValue(-1LL));
    EXPECT_EQ(NumberWithUnsignedIntP(bytes, 2), QVariant::fromValue<unsigned short>(65535));
    EXPECT_EQ(NumberWithUnsignedIntP(bytes, 8), QVariant::fromValue(~0ULL));
    const double d = 0.1;
    EXPECT_EQ(NumberWithFloatP(&d, 8), QVariant::fromValue(0.1f));
    expectRaises([&] { NumberWithSignedIntP(bytes, 3); }, NSInvalidArgumentException,
                 QStringLiteral("NSNumber: number with 3 bytes not supported."));
    expectRaises([&] { NumberWithUnsignedIntP(bytes, 16); }, NSInvalidArgumentException,
                 QStringLiteral("NSNumber: number with 16 bytes not supported."));
    expectRaises([&] { NumberWithFloatP(bytes, 2); }, NSInvalidArgumentException,
                 QStringLiteral("NSNumber: floating point number with 2 bytes not supported."));
}

TEST(NumericDescriptors, UnconvertibleValuesRaiseWithTheExactReasons)
{
    expectRaises([] { numberDescriptor(QVariant(QStringLiteral("x"))); }, UnsupportedAEDescriptorConversion,
                 QStringLiteral("ScriptSubroutine: unsupported conversion of an NSNumber with type 'QString' to an "
                                "aeDescriptor."));
    expectRaises([] { numberWithAEDesc(Descriptor::list()); }, UnsupportedAEDescriptorConversion,
                 QStringLiteral("ScriptSubroutines: unsupported conversion of an NSAppleEventDescriptor with type "
                                "'list' to an aeDescriptor."));
    expectRaises([] { aeDescriptorValue(QRect(1, 2, 3, 4)); }, UnsupportedAEDescriptorConversion,
                 QStringLiteral("ScriptSubroutines: conversion of an NSNumber with type '{QRect=iiii}' to an "
                                "aeDescriptor is not supported."));
}

TEST(ObjectConversion, StringsListsAndNullRoundTrip)
{
    const QVariantList values = {QStringLiteral("Crème"), QVariant(3), QVariant(true), QVariant::fromValue(nullptr),
                                 QVariantList{QStringLiteral("a"), QVariantList{}}};
    const Descriptor list = aeDescriptorValue(values);
    EXPECT_EQ(typeOf(list), QStringLiteral("list"));
    EXPECT_EQ(list.numberOfItems(), 5);
    EXPECT_EQ(typeOf(*list.descriptorAtIndex(1)), QStringLiteral("utxt"));
    EXPECT_EQ(typeOf(*list.descriptorAtIndex(4)), QStringLiteral("null"));
    EXPECT_EQ(objCObjectValue(list), QVariant(values));
    EXPECT_EQ(aeDescriptorValue(QVariantList()).numberOfItems(), 0);
    EXPECT_EQ(typeOf(aeDescriptorValue(QVariant())), QStringLiteral("null"));
}

TEST(ObjectConversion, RecordsKeepNumberKeysAsKeywordsAndTextKeysUnderUsrf)
{
    const Descriptor named = aeDescriptorValue(QVariantMap{{QStringLiteral("name"), 3}});
    EXPECT_EQ(named.numberOfItems(), 1);
    EXPECT_EQ(named.keywordForDescriptorAtIndex(1), DescType::UserFields);
    const Descriptor fields = *named.descriptorAtIndex(1);
    EXPECT_EQ(fields.descriptorAtIndex(1)->stringValue(), QStringLiteral("name"));
    EXPECT_EQ(fields.descriptorAtIndex(2)->int32Value(), 3);
    EXPECT_EQ(objCObjectValue(named), QVariant(QVariantMap{{QStringLiteral("name"), 3}}));

    EXPECT_EQ(aeDescriptorValue(QVariantMap()).numberOfItems(), 0) << "no 'usrf' item for an empty dictionary";

    MixedKeyDictionary mixed;
    mixed.setValue(QVariant(1886282093), QStringLiteral("Beach")); // 'pnam'
    mixed.setValue(QStringLiteral("k"), QVariant(true));
    mixed.setValue(QVariant(QDateTime()), QStringLiteral("dropped")); // neither number nor text
    const Descriptor record = aeDescriptorValue(QVariant::fromValue(mixed));
    EXPECT_EQ(record.descriptorForKeyword(fourCharCode("pnam"))->stringValue(), QStringLiteral("Beach"));
    const auto back = objCObjectValue(record).value<MixedKeyDictionary>();
    EXPECT_EQ(back.entries.value(0), std::make_pair(QVariant::fromValue(qint32(1886282093)), QVariant(QStringLiteral("Beach"))));
    EXPECT_TRUE(back.entries.contains(std::make_pair(QVariant(QStringLiteral("k")), QVariant(true))));
    EXPECT_EQ(back.entries.size(), 2);
}

TEST(ObjectConversion, StructuredValuesBecomeNumberLists)
{
    auto numbers = [](const Descriptor &list) {
        QList<double> values;
        for (qsizetype i = 1; i <= list.numberOfItems(); ++i)
            values.append(float64Value(*list.descriptorAtIndex(i)));
        return values;
    };
    EXPECT_EQ(numbers(aeDescriptorValue(QVariant::fromValue(TextRange{2, 3}))), QList<double>({2, 5}));
    EXPECT_EQ(typeOf(*aeDescriptorValue(QVariant::fromValue(TextRange{2, 3})).descriptorAtIndex(1)),
              QStringLiteral("magn"));
    EXPECT_EQ(numbers(aeDescriptorValue(QRectF(10, 20, 30, 40))), QList<double>({10, 20, 40, 60}));
    EXPECT_EQ(numbers(aeDescriptorValue(QSizeF(1.5, 2))), QList<double>({1.5, 2}));
    EXPECT_EQ(numbers(aeDescriptorValue(QPointF(-1, 4))), QList<double>({-1, 4}));
}

TEST(ObjectConversion, UnknownObjectsBecomeTheirDescriptionAndUnknownTypesStayDescriptors)
{
    EXPECT_EQ(aeDescriptorValue(QByteArray("\x01\x02\x03\x04\x05", 5)).stringValue(), QStringLiteral("<01020304 05>"));
    const Descriptor spec(fourCharCode("fss "), QByteArray("opaque"));
    EXPECT_EQ(objCObjectValue(spec).value<Descriptor>(), spec);
    EXPECT_EQ(aeDescriptorValue(QVariant::fromValue(spec)), spec);
}

TEST(ObjectConversion, FailedCoercionsGiveEmptyCollections)
{
    EXPECT_EQ(arrayWithAEDesc(Descriptor::record()), QVariant(QVariantList()));
    EXPECT_EQ(dictionaryWithAEDesc(Descriptor::int32(1)), QVariant(QVariantMap()));
    EXPECT_EQ(arrayWithAEDesc(Descriptor::int32(1)), QVariant(QVariantList{1})) << "a single value is a list of one";
    EXPECT_EQ(nullWithAEDesc(Descriptor::int32(1)).typeId(), QMetaType::Nullptr);
}

TEST(ConversionTableTest, RegistrationReplacesRowsUntilTheZeroType)
{
    ConversionTable &table = ConversionTable::shared();
    table.registerConversionSubroutine([](const Descriptor &) { return QVariant(QStringLiteral("mine")); },
                                       {fourCharCode("long"), fourCharCode("alis"), 0, fourCharCode("enum")});
    EXPECT_EQ(objCObjectValue(Descriptor::int32(1)), QVariant(QStringLiteral("mine")));
    EXPECT_EQ(objCObjectValue(Descriptor(fourCharCode("alis"), {})), QVariant(QStringLiteral("mine")));
    EXPECT_EQ(typeOf(objCObjectValue(Descriptor::typeCode(1, DescType::Enumerated)).value<Descriptor>()),
              QStringLiteral("enum"))
        << "types after the zero are not registered";
    table.registerConversionSubroutine([](const Descriptor &) { return QVariant(QStringLiteral("zero")); }, {0});
    EXPECT_NE(table.find(0), nullptr) << "the first type is stored before the end is checked";
    table.reset();
    EXPECT_EQ(objCObjectValue(Descriptor::int32(1)), QVariant(1));
    EXPECT_EQ(table.find(0), nullptr);
}

TEST(Coercion, BetweenTextNumbersBooleansAndCodes)
{
    EXPECT_EQ(Descriptor::int32(42).stringValue(), QStringLiteral("42"));
    EXPECT_EQ(descriptorWithFloat64(0.5).stringValue(), QStringLiteral("0.5"));
    EXPECT_EQ(Descriptor(DescType::True, {}).stringValue(), QStringLiteral("true"));
    EXPECT_EQ(Descriptor(DescType::UTF8Text, QByteArray("é")).stringValue(), QString::fromUtf8("é"));
    EXPECT_EQ(Descriptor(DescType::CString, QByteArray("abc", 4)).stringValue(), QStringLiteral("abc"));
    EXPECT_TRUE(Descriptor::string(QStringLiteral("TRUE")).booleanValue());
    EXPECT_TRUE(Descriptor::int32(1).booleanValue());
    EXPECT_FALSE(Descriptor::int32(2).coerceToDescriptorType(DescType::Boolean).has_value());
    EXPECT_FALSE(Descriptor::boolean(true).coerceToDescriptorType(DescType::False).has_value());
    EXPECT_TRUE(Descriptor::boolean(false).coerceToDescriptorType(DescType::False).has_value());
    EXPECT_EQ(Descriptor::string(QStringLiteral("msng")).typeCodeValue(), DescType::MissingValue);
    EXPECT_EQ(Descriptor::typeCode(fourCharCode("abcd"), DescType::Enumerated).typeCodeValue(), fourCharCode("abcd"));
    EXPECT_FALSE(Descriptor::list().coerceToDescriptorType(DescType::UnicodeText).has_value());
    EXPECT_FALSE(Descriptor::list().coerceToDescriptorType(DescType::Record).has_value());
    EXPECT_TRUE(Descriptor(DescType::UnicodeText, QByteArray("odd")).stringValue().isNull());
}

TEST(Coercion, EventsCoerceToRecordsOfTheirParameters)
{
    Descriptor event = Descriptor::appleEvent(1, 2, Descriptor::null(), -1, 0);
    event.setDescriptorForKeyword(Descriptor::int32(1), fourCharCode("abcd"));
    event.setDescriptorForKeyword(Descriptor::int32(2), fourCharCode("abcd"));
    const auto record = event.coerceToDescriptorType(DescType::Record);
    ASSERT_TRUE(record.has_value());
    EXPECT_EQ(record->numberOfItems(), 1) << "setting a keyword again replaces it";
    EXPECT_EQ(record->descriptorForKeyword(fourCharCode("abcd"))->int32Value(), 2);
}

TEST(LongDateTimeTest, CountsLocalWallClockSecondsSince1904)
{
    // The test process runs in Europe/Paris (see main).
    const QDateTime summer(QDate(2024, 7, 14), QTime(9, 30, 5), Qt::LocalTime);
    const qint64 expected = QDateTime(QDate(2024, 7, 14), QTime(9, 30, 5), Qt::UTC).toSecsSinceEpoch() + 2082844800;
    EXPECT_EQ(LongDateTime::fromDate(summer), expected);
    EXPECT_EQ(LongDateTime::fromDate(QDateTime(QDate(1904, 1, 1), QTime(0, 0), Qt::LocalTime)), 0);
    EXPECT_EQ(LongDateTime::fromDate(summer.toUTC()), expected) << "the same instant in another spec";
}

TEST(LongDateTimeTest, RoundTripsToTheSecondAcrossDaylightSavingChanges)
{
    const QDateTime start(QDate(2023, 1, 1), QTime(0, 0, 0), Qt::LocalTime);
    for (qint64 hours = 0; hours < 24 * 366; hours += 7) {
        const QDateTime date = start.addSecs(hours * 3600 + 59);
        // The hour repeated when clocks go back shows the same wall-clock
        // time twice; a wall-clock count cannot tell the two apart.
        if (date.offsetFromUtc() != date.addSecs(-3600).offsetFromUtc())
            continue;
        const QDateTime back = dateWithAEDesc(aeDescriptorValue(date)).toDateTime();
        EXPECT_EQ(back, date) << date.toString(Qt::ISODate).toStdString();
    }
    for (int year : {1850, 1904, 1969, 2038, 2200}) {
        const QDateTime date(QDate(year, 3, 1), QTime(12, 0, 1), Qt::LocalTime);
        EXPECT_EQ(dateWithAEDesc(aeDescriptorValue(date)).toDateTime(), date) << year;
    }
}

} // namespace
