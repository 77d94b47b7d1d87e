#include "ByteFormatter.h"

#include <gtest/gtest.h>

using namespace ByteFormatter;

TEST(ByteFormatter, EachUnitStartsAtItsPowerOf1024WithItsOwnPrecision)
{
    EXPECT_EQ(stringForObjectValue(1023), "1023 B");
    EXPECT_EQ(stringForObjectValue(1024), "1.0 KB");
    EXPECT_EQ(stringForObjectValue(1536ULL), "1.5 KB");
    EXPECT_EQ(stringForObjectValue(1048575), "1024.0 KB");
    EXPECT_EQ(stringForObjectValue(1048576), "1.00 MB");
    EXPECT_EQ(stringForObjectValue(qint64(1073741824)), "1.00 GB");
    EXPECT_EQ(stringForObjectValue(double(5ULL << 40)), "5120.00 GB");
    EXPECT_EQ(stringForObjectValue(QStringLiteral("1024")), "-");
    EXPECT_EQ(stringForObjectValue(QVariant()), "-");
}

TEST(ByteFormatter, ReadsBackOnlyTextsEndingInASpaceAndAUnit)
{
    EXPECT_EQ(getObjectValueForString("1.5 KB").value, 1536.0f);
    EXPECT_EQ(getObjectValueForString("2 GB").value, 2147483648.0f);
    EXPECT_EQ(getObjectValueForString("12 B").value, 12.0f);
    EXPECT_EQ(getObjectValueForString("junk MB").value, 0.0f);
    for (const char *refused : {"12B", "1024", ""}) {
        const Parsed parsed = getObjectValueForString(QString::fromLatin1(refused));
        EXPECT_FALSE(parsed.value) << refused;
        EXPECT_EQ(parsed.errorDescription, "Couldn't find unit designation");
    }
}

