#pragma once

#include <QList>
#include <QMetaType>

// A run of characters: where it starts and how many it covers.
struct TextRange {
    qsizetype location = 0;
    qsizetype length = 0;

    qsizetype end() const { return location + length; }
    friend bool operator==(const TextRange &, const TextRange &) = default;
};

Q_DECLARE_METATYPE(TextRange)
