#pragma once

#include <QDateTime>
#include <array>
#include <QString>
#include <QStringList>

// The ten fixed date tokens as the user types them (their localized
// spelling), in the order they are replaced: longer ones before the
// shorter ones they could contain.
struct LocalizedDateTokens {
    QString YYYY_MM_DD_localized = QStringLiteral("«YYYY-MM-DD»");
    QString YY_MM_DD_localized = QStringLiteral("«YY-MM-DD»");
    QString MM_DD_YYYY_localized = QStringLiteral("«MM-DD-YYYY»");
    QString MM_DD_YY_localized = QStringLiteral("«MM-DD-YY»");
    QString MM_DD_localized = QStringLiteral("«MM-DD»");
    QString YYYY_DD_MM_localized = QStringLiteral("«YYYY-DD-MM»");
    QString YY_DD_MM_localized = QStringLiteral("«YY-DD-MM»");
    QString DD_MM_YYYY_localized = QStringLiteral("«DD-MM-YYYY»");
    QString DD_MM_YY_localized = QStringLiteral("«DD-MM-YY»");
    QString DD_MM_localized = QStringLiteral("«DD-MM»");

    // Each token looked up in the "ui" string table; a missing entry is the key.
    static LocalizedDateTokens fromUiTable();

    // The ten tokens in the order above.
    std::array<const QString *, 10> all() const;

private:
    template <typename Self>
    static auto allOf(Self &self)
    {
        return std::array{&self.YYYY_MM_DD_localized, &self.YY_MM_DD_localized, &self.MM_DD_YYYY_localized,
                          &self.MM_DD_YY_localized,   &self.MM_DD_localized,    &self.YYYY_DD_MM_localized,
                          &self.YY_DD_MM_localized,   &self.DD_MM_YYYY_localized, &self.DD_MM_YY_localized,
                          &self.DD_MM_localized};
    }
};

inline std::array<const QString *, 10> LocalizedDateTokens::all() const
{
    return allOf(*this);
}

namespace DateTokens {

// Fills the free-form token «date FORMAT» (only the first one's format is
// read; every occurrence of that exact token is replaced) and the ten fixed
// tokens. Without a date the tokens become empty text.
QString replaceInsertConstants(const QString &text, const QDateTime &date, const LocalizedDateTokens &tokens);

} // namespace DateTokens
