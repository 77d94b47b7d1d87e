#pragma once

#include <QByteArray>

// Byte operations on data.
namespace DataAdditions {

// The not-found index: the largest signed 32-bit value.
constexpr qint64 NotFound = 0x7fffffff;

// Offset of the first occurrence of `pattern` in `self`; 0 for an empty
// pattern, NotFound when there is none.
qint64 offsetOfData(const QByteArray &self, const QByteArray &pattern);

} // namespace DataAdditions
