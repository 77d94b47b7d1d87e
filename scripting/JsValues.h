#pragma once

#include <QJSEngine>
#include <QJSValue>
#include <QVariant>

// Values crossing between JavaScript and native code. Into native code:
// null and undefined become nil, numbers doubles (whole numbers in 32-bit
// range ints), Date a QDateTime, arrays lists, ArrayBuffer bytes, plain
// objects string-keyed maps; native objects and native values come back as
// they went out. Out of native code: nil is null, every number type a
// number, lists arrays, maps objects, ranges {location, length} and errors
// {domain, code, message}.
namespace JsValues {

// A value that holds itself, or is nested deeper than MaximumDepth, raises
// NSInvalidArgumentException instead of exhausting the stack.
constexpr size_t MaximumDepth = 64;
QVariant fromJs(const QJSValue &value);
QJSValue toJs(QJSEngine &engine, const QVariant &value);

bool isArrayBuffer(const QJSValue &value);
// A plain object or array the bridge may fill in as an out-parameter.
bool isBox(const QJSValue &value);
// Empties `box` and fills it with `value` (a list into an array, a map into
// an object; nil leaves it empty).
void fillBox(QJSEngine &engine, QJSValue &box, const QVariant &value);

} // namespace JsValues
