#include "LocalTimeZone.h"

#include <cstdlib>
#include <ctime>

void pinLocalTimeZone()
{
    if (std::getenv("TZ") == nullptr) {
        setenv("TZ", ":/etc/localtime", 0);
        tzset();
    }
}
