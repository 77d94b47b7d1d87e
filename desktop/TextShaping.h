#pragma once

#include "AttributedString.h"

#include <QColor>
#include <QString>
#include <QVariantMap>
#include <optional>

// Text work that needs fonts, colours or a document reader: fitting text to
// a width as a font measures it, the caption style, a colour from numbers,
// and HTML read back into plain text. Widths are measured with the font the
// attributes give under "NSFont", else the application's font.
namespace TextShaping {

QString truncateString(const QString &self, double width, const QVariantMap &attributes);
QString truncatePathString(const QString &self, double width, const QVariantMap &attributes);
QColor color(const QString &self);
AttributedString hoverAttributedStringOfSize(const QString &self, float size);
QString convertHTMLEntities(const QString &self);
QString flattenHTML(const QString &self);
// The text as the speech library's default voice would say it, in its
// phoneme mnemonics; nullopt when no voice can be loaded.
std::optional<QString> phonemes(const QString &self);

} // namespace TextShaping
