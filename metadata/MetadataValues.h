#pragma once

#include "DateTaken.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

// What files say of themselves, as names and columns use it: a
// photograph's camera, lens, exposure and pixels, a recording's tags,
// length and picture size, and any tag by its exiv2 key.
namespace Metadata {

// The values a name or a column can ask for; each is a token «name».
enum class Field : quint8 {
    Make,
    Model,
    Camera, // the model with the make said once
    Lens,
    Iso,
    Aperture,
    Exposure,
    Focal,
    Width,
    Height,
    Artist,
    AlbumArtist,
    Album,
    Title,
    Track,
    Disc,
    Year,
    Genre,
    Duration,
    Resolution,
};
inline constexpr int FieldCount = int(Field::Resolution) + 1;

// The token's name as it is typed between « and »: "make", "albumartist".
QString tokenName(Field field);
std::optional<Field> fieldNamed(QStringView name);
// What a row says when its file has no such value: "no lens recorded".
QString missingText(const QString &token);

// A set of fields.
class Fields {
public:
    constexpr Fields() = default;
    constexpr Fields(std::initializer_list<Field> fields)
    {
        for (Field field : fields)
            add(field);
    }
    constexpr void add(Field field) { m_bits |= bit(field); }
    constexpr bool has(Field field) const { return (m_bits & bit(field)) != 0; }
    constexpr bool isEmpty() const { return m_bits == 0; }
    constexpr bool contains(Fields other) const { return (m_bits & other.m_bits) == other.m_bits; }
    constexpr bool intersects(Fields other) const { return (m_bits & other.m_bits) != 0; }
    constexpr Fields operator|(Fields other) const { return fromBits(m_bits | other.m_bits); }
    constexpr Fields operator&(Fields other) const { return fromBits(m_bits & other.m_bits); }
    constexpr Fields operator-(Fields other) const { return fromBits(m_bits & ~other.m_bits); }
    constexpr bool operator==(const Fields &) const = default;

    // Each field of a photograph's EXIF, and of a recording's tags.
    static constexpr Fields photograph()
    {
        return {Field::Make, Field::Model, Field::Camera, Field::Lens, Field::Iso, Field::Aperture, Field::Exposure,
                Field::Focal, Field::Width, Field::Height, Field::Resolution};
    }
    static constexpr Fields music()
    {
        return {Field::Artist, Field::AlbumArtist, Field::Album, Field::Title, Field::Track,
                Field::Disc,   Field::Year,        Field::Genre};
    }

private:
    static constexpr quint32 bit(Field field) { return quint32(1) << int(field); }
    static constexpr Fields fromBits(quint32 bits)
    {
        Fields fields;
        fields.m_bits = bits;
        return fields;
    }
    quint32 m_bits = 0;
};

// What a listing asks of each file: nothing at all means the file is not
// opened.
struct Request {
    bool dateTaken = false;
    Fields fields;
    QStringList tags; // exiv2 keys: "Exif.Photo.LensModel", "Xmp.dc.title"

    bool isEmpty() const { return !dateTaken && fields.isEmpty() && tags.isEmpty(); }
    Request &operator|=(const Request &other);
    // What this asks that `answered` did not.
    Request without(const Request &answered) const;
    bool operator==(const Request &) const = default;
};

// The values one file recorded, each as the file holds it (decoded into
// characters, blanks around it trimmed); what it does not record is absent.
class Values {
public:
    std::optional<DateTaken> taken;
    int width = -1;  // pixels of the picture as stored, or of a recording's video
    int height = -1;
    qint64 durationMs = -1;
    // What was asked when this was read, so a missing value is known from
    // one never looked for.
    Request answered;

    QString text(Field field) const;
    void set(Field field, const QString &text);
    // A tag by its exiv2 key, as exiv2 prints it; "" when not recorded.
    QString tag(const QString &key) const;
    void setTag(const QString &key, const QString &text);
    bool has(Field field) const { return !text(field).isEmpty(); }

    // The values that follow from others: «camera» from make and model,
    // «resolution» and the pixel fields from the size, «duration».
    void complete();

private:
    std::vector<std::pair<Field, QString>> m_texts;
    std::vector<std::pair<QString, QString>> m_tags;
};

} // namespace Metadata
