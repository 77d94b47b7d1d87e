#include "ErrnoText.h"

#include <cstring>

QString errnoText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}
