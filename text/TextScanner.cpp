#include "TextScanner.h"

TextScanner::TextScanner(const QString &text) : m_text(text), m_skipped(CharacterSet::whitespaceAndNewlines()) {}

void TextScanner::setScanLocation(qsizetype location)
{
    m_location = std::clamp<qsizetype>(location, 0, m_text.size());
}

qsizetype TextScanner::skipFrom(qsizetype location) const
{
    while (location < m_text.size() && m_skipped.contains(m_text[location]))
        ++location;
    return location;
}

bool TextScanner::isAtEnd() const
{
    return skipFrom(m_location) >= m_text.size();
}

bool TextScanner::finishScan(qsizetype start, qsizetype end, QString *into)
{
    if (end == start)
        return false;
    if (into)
        *into = m_text.mid(start, end - start);
    m_location = end;
    return true;
}

bool TextScanner::scanUpToCharactersFromSet(const CharacterSet &stop, QString *into)
{
    const qsizetype start = skipFrom(m_location);
    qsizetype end = start;
    while (end < m_text.size() && !stop.contains(m_text[end]))
        ++end;
    return finishScan(start, end, into);
}

bool TextScanner::scanCharactersFromSet(const CharacterSet &set, QString *into)
{
    const qsizetype start = skipFrom(m_location);
    qsizetype end = start;
    while (end < m_text.size() && set.contains(m_text[end]))
        ++end;
    return finishScan(start, end, into);
}
