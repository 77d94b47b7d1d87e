#pragma once

#include "MetadataValues.h"
#include "Result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

// The rename rule, the one form every part of Nomen composes names by: the
// prefix and suffix with their counters and dates, what becomes of the
// original name and of the extension, and which items are listed. Saved and
// shared as JSON, where every key may be left out and then takes its
// default, so a rule file can be as short as the one thing it changes.
struct RenameRule {
    // The dates the date tokens read, numbered as the date popups are
    // (their index plus one).
    enum Date { NoDate = 0, Now = 1, Created = 2, Modified = 3 };
    enum class Search { Literal, Grep };
    enum class Case { Upper, Lower, Title, Sentence };

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
    Search searchKind = Search::Literal;
    bool considerCase = true; // a literal search always considers case
    qint32 trimStart = 0;
    qint32 trimEnd = 0;
    std::optional<Case> nameCase; // none leaves the case alone
    bool stripAccents = false;

    // What follows the name instead of its own extension, as it is put
    // there: "" drops the extension, ".jpg" gives a new one. None keeps it.
    std::optional<QString> newExtension;
    std::optional<Case> extensionCase;

    QStringList types;
    QStringList extensions;
    bool descend = false;
    bool folders = false;
    bool longNames = false;
    bool datesTaken = false; // creation dates are when photographs were taken and recordings made

    // A rule with nothing in it: no text, counters at 0, nothing included,
    // as the engine holds before it is given a rule.
    static RenameRule blank();
    bool searchesByGrep() const { return searchKind == Search::Grep && !search.isEmpty(); }
    // What a listing must read of each file for this rule: its date taken
    // when chosen, and the values its prefix's and suffix's tokens show.
    Metadata::Request metadataRequest() const;

    QByteArray toJson() const;
    // The rule a JSON text describes; on a key of the wrong kind, one it does
    // not know or text that is not JSON, nullopt and `problem` says which.
    static Result<RenameRule> fromJson(const QByteArray &json);

    static QString dateName(Date date);
    static std::optional<Date> dateNamed(const QString &name);
    // "UPPERCASE", "lowercase", "Title Case", "Sentence case": the names
    // people choose a case by, in the window, on the command line and in
    // rule files.
    static const QStringList &caseNames();
    static QString caseName(Case theCase);
    static std::optional<Case> caseNamed(const QString &name);
    // An extension as it follows a name: "jpg" and ".jpg" give ".jpg", ""
    // stays "".
    static QString extensionWithStop(const QString &extension);

    bool operator==(const RenameRule &) const = default;
};
