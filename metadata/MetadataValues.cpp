#include "MetadataValues.h"

#include "ValueTexts.h"

#include <array>

namespace Metadata {

namespace {

constexpr std::array<const char *, FieldCount> names = {
    "make",  "model",       "camera", "lens",  "iso",   "aperture", "exposure", "focal", "width",    "height",
    "artist", "albumartist", "album", "title", "track", "disc",     "year",     "genre", "duration", "resolution"};

} // namespace

QString tokenName(Field field)
{
    return QLatin1String(names[size_t(field)]);
}

std::optional<Field> fieldNamed(QStringView name)
{
    for (size_t i = 0; i < names.size(); ++i)
        if (name == QLatin1String(names[i]))
            return Field(i);
    return std::nullopt;
}

QString missingText(const QString &token)
{
    return QStringLiteral("no %1 recorded").arg(token);
}

Request &Request::operator|=(const Request &other)
{
    dateTaken = dateTaken || other.dateTaken;
    fields = fields | other.fields;
    for (const QString &key : other.tags)
        if (!tags.contains(key))
            tags.append(key);
    return *this;
}

Request Request::without(const Request &answered) const
{
    Request rest;
    rest.dateTaken = dateTaken && !answered.dateTaken;
    rest.fields = fields - answered.fields;
    for (const QString &key : tags)
        if (!answered.tags.contains(key))
            rest.tags.append(key);
    return rest;
}

QString Values::text(Field field) const
{
    for (const auto &[which, text] : m_texts)
        if (which == field)
            return text;
    return QString();
}

void Values::set(Field field, const QString &text)
{
    for (auto &[which, held] : m_texts)
        if (which == field) {
            held = text;
            return;
        }
    if (!text.isEmpty())
        m_texts.emplace_back(field, text);
}

QString Values::tag(const QString &key) const
{
    for (const auto &[which, text] : m_tags)
        if (which == key)
            return text;
    return QString();
}

void Values::setTag(const QString &key, const QString &text)
{
    for (auto &[which, held] : m_tags)
        if (which == key) {
            held = text;
            return;
        }
    m_tags.emplace_back(key, text);
}

void Values::complete()
{
    if (!has(Field::Camera))
        set(Field::Camera, ValueTexts::camera(text(Field::Make), text(Field::Model)));
    if (width > 0 && height > 0) {
        set(Field::Width, QString::number(width));
        set(Field::Height, QString::number(height));
        set(Field::Resolution, QStringLiteral("%1x%2").arg(width).arg(height));
    }
    if (durationMs >= 0)
        set(Field::Duration, ValueTexts::duration(durationMs));
}

} // namespace Metadata
