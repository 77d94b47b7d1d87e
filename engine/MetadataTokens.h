#pragma once

#include "MetadataValues.h"

#include <QString>
#include <optional>

// The tokens a prefix or suffix asks what a file says of itself by, spelled
// as the date tokens are: «camera», «lens», «artist», … one for each field,
// and «tag KEY» for any tag by its exiv2 key («tag Exif.Photo.LensModel»).
namespace MetadataTokens {

struct Token {
    std::optional<Metadata::Field> field; // none for a tag
    QString tag;                          // the exiv2 key of «tag KEY»
    qsizetype length = 0;                 // of the whole token, « and » included

    // How a row without the value names it: "lens", "Exif.Photo.LensModel".
    QString name() const { return field ? Metadata::tokenName(*field) : tag; }
    // The value a file's values give for it ("" for none).
    QString valueIn(const Metadata::Values &values) const { return field ? values.text(*field) : values.tag(tag); }
    // Whether a read that was asked `request` looked for it.
    bool askedIn(const Metadata::Request &request) const { return field ? request.fields.has(*field) : request.tags.contains(tag); }
};

// The token that opens at `at` in `text`, if one does.
std::optional<Token> at(QStringView text, qsizetype at);

// Every value the tokens of these texts ask for.
Metadata::Request requestOf(std::initializer_list<QStringView> texts);

// Each token as it is written, for menus, manuals and completion.
QString written(Metadata::Field field);

} // namespace MetadataTokens
