#include "Descriptor.h"

#include <QLocale>
#include <cmath>
#include <limits>

QString fourCharString(FourCharCode code)
{
    QString text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += QChar(char16_t((code >> shift) & 0xFF));
    return text;
}

std::optional<FourCharCode> fourCharCodeFrom(const QString &text)
{
    if (text.size() == 4) {
        FourCharCode code = 0;
        for (QChar c : text) {
            if (c.unicode() > 0xFF)
                return std::nullopt;
            code = (code << 8) | c.unicode();
        }
        return code;
    }
    return std::nullopt;
}

Descriptor Descriptor::appleEvent(FourCharCode eventClass, FourCharCode eventID, const Descriptor &target,
                                  qint16 returnID, qint32 transactionID)
{
    Descriptor event(DescType::AppleEvent, {});
    event.m_eventClass = eventClass;
    event.m_eventID = eventID;
    event.m_target = {target};
    event.m_returnID = returnID;
    event.m_transactionID = transactionID;
    return event;
}

Descriptor Descriptor::string(const QString &text)
{
    return Descriptor(DescType::UnicodeText,
                      QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * qsizetype(sizeof(char16_t))));
}

Descriptor Descriptor::boolean(bool value)
{
    return ofValue<quint8>(DescType::Boolean, value ? 1 : 0);
}

Descriptor Descriptor::int32(qint32 value)
{
    return ofValue(DescType::SInt32, value);
}

Descriptor Descriptor::typeCode(FourCharCode code, FourCharCode type)
{
    return ofValue(type, code);
}

qsizetype Descriptor::numberOfItems() const
{
    return (isList() || isRecordLike()) ? qsizetype(m_items.size()) : 0;
}

std::optional<Descriptor> Descriptor::descriptorAtIndex(qsizetype oneBased) const
{
    if (oneBased < 1 || oneBased > numberOfItems())
        return std::nullopt;
    return m_items[size_t(oneBased - 1)];
}

FourCharCode Descriptor::keywordForDescriptorAtIndex(qsizetype oneBased) const
{
    if (!isRecordLike() || oneBased < 1 || oneBased > numberOfItems())
        return 0;
    return m_keywords[size_t(oneBased - 1)];
}

void Descriptor::insertDescriptor(const Descriptor &item, qsizetype oneBased)
{
    if (!isList())
        return;
    const qsizetype at = std::clamp<qsizetype>(oneBased - 1, 0, qsizetype(m_items.size()));
    m_items.insert(m_items.begin() + at, item);
}

void Descriptor::setDescriptorForKeyword(const Descriptor &item, FourCharCode keyword)
{
    if (!isRecordLike())
        return;
    for (size_t i = 0; i < m_keywords.size(); ++i) {
        if (m_keywords[i] == keyword) {
            m_items[i] = item;
            return;
        }
    }
    m_keywords.push_back(keyword);
    m_items.push_back(item);
}

std::optional<Descriptor> Descriptor::descriptorForKeyword(FourCharCode keyword) const
{
    for (size_t i = 0; i < m_keywords.size(); ++i)
        if (m_keywords[i] == keyword)
            return m_items[i];
    return std::nullopt;
}

std::optional<Descriptor> Descriptor::target() const
{
    return m_target.empty() ? std::nullopt : std::optional(m_target.front());
}

bool operator==(const Descriptor &a, const Descriptor &b)
{
    return a.m_type == b.m_type && a.m_data == b.m_data && a.m_items == b.m_items && a.m_keywords == b.m_keywords
           && a.m_eventClass == b.m_eventClass && a.m_eventID == b.m_eventID && a.m_returnID == b.m_returnID
           && a.m_transactionID == b.m_transactionID && a.m_target == b.m_target;
}

// ---- coercion -------------------------------------------------------------

