#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <optional>

// Property lists, XML or binary, as script values: strings, whole numbers,
// reals, booleans, dates, data, lists and dictionaries.
namespace PropertyLists {

struct Parsed {
    std::optional<QVariant> value;
    QString error; // why the bytes are not a property list
};

Parsed parse(const QByteArray &bytes);

} // namespace PropertyLists
