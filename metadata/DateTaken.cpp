#include "DateTaken.h"

QDateTime DateTaken::toDateTime() const
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, offset);
}

DateTaken DateTaken::atWallClock(const QDateTime &wallClock, std::optional<qint32> recordedOffset)
{
    const QDateTime asUtc(wallClock.date(), wallClock.time(), Qt::UTC);
    qint32 offset = 0;
    if (recordedOffset) {
        offset = *recordedOffset;
    } else {
        // The local offset of that wall clock; in the hour a clock change
        // skips there is none, and the offset just after it serves: the
        // date is shown at whatever offset it keeps, so it reads the same.
        const QDateTime local(wallClock.date(), wallClock.time(), Qt::LocalTime);
        offset = local.isValid() && local.time() == wallClock.time() ? local.offsetFromUtc()
                                                                      : asUtc.toLocalTime().offsetFromUtc();
    }
    return {asUtc.toMSecsSinceEpoch() - qint64(offset) * 1000, offset};
}

DateTaken DateTaken::inLocalTime(qint64 milliseconds)
{
    return {milliseconds, QDateTime::fromMSecsSinceEpoch(milliseconds).offsetFromUtc()};
}

namespace {

// Reads fixed-width decimal fields off the front of a text.
class Fields {
public:
    explicit Fields(QStringView text) : m_text(text) {}

    bool atEnd() const { return m_at >= m_text.size(); }
    QChar peek() const { return atEnd() ? QChar() : m_text[m_at]; }
    bool skip(QChar c)
    {
        if (peek() != c)
            return false;
        ++m_at;
        return true;
    }
    bool skipAnyOf(QStringView set)
    {
        if (atEnd() || !set.contains(peek()))
            return false;
        ++m_at;
        return true;
    }
    std::optional<int> number(int digits)
    {
        if (m_at + digits > m_text.size())
            return std::nullopt;
        int value = 0;
        for (int i = 0; i < digits; ++i) {
            const char16_t c = m_text[m_at + i].unicode();
            if (c < u'0' || c > u'9')
                return std::nullopt;
            value = value * 10 + (c - u'0');
        }
        m_at += digits;
        return value;
    }
    // The digits of a fraction of a second, as milliseconds.
    int fraction()
    {
        int milliseconds = 0;
        int place = 100;
        while (!atEnd() && peek().isDigit()) {
            milliseconds += (peek().unicode() - u'0') * place;
            place /= 10;
            ++m_at;
        }
        return milliseconds;
    }
    void skipBlanks()
    {
        while (!atEnd() && (peek() == u' ' || peek() == u'\t'))
            ++m_at;
    }
    QStringView rest() const { return m_text.mid(m_at); }

private:
    QStringView m_text;
    qsizetype m_at = 0;
};

} // namespace

std::optional<qint32> RecordedStamp::parseOffset(QStringView text)
{
    Fields fields(text.trimmed());
    if (fields.skip(u'Z'))
        return fields.atEnd() ? std::optional<qint32>(0) : std::nullopt;
    const QChar sign = fields.peek();
    if (!fields.skipAnyOf(u"+-"))
        return std::nullopt;
    const auto hours = fields.number(2);
    fields.skip(u':');
    const auto minutes = fields.number(2);
    if (!hours || !minutes || !fields.atEnd() || *hours > 18 || *minutes > 59)
        return std::nullopt;
    return (*hours * 3600 + *minutes * 60) * (sign == u'-' ? -1 : 1);
}

std::optional<RecordedStamp> RecordedStamp::parse(QStringView text)
{
    Fields fields(text.trimmed());
    const auto year = fields.number(4);
    const bool dashed = fields.peek() == u'-';
    if (!year || !fields.skipAnyOf(u":-"))
        return std::nullopt;
    const auto month = fields.number(2);
    if (!month || !fields.skip(dashed ? u'-' : u':'))
        return std::nullopt;
    const auto day = fields.number(2);
    if (!day)
        return std::nullopt;
    const QDate date(*year, *month, *day);
    // A day alone is a date at midnight, as XMP may write one.
    QTime time(0, 0);
    if (!fields.atEnd() && fields.skipAnyOf(u"T ")) {
        const auto hour = fields.number(2);
        const auto minute = fields.skip(u':') ? fields.number(2) : std::nullopt;
        if (!hour || !minute)
            return std::nullopt;
        int second = 0;
        int milliseconds = 0;
        if (fields.skip(u':')) {
            const auto seconds = fields.number(2);
            if (!seconds)
                return std::nullopt;
            second = *seconds;
            if (fields.skipAnyOf(u".,"))
                milliseconds = fields.fraction();
        }
        time = QTime(*hour, *minute, second, milliseconds);
    }
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    RecordedStamp stamp{QDateTime(date, time, Qt::UTC), std::nullopt};
    fields.skipBlanks();
    if (!fields.atEnd()) {
        stamp.offset = parseOffset(fields.rest());
        if (!stamp.offset)
            return std::nullopt;
    }
    return stamp;
}

DateTaken RecordedStamp::taken(std::optional<qint32> separateOffset) const
{
    return DateTaken::atWallClock(wallClock, offset ? offset : separateOffset);
}
