#include "XmpPacket.h"

#include "ThreadArena.h"
#include "ValueTexts.h"

#include <bitset>
#include <expat.h>
#include <random>
#include <memory>
#include <type_traits>
#include <cmath>

using Metadata::Field;

namespace {

// The properties read, each as expat names it: "namespace local".
enum Wanted { DateTimeOriginal, DateCreated, CreateDate, DateTimeDigitized, Make, Model, LensModel, Lens, Iso, FNumber,
              ExposureTime, FocalLength, WantedCount };
constexpr QByteArrayView wantedNames[WantedCount] = {
    "http://ns.adobe.com/exif/1.0/ DateTimeOriginal", "http://ns.adobe.com/photoshop/1.0/ DateCreated",
    "http://ns.adobe.com/xap/1.0/ CreateDate",        "http://ns.adobe.com/exif/1.0/ DateTimeDigitized",
    "http://ns.adobe.com/tiff/1.0/ Make",             "http://ns.adobe.com/tiff/1.0/ Model",
    "http://cipa.jp/exif/1.0/ LensModel",             "http://ns.adobe.com/exif/1.0/aux/ Lens",
    "http://ns.adobe.com/exif/1.0/ ISOSpeedRatings",  "http://ns.adobe.com/exif/1.0/ FNumber",
    "http://ns.adobe.com/exif/1.0/ ExposureTime",     "http://ns.adobe.com/exif/1.0/ FocalLength"};

int wantedIndex(QByteArrayView name)
{
    for (int i = 0; i < WantedCount; ++i)
        if (name == wantedNames[i])
            return i;
    return -1;
}

using WantedSet = std::bitset<WantedCount>;

// The wanted top-level properties of every rdf:Description, written as an
// attribute or as an element: a simple value as it stands, an array's
// first item (a language alternative's default one); structures are passed
// over. The first value of each is kept; the text of any other property is
// never copied, and reading stops once every wanted property is found.
class Properties {
public:
    Properties(const QByteArray &packet, WantedSet wanted) : m_wanted(wanted)
    {
        if (m_wanted.none())
            return;
        const ThreadArena::Use arena;
        static const XML_Memory_Handling_Suite memory = {ThreadArena::allocate, ThreadArena::reallocate, ThreadArena::release};
        const std::unique_ptr<std::remove_pointer_t<XML_Parser>, void (*)(XML_Parser)> parser(
            XML_ParserCreate_MM(nullptr, &memory, " "), XML_ParserFree);
        if (!parser)
            return;
        m_parser = parser.get();
        // The salt of expat's hash tables, drawn once a thread rather than
        // with a system call for every packet.
        thread_local const unsigned long salt = std::random_device()();
        XML_SetHashSalt(m_parser, salt);
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(parser.get(), &Properties::started, &Properties::ended);
        XML_SetCharacterDataHandler(parser.get(), &Properties::characters);
        // A packet that is not well formed keeps what was read before the fault.
        XML_Parse(parser.get(), packet.constData(), int(packet.size()), XML_TRUE);
    }
    QString value(Wanted wanted) const { return QString::fromUtf8(m_found[wanted]).trimmed(); }

private:
    static void started(void *data, const XML_Char *name, const XML_Char **attributes)
    {
        auto &self = *static_cast<Properties *>(data);
        ++self.m_depth;
        const QByteArrayView element(name);
        if (self.m_description < 0 && element == rdfDescription) {
            self.m_description = self.m_depth;
            for (const XML_Char **attribute = attributes; *attribute; attribute += 2)
                self.keep(wantedIndex(attribute[0]), attribute[1]);
        } else if (self.m_description >= 0 && self.m_depth == self.m_description + 1) {
            const int property = wantedIndex(element);
            self.m_property = property >= 0 && self.m_wanted[property] ? property : -1;
            self.m_text.clear();
            self.m_item = None;
        } else if (self.m_property >= 0 && self.m_depth == self.m_description + 3 && element == rdfItem) {
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
        if (self.m_description >= 0 && self.m_depth == self.m_description + 1) {
            self.keep(self.m_property, self.m_text);
            self.m_property = -1;
        } else if (self.m_depth == self.m_description) {
            self.m_description = -1;
        }
        --self.m_depth;
    }
    static void characters(void *data, const XML_Char *text, int length)
    {
        auto &self = *static_cast<Properties *>(data);
        const bool simple = self.m_depth == self.m_description + 1 && self.m_item == None;
        if (self.m_property >= 0 && (simple || self.m_item == Reading))
            self.m_text.append(text, length);
    }
    void keep(int wanted, QByteArrayView text)
    {
        if (wanted < 0 || !m_wanted[wanted])
            return;
        m_wanted[wanted] = false;
        m_found[wanted] = text.toByteArray();
        if (m_wanted.none())
            XML_StopParser(m_parser, XML_FALSE);
    }

    static constexpr QByteArrayView rdfDescription = "http://www.w3.org/1999/02/22-rdf-syntax-ns# Description";
    static constexpr QByteArrayView rdfItem = "http://www.w3.org/1999/02/22-rdf-syntax-ns# li";
    static constexpr QByteArrayView xmlLanguage = "http://www.w3.org/XML/1998/namespace lang";

    enum Item { None, Reading, Taken, Preferred };
    WantedSet m_wanted; // wanted and not yet found
    XML_Parser m_parser = nullptr;
    QByteArray m_found[WantedCount];
    int m_depth = 0;
    int m_description = -1; // the depth of the rdf:Description being read
    int m_property = -1;    // the wanted property whose element is being read
    QByteArray m_text;
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

// What the packet is read for: what the request asks and the values lack,
// and the packet names somewhere.
WantedSet wanted(const QByteArray &packet, const Metadata::Request &request, const Metadata::Values &values)
{
    WantedSet asked;
    if (request.dateTaken && !values.taken)
        asked.set(DateTimeOriginal).set(DateCreated).set(CreateDate).set(DateTimeDigitized);
    constexpr std::pair<Field, Wanted> fields[] = {
        {Field::Make, Make},          {Field::Model, Model},           {Field::Lens, LensModel},     {Field::Lens, Lens},
        {Field::Iso, Iso},            {Field::Aperture, FNumber},      {Field::Exposure, ExposureTime}, {Field::Focal, FocalLength}};
    for (const auto &[field, property] : fields)
        if (request.fields.has(field) && !values.has(field))
            asked.set(property);
    for (int i = 0; i < WantedCount; ++i) {
        const QByteArrayView name = wantedNames[i];
        if (asked[i] && !packet.contains(name.sliced(name.indexOf(' ') + 1)))
            asked.reset(i);
    }
    return asked;
}

} // namespace

namespace XmpPacket {

void read(const QByteArray &packet, const Metadata::Request &request, Metadata::Values &values)
{
    if (packet.isEmpty())
        return;
    const Properties properties(packet, wanted(packet, request, values));
    if (request.dateTaken && !values.taken) {
        for (const Wanted date : {DateTimeOriginal, DateCreated, CreateDate, DateTimeDigitized})
            if (const auto stamp = RecordedStamp::parse(properties.value(date))) {
                values.taken = stamp->taken();
                break;
            }
    }
    const auto setIfMissing = [&values](Field field, const QString &text) {
        if (!values.has(field) && !text.isEmpty())
            values.set(field, text);
    };
    setIfMissing(Field::Make, properties.value(Make));
    setIfMissing(Field::Model, properties.value(Model));
    setIfMissing(Field::Lens, properties.value(LensModel));
    setIfMissing(Field::Lens, properties.value(Lens));
    if (const auto iso = numberOf(properties.value(Iso)); iso && *iso > 0)
        setIfMissing(Field::Iso, QString::number(qint64(*iso)));
    if (const auto fNumber = numberOf(properties.value(FNumber)))
        setIfMissing(Field::Aperture, ValueTexts::aperture(*fNumber));
    if (const auto time = numberOf(properties.value(ExposureTime)))
        setIfMissing(Field::Exposure, ValueTexts::exposure(*time));
    if (const auto focal = numberOf(properties.value(FocalLength)))
        setIfMissing(Field::Focal, ValueTexts::focalLength(*focal));
}

} // namespace XmpPacket
