#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <optional>

// A whole rename rule as a user saves and shares it: the prefix and suffix
// with their counters and dates, what becomes of the original name and of
// the extension, and which items are listed. Written as JSON; every key may
// be left out and then takes its default, so a rule file can be as short as
// the one thing it changes.
struct RenameRule {
    // The dates the date tokens read, numbered as the batch pass numbers them.
    enum Date { NoDate = 0, Now = 1, Created = 2, Modified = 3 };

    struct Part {
        QString text;
        qint32 start = 1;
        qint32 step = 1;
        bool leadingZeros = true;
        qint32 digits = 0;
        Date date = NoDate;

        bool operator==(const Part &) const = default;
    };

    Part prefix;
    Part suffix;

    bool includeOriginal = true;
    QString search;
    QString replace;
    bool grep = false;
    bool considerCase = true; // a literal search always considers case
    qint32 trimStart = 0;
    qint32 trimEnd = 0;
    QString caseName; // "" leaves the case alone
    bool stripAccents = false;

    std::optional<QString> newExtension; // without its full stop; "" drops the extension
    QString extensionCase;               // "" leaves it alone

    QStringList types;
    QStringList extensions;
    bool descend = false;
    bool folders = false;
    bool longNames = false;
    bool datesTaken = false; // creation dates are when photographs were taken and recordings made

    // The 24 entries of the engine's constant data.
    QVariantList settings() const;

    QByteArray toJson() const;
    // The rule a JSON text describes; on a key of the wrong kind, one it does
    // not know or text that is not JSON, nullopt and `problem` says which.
    static std::optional<RenameRule> fromJson(const QByteArray &json, QString *problem);

    static QString dateName(Date date);
    static std::optional<Date> dateNamed(const QString &name);
    static const QStringList &caseNames();

    bool operator==(const RenameRule &) const = default;
};
