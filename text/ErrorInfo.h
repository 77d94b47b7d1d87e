#pragma once

#include <QMetaType>
#include <QString>

// An error reported by value: the domain it comes from, its code there and,
// when there is one, a message a person can read.
struct ErrorInfo {
    QString domain;
    qint64 code = 0;
    QString localizedDescription;

    friend bool operator==(const ErrorInfo &, const ErrorInfo &) = default;
};

Q_DECLARE_METATYPE(ErrorInfo)
