#pragma once

#include "DateTokens.h"
#include "DuplicateList.h"
#include "MetadataTokens.h"
#include "RenameRule.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <memory>
#include <QStringList>
#include <functional>
#include <vector>

// One composition request: the six entries the composer is given.
struct CompositionRequest {
    QString name;          // current full name, extension included
    qint32 rowCount = 0;   // rows in the file table, for the counter's width
    bool numberDuplicates = false;
    QString location;      // containing folder with a trailing "/"
    QDateTime prefixDate;  // invalid for none
    QDateTime suffixDate;
    const Metadata::Values *values = nullptr; // what the item's file says, for «camera» and the like
};

// Turns an item's current name into its new name by the rename rule:
// prefix (counter, folder, date tokens), the original base name (search and
// replace, trimming, case, diacritics), suffix, extension; and numbers
// duplicates given out earlier in the same pass. Each call advances the two
// running counters.
class NameComposer {
public:
    // A GREP search and replace: the new text, or the text as it was and
    // why the program failed, in Perl's words.
    struct GrepResult {
        QString text;
        QString failure;
    };
    using GrepReplace = std::function<GrepResult(const QString &text, const QString &pattern,
                                                 const QString &replacement, bool consideringCase)>;

    // The rule, and its two running counters: each composition advances
    // them by the rule's steps; a new rule starts them at its starts.
    RenameRule rule = RenameRule::blank();
    qint32 prefixCounter = 0;
    qint32 suffixCounter = 0;
    void useRule(const RenameRule &newRule);
    DuplicateList duplicate_check_list;
    QStringList sentenceEndings = {QStringLiteral("."), QStringLiteral("!"), QStringLiteral("?")};
    LocalizedDateTokens tokens;
    // With the leading-zeros controls present the counter is always padded;
    // their check boxes are deliberately not consulted.
    bool prefixZerosControlConnected = true;
    bool suffixZerosControlConnected = true;
    GrepReplace grep;
    // Why the search and replace of the last name composed failed; empty
    // when it did not. The name part then stayed as it was.
    QString lastFailure;
    // The tokens of the last name composed whose file recorded no value
    // ("lens", "Exif.Photo.LensModel"): they became empty text. A token its
    // file's values were not read for yet is not missing.
    QStringList lastMissing;

    // Treated base names kept from one composition to the next while the
    // rules that make them (search and replace, trimming, case, accents)
    // stay the same: a preview of the whole table then redoes only the
    // prefix, suffix, counters and extension as the user types.
    struct TreatedBase {
        QString base;
        QString failure;
    };
    struct BaseNameCache {
        RenameRule rules; // the fields that make a base name, as last used
        bool filled = false;
        QHash<QString, TreatedBase> bases;
    };
    std::shared_ptr<BaseNameCache> baseNameCache;

    QString generateNewName(const CompositionRequest &request);
    static QString addLeadingZeros(qint32 counter, qint32 rowCount, qint32 minimumDigits);
    QString changeCase(const QString &text, RenameRule::Case theCase) const;
    QString replaceInsertConstants(const QString &text, const QDateTime &date) const;
    // The name without its last extension: a.b.c gives a.b, .profile "".
    static QString baseNameOf(const QString &name);
    // The extension a new name gets for this current name: the new one, or
    // the old one in the chosen case, or as it was.
    QString extensionFor(const QString &currentName) const;
    // Duplicate numbering applied to a name composed without it: the same
    // check and the same " n" before the extension.
    QString numbered(const QString &location, const QString &newName, const QString &extension);

private:
    static QString exactly(QStringView name, QStringView extension);
    QString counterText(qint32 counter, qint32 rowCount, qint32 minimum, bool padded) const;
    // `room`: characters to leave room for after the text. Tokens of what
    // files say take their values from `values`; `valued` is set when one
    // gave any text.
    QString fillTokens(const QString &text, const QDateTime &date, const QString &counter, const QString &folder,
                       const Metadata::Values *values, bool &valued, qsizetype room = 0);
    TreatedBase treatedBaseName(const QString &name);
    TreatedBase cachedBaseName(const QString &name);
    struct FilledText;
    const FilledText &tokensFilled(const QString &text, const QDateTime &date) const;
    QString folderNameOf(const QString &location);

    // Rows of one folder follow each other: its name is worked out once.
    QString m_lastLocation;
    QString m_lastFolderName;

    // The last texts the date tokens were filled in: rows without dates of
    // their own share one answer. What is left is cut once into literal
    // runs and the places of the counter, the folder's name and the values
    // files record, which change with every row.
    struct FilledText {
        enum class Piece : char { Literal, Counter, Folder, Value };
        struct Part {
            Piece piece;
            qsizetype from = 0; // a literal run of `filled`, or a value's token in `tokens`
            qsizetype length = 0;
        };
        QString text;
        QDateTime date;
        QString filled;
        std::vector<Part> parts;
        std::vector<MetadataTokens::Token> tokens;
    };
    static void cutIntoParts(FilledText &text);
    mutable FilledText m_filled[2];
    mutable int m_nextFilled = 0;
};
