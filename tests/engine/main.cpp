#include <QCoreApplication>
#include <ctime>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    // Dates are checked against one time zone with daylight saving.
    qputenv("TZ", "Europe/Paris");
    tzset();
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
