#include "ClampedDates.h"

namespace {

QDateTime midnight(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(0, 0), Qt::LocalTime);
}

} // namespace

ClampedDates::ClampedDates()
    : date1904(midnight(1904, 1, 1)), date1970(midnight(1970, 1, 1)), date1970GMT(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC),
      date2040(QDate(2040, 2, 6), QTime(5, 28, 15), Qt::UTC), m_1904(date1904.toMSecsSinceEpoch()),
      m_1970(date1970.toMSecsSinceEpoch()), m_2040(date2040.toMSecsSinceEpoch())
{
}

qint64 ClampedDates::clamp(std::optional<qint64> milliseconds) const
{
    if (!milliseconds || *milliseconds < m_1904)
        return m_1904;
    if (*milliseconds == 0)
        return m_1970;
    return std::min(*milliseconds, m_2040);
}

QDateTime ClampedDates::toDateTime(qint64 milliseconds) const
{
    // The latest date is given in GMT, as it was made.
    if (milliseconds == m_2040)
        return date2040;
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::LocalTime);
}

QDateTime ClampedDates::toDateTime(qint64 milliseconds, std::optional<qint32> offset) const
{
    return offset ? QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, *offset) : toDateTime(milliseconds);
}
