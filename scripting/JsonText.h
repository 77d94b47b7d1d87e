#pragma once

#include <QJSValue>
#include <QString>
#include <functional>

// JSON text for script values, with dates as ISO 8601 strings carrying their
// UTC offset and native objects as "<ClassName>". Keys keep their order.
namespace JsonText {

using ClassNamer = std::function<QString(const QJSValue &)>;
QString write(const QJSValue &value, const ClassNamer &className);
QString isoDate(const QDateTime &date);

} // namespace JsonText
