#pragma once

#include "CharacterSet.h"

#include <QString>

// Scans a string left to right. Before every scan the characters to be
// skipped (white space and newlines by default) are passed over; a scan that
// finds nothing leaves the location where it was. The scanner is at its end
// when only skippable characters remain.
class TextScanner {
public:
    explicit TextScanner(const QString &text);

    void setCharactersToBeSkipped(const CharacterSet &skipped) { m_skipped = skipped; }

    qsizetype scanLocation() const { return m_location; }
    void setScanLocation(qsizetype location);
    bool isAtEnd() const;

    // A non-empty run of characters up to (not including) the first member
    // of `stop`; false when no character was scanned.
    bool scanUpToCharactersFromSet(const CharacterSet &stop, QString *into = nullptr);
    // A non-empty run of members of `set`; false when none was there.
    bool scanCharactersFromSet(const CharacterSet &set, QString *into = nullptr);

private:
    qsizetype skipFrom(qsizetype location) const;
    bool finishScan(qsizetype start, qsizetype end, QString *into);

    QString m_text;
    CharacterSet m_skipped;
    qsizetype m_location = 0;
};
