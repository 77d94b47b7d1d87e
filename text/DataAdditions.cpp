#include "DataAdditions.h"

namespace DataAdditions {

qint64 offsetOfData(const QByteArray &self, const QByteArray &pattern)
{
    if (pattern.isEmpty())
        return 0;
    if (pattern.size() > self.size())
        return NotFound;
    const qsizetype at = self.indexOf(pattern);
    return at < 0 ? NotFound : at;
}

} // namespace DataAdditions
