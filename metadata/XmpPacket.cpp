#include "XmpPacket.h"

#include "ValueTexts.h"

#include <QHash>
#include <QXmlStreamReader>
#include <cmath>

using Metadata::Field;

namespace {

const QString rdf = QStringLiteral("http://www.w3.org/1999/02/22-rdf-syntax-ns#");
const QString xmp = QStringLiteral("http://ns.adobe.com/xap/1.0/");
const QString exif = QStringLiteral("http://ns.adobe.com/exif/1.0/");
const QString exifEx = QStringLiteral("http://cipa.jp/exif/1.0/");
const QString aux = QStringLiteral("http://ns.adobe.com/exif/1.0/aux/");
const QString tiff = QStringLiteral("http://ns.adobe.com/tiff/1.0/");
const QString photoshop = QStringLiteral("http://ns.adobe.com/photoshop/1.0/");

QString keyOf(QStringView namespaceUri, QStringView name)
{
    return namespaceUri.toString() + u' ' + name.toString();
}

// Each top-level property of every rdf:Description, written as an attribute
// or as an element: a simple value as it stands, an array's first item (a
// language alternative's default one); structures are passed over.
QHash<QString, QString> propertiesOf(const QByteArray &packet)
{
    QHash<QString, QString> properties;
    QXmlStreamReader reader(packet);
    int depth = 0;
    int description = -1; // the depth of the rdf:Description being read
    QString property;     // the property element being read
    QString text;
    bool itemTaken = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            ++depth;
            if (description < 0 && reader.namespaceUri() == rdf && reader.name() == QLatin1String("Description")) {
                description = depth;
                for (const QXmlStreamAttribute &attribute : reader.attributes())
                    if (attribute.namespaceUri() != rdf)
                        properties.insert(keyOf(attribute.namespaceUri(), attribute.name()), attribute.value().toString());
            } else if (description >= 0 && depth == description + 1) {
                property = keyOf(reader.namespaceUri(), reader.name());
                text.clear();
                itemTaken = false;
            } else if (description >= 0 && depth == description + 3 && reader.namespaceUri() == rdf
                       && reader.name() == QLatin1String("li")) {
                const bool preferred = reader.attributes().value(QStringLiteral("xml:lang")) == QLatin1String("x-default");
                const QString item = reader.readElementText(QXmlStreamReader::SkipChildElements);
                --depth; // the reader is at the item's end
                if (!itemTaken || preferred) {
                    text = item;
                    itemTaken = true;
                }
            }
            break;
        }
        case QXmlStreamReader::Characters:
            if (description >= 0 && depth == description + 1 && !itemTaken)
                text += reader.text();
            break;
        case QXmlStreamReader::EndElement:
            if (description >= 0 && depth == description + 1 && !property.isEmpty()) {
                if (!properties.contains(property))
                    properties.insert(property, text.trimmed());
                property.clear();
            } else if (depth == description) {
                description = -1;
            }
            --depth;
            break;
        default:
            break;
        }
    }
    return properties;
}

// A number written as XMP writes rationals ("28/10") or plainly.
std::optional<double> numberOf(const QString &text)
{
    const qsizetype slash = text.indexOf(u'/');
    bool ok = false, ok2 = true;
    const double value = slash < 0 ? text.toDouble(&ok) : text.left(slash).toDouble(&ok) / text.mid(slash + 1).toDouble(&ok2);
    return ok && ok2 && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

} // namespace

namespace XmpPacket {

void read(const QByteArray &packet, const Metadata::Request &request, Metadata::Values &values)
{
    if (packet.isEmpty())
        return;
    const QHash<QString, QString> properties = propertiesOf(packet);
    const auto value = [&properties](const QString &namespaceUri, const char *name) {
        return properties.value(keyOf(namespaceUri, QString::fromLatin1(name))).trimmed();
    };
    if (request.dateTaken && !values.taken) {
        const std::pair<const QString *, const char *> dates[] = {
            {&exif, "DateTimeOriginal"}, {&photoshop, "DateCreated"}, {&xmp, "CreateDate"}, {&exif, "DateTimeDigitized"}};
        for (const auto &[namespaceUri, name] : dates)
            if (const auto stamp = RecordedStamp::parse(value(*namespaceUri, name))) {
                values.taken = stamp->taken();
                break;
            }
    }
    const auto setIfMissing = [&values](Field field, const QString &text) {
        if (!values.has(field) && !text.isEmpty())
            values.set(field, text);
    };
    setIfMissing(Field::Make, value(tiff, "Make"));
    setIfMissing(Field::Model, value(tiff, "Model"));
    setIfMissing(Field::Lens, value(exifEx, "LensModel"));
    setIfMissing(Field::Lens, value(aux, "Lens"));
    if (const auto iso = numberOf(value(exif, "ISOSpeedRatings")); iso && *iso > 0)
        setIfMissing(Field::Iso, QString::number(qint64(*iso)));
    if (const auto fNumber = numberOf(value(exif, "FNumber")))
        setIfMissing(Field::Aperture, ValueTexts::aperture(*fNumber));
    if (const auto time = numberOf(value(exif, "ExposureTime")))
        setIfMissing(Field::Exposure, ValueTexts::exposure(*time));
    if (const auto focal = numberOf(value(exif, "FocalLength")))
        setIfMissing(Field::Focal, ValueTexts::focalLength(*focal));
}

} // namespace XmpPacket
