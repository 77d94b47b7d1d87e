#pragma once

#include <QString>
#include <QStringList>
#include <ostream>

// Lets GoogleTest show Qt strings in failure messages.
inline void PrintTo(const QString &s, std::ostream *os)
{
    *os << '"' << s.toStdString() << '"';
}

inline void PrintTo(const QStringList &list, std::ostream *os)
{
    *os << '(' << ('"' + list.join(QStringLiteral("\", \"")) + '"').toStdString() << ')';
}

#include <QVariant>

inline void PrintTo(const QVariant &v, std::ostream *os)
{
    *os << v.typeName() << '(' << v.toString().toStdString() << ')';
}
