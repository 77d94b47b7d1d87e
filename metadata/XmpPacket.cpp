#include "XmpPacket.h"

#include "ValueTexts.h"

#include <QHash>
#include <expat.h>
#include <memory>
#include <type_traits>
#include <cmath>

using Metadata::Field;

namespace {

const QString xmp = QStringLiteral("http://ns.adobe.com/xap/1.0/");
const QString exif = QStringLiteral("http://ns.adobe.com/exif/1.0/");
const QString exifEx = QStringLiteral("http://cipa.jp/exif/1.0/");
const QString aux = QStringLiteral("http://ns.adobe.com/exif/1.0/aux/");
const QString tiff = QStringLiteral("http://ns.adobe.com/tiff/1.0/");
const QString photoshop = QStringLiteral("http://ns.adobe.com/photoshop/1.0/");

QString keyOf(const QString &namespaceUri, const QString &name)
{
    return namespaceUri + u' ' + name;
}

// Each top-level property of every rdf:Description, written as an attribute
// or as an element: a simple value as it stands, an array's first item (a
// language alternative's default one); structures are passed over. Names
// reach the handlers as "namespace local" (expat's namespace processing,
// with a space between).
class Properties {
public:
    explicit Properties(const QByteArray &packet)
    {
        const std::unique_ptr<std::remove_pointer_t<XML_Parser>, void (*)(XML_Parser)> parser(XML_ParserCreateNS(nullptr, ' '),
                                                                                             XML_ParserFree);
        if (!parser)
            return;
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(parser.get(), &Properties::started, &Properties::ended);
        XML_SetCharacterDataHandler(parser.get(), &Properties::characters);
        // A packet that is not well formed keeps what was read before the fault.
        XML_Parse(parser.get(), packet.constData(), int(packet.size()), XML_TRUE);
    }
    QString value(const QString &key) const { return m_found.value(key); }

private:
    static void started(void *data, const XML_Char *name, const XML_Char **attributes)
    {
        auto &self = *static_cast<Properties *>(data);
        ++self.m_depth;
        const QByteArrayView element(name);
        if (self.m_description < 0 && element == rdfDescription) {
            self.m_description = self.m_depth;
            for (const XML_Char **attribute = attributes; *attribute; attribute += 2)
                if (!QByteArrayView(attribute[0]).startsWith(rdfNamespace))
                    self.keep(QString::fromUtf8(attribute[0]), QString::fromUtf8(attribute[1]));
        } else if (self.m_description >= 0 && self.m_depth == self.m_description + 1) {
            self.m_property = QString::fromUtf8(name);
            self.m_text.clear();
            self.m_item = None;
        } else if (self.m_description >= 0 && self.m_depth == self.m_description + 3 && element == rdfItem) {
            bool preferred = false;
            for (const XML_Char **attribute = attributes; *attribute; attribute += 2)
                preferred = preferred || (QByteArrayView(attribute[0]) == xmlLanguage && QByteArrayView(attribute[1]) == "x-default");
            // The first item, or the default language's.
            if (self.m_item == None || (preferred && self.m_item != Preferred)) {
                self.m_text.clear();
                self.m_item = Reading;
                self.m_preferred = preferred;
            }
        }
    }
    static void ended(void *data, const XML_Char *)
    {
        auto &self = *static_cast<Properties *>(data);
        if (self.m_item == Reading && self.m_depth == self.m_description + 3)
            self.m_item = self.m_preferred ? Preferred : Taken;
        if (self.m_description >= 0 && self.m_depth == self.m_description + 1 && !self.m_property.isEmpty()) {
            self.keep(self.m_property, self.m_text.trimmed());
            self.m_property.clear();
        } else if (self.m_depth == self.m_description) {
            self.m_description = -1;
        }
        --self.m_depth;
    }
    static void characters(void *data, const XML_Char *text, int length)
    {
        auto &self = *static_cast<Properties *>(data);
        const bool simple = self.m_depth == self.m_description + 1 && self.m_item == None;
        if (self.m_description >= 0 && (simple || self.m_item == Reading))
            self.m_text += QString::fromUtf8(text, length);
    }
    void keep(const QString &key, const QString &text)
    {
        if (!m_found.contains(key))
            m_found.insert(key, text);
    }

    static constexpr QByteArrayView rdfNamespace = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
    static constexpr QByteArrayView rdfDescription = "http://www.w3.org/1999/02/22-rdf-syntax-ns# Description";
    static constexpr QByteArrayView rdfItem = "http://www.w3.org/1999/02/22-rdf-syntax-ns# li";
    static constexpr QByteArrayView xmlLanguage = "http://www.w3.org/XML/1998/namespace lang";

    enum Item { None, Reading, Taken, Preferred };
    QHash<QString, QString> m_found;
    int m_depth = 0;
    int m_description = -1; // the depth of the rdf:Description being read
    QString m_property;     // the property element being read
    QString m_text;
    Item m_item = None;
    bool m_preferred = false;
};

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
    const Properties properties(packet);
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
