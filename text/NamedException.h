#pragma once

#include <QString>
#include <QByteArray>
#include <exception>

// The few exceptions the system raises on purpose (caller faults in
// collections, descriptor conversion, start-up failures). Each carries the
// exact name and reason that scripts read back.
class NamedException : public std::exception {
public:
    NamedException(QString name, QString reason);

    const QString &name() const { return m_name; }
    const QString &reason() const { return m_reason; }
    const char *what() const noexcept override { return m_what.constData(); }

private:
    QString m_name;
    QString m_reason;
    QByteArray m_what;
};

inline const QString NSRangeException = QStringLiteral("NSRangeException");
inline const QString NSInvalidArgumentException = QStringLiteral("NSInvalidArgumentException");
inline const QString NSGenericException = QStringLiteral("NSGenericException");

// The range fault of an array asked for an index past its end.
NamedException arrayIndexBeyondBounds(qsizetype index, qsizetype count);