namespace {

bool isTextType(FourCharCode type)
{
    return type == DescType::UnicodeText || type == DescType::Text || type == DescType::UTF8Text
           || type == DescType::CString;
}

bool isCodeType(FourCharCode type)
{
    return type == DescType::Type || type == DescType::Enumerated || type == DescType::Keyword
           || type == DescType::Property;
}

struct Number {
    bool integral;
    qint64 integer;
    double real;
};

std::optional<QString> textOf(const Descriptor &d);

std::optional<Number> numberOf(const Descriptor &d)
{
    auto integer = [](std::optional<qint64> v) -> std::optional<Number> {
        return v ? std::optional(Number{true, *v, double(*v)}) : std::nullopt;
    };
    auto real = [](std::optional<double> v) -> std::optional<Number> {
        if (!v)
            return std::nullopt;
        const bool whole = std::isfinite(*v) && std::trunc(*v) == *v && std::abs(*v) < 9.2e18;
        return Number{whole, whole ? qint64(*v) : 0, *v};
    };
    switch (d.descriptorType()) {
    case DescType::SInt16:
        return integer(readData<qint16>(d));
    case DescType::SInt32:
        return integer(readData<qint32>(d));
    case DescType::UInt32:
        return integer(readData<quint32>(d));
    case DescType::SInt64:
        return integer(readData<qint64>(d));
    case DescType::Float32: {
        const auto v = readData<float>(d);
        return real(v ? std::optional<double>(*v) : std::nullopt);
    }
    case DescType::Float64:
        return real(readData<double>(d));
    case DescType::LongDouble: {
        const auto v = readData<long double>(d);
        return real(v ? std::optional<double>(double(*v)) : std::nullopt);
    }
    case DescType::Boolean:
    case DescType::True:
    case DescType::False:
        return integer(d.booleanValue() ? 1 : 0);
    default:
        break;
    }
    if (const auto text = textOf(d)) {
        bool ok = false;
        const QString trimmed = text->trimmed();
        const qint64 i = trimmed.toLongLong(&ok);
        if (ok)
            return integer(i);
        const double r = trimmed.toDouble(&ok);
        if (ok)
            return real(r);
    }
    return std::nullopt;
}

std::optional<bool> boolOf(const Descriptor &d)
{
    switch (d.descriptorType()) {
    case DescType::True:
        return true;
    case DescType::False:
        return false;
    case DescType::Boolean: {
        const auto v = readData<quint8>(d);
        return v ? std::optional(*v != 0) : std::nullopt;
    }
    default:
        break;
    }
    if (isTextType(d.descriptorType())) {
        const QString text = textOf(d).value_or(QString()).trimmed().toLower();
        if (text == QLatin1String("true"))
            return true;
        if (text == QLatin1String("false"))
            return false;
        return std::nullopt;
    }
    const auto n = numberOf(d);
    if (n && n->integral && (n->integer == 0 || n->integer == 1))
        return n->integer == 1;
    return std::nullopt;
}

std::optional<QString> textOf(const Descriptor &d)
{
    const QByteArray &data = d.data();
    switch (d.descriptorType()) {
    case DescType::UnicodeText:
        if (data.size() % 2)
            return std::nullopt;
        return QString(reinterpret_cast<const QChar *>(data.constData()), data.size() / 2);
    case DescType::Text:
    case DescType::UTF8Text:
        return QString::fromUtf8(data);
    case DescType::CString:
        return QString::fromUtf8(data.endsWith('\0') ? data.chopped(1) : data);
    case DescType::True:
    case DescType::False:
    case DescType::Boolean:
        if (const auto b = boolOf(d))
            return *b ? QStringLiteral("true") : QStringLiteral("false");
        return std::nullopt;
    case DescType::SInt16:
    case DescType::SInt32:
    case DescType::UInt32:
    case DescType::SInt64:
        if (const auto n = numberOf(d))
            return QString::number(n->integer);
        return std::nullopt;
    case DescType::Float32:
    case DescType::Float64:
    case DescType::LongDouble:
        if (const auto n = numberOf(d))
            return QString::number(n->real, 'g', QLocale::FloatingPointShortest);
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

template <typename T>
std::optional<Descriptor> integerDescriptor(FourCharCode type, const Number &n)
{
    if (!n.integral || n.integer < qint64(std::numeric_limits<T>::min())
        || (n.integer > 0 && quint64(n.integer) > quint64(std::numeric_limits<T>::max())))
        return std::nullopt;
    return Descriptor::ofValue<T>(type, T(n.integer));
}

std::optional<Descriptor> numericDescriptor(FourCharCode type, const Number &n)
{
    switch (type) {
    case DescType::SInt16:
        return integerDescriptor<qint16>(type, n);
    case DescType::SInt32:
        return integerDescriptor<qint32>(type, n);
    case DescType::UInt32:
        return integerDescriptor<quint32>(type, n);
    case DescType::SInt64:
        return integerDescriptor<qint64>(type, n);
    case DescType::Float32:
        return Descriptor::ofValue<float>(type, float(n.real));
    case DescType::Float64:
        return Descriptor::ofValue<double>(type, n.real);
    case DescType::LongDouble:
        return Descriptor::ofValue<long double>(type, n.integral ? (long double)n.integer : (long double)n.real);
    default:
        return std::nullopt;
    }
}

bool isNumericType(FourCharCode type)
{
    return type == DescType::SInt16 || type == DescType::SInt32 || type == DescType::UInt32
           || type == DescType::SInt64 || type == DescType::Float32 || type == DescType::Float64
           || type == DescType::LongDouble;
}

std::optional<Descriptor> textDescriptor(FourCharCode type, const QString &text)
{
    if (type == DescType::UnicodeText)
        return Descriptor::string(text);
    return Descriptor(type, text.toUtf8());
}

} // namespace

std::optional<Descriptor> Descriptor::coerceToDescriptorType(FourCharCode type) const
{
    if (type == m_type)
        return *this;
    if (type == DescType::List) {
        if (isRecordLike())
            return std::nullopt;
        Descriptor list = Descriptor::list();
        list.insertDescriptor(*this, 1);
        return list;
    }
    if (type == DescType::Record) {
        if (m_type != DescType::AppleEvent)
            return std::nullopt;
        Descriptor record = Descriptor::record();
        record.m_items = m_items;
        record.m_keywords = m_keywords;
        return record;
    }
    if (isTextType(type)) {
        const auto text = textOf(*this);
        return text ? textDescriptor(type, *text) : std::nullopt;
    }
    if (type == DescType::Boolean || type == DescType::True || type == DescType::False) {
        const auto value = boolOf(*this);
        if (!value)
            return std::nullopt;
        if (type == DescType::Boolean)
            return Descriptor::boolean(*value);
        if (*value != (type == DescType::True))
            return std::nullopt;
        return Descriptor(type, {});
    }
    if (isNumericType(type)) {
        const auto number = numberOf(*this);
        return number ? numericDescriptor(type, *number) : std::nullopt;
    }
    if (isCodeType(type)) {
        if (isCodeType(m_type) && m_data.size() == 4)
            return Descriptor(type, m_data);
        if (isTextType(m_type))
            if (const auto code = fourCharCodeFrom(textOf(*this).value_or(QString())))
                return Descriptor::typeCode(*code, type);
        return std::nullopt;
    }
    return std::nullopt;
}

QString Descriptor::stringValue() const
{
    const auto coerced = coerceToDescriptorType(DescType::UnicodeText);
    return coerced ? textOf(*coerced).value_or(QString()) : QString();
}

bool Descriptor::booleanValue() const
{
    return boolOf(*this).value_or(false);
}

qint32 Descriptor::int32Value() const
{
    const auto coerced = coerceToDescriptorType(DescType::SInt32);
    return coerced ? readData<qint32>(*coerced).value_or(0) : 0;
}

FourCharCode Descriptor::typeCodeValue() const
{
    const auto coerced = coerceToDescriptorType(DescType::Type);
    return coerced ? readData<FourCharCode>(*coerced).value_or(0) : 0;
}
