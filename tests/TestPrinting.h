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

#include <QMap>

// A folder's files as "path=contents" pairs.
inline void PrintTo(const QMap<QString, QByteArray> &files, std::ostream *os)
{
    *os << '{';
    for (auto file = files.cbegin(); file != files.cend(); ++file)
        *os << (file == files.cbegin() ? "" : ", ") << file.key().toStdString() << '=' << file.value().toStdString();
    *os << '}';
}
