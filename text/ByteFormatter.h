#pragma once

#include "AttributedString.h"

#include <QString>
#include <QVariant>
#include <optional>

// Shows a byte count as a short size with a unit ("1.5 KB") and reads such
// a text back. Values go through 32-bit floats, so counts of 2^24 bytes and
// more lose their last places; that is accepted for a size column.
namespace ByteFormatter {

inline constexpr float BytesPerKB = 1024.0f;
inline constexpr float BytesPerMB = 1048576.0f;
inline constexpr float BytesPerGB = 1073741824.0f;

// "-" for anything that is not a number.
QString stringForObjectValue(const QVariant &object);

// The number, or the error text when the text ends in no known unit.
struct Parsed {
    std::optional<float> value;
    QString errorDescription;
};
Parsed getObjectValueForString(const QString &text);

// The display text with the given attributes over all of it.
AttributedString attributedStringForObjectValue(const QVariant &object, const QVariantMap &attributes);

} // namespace ByteFormatter
