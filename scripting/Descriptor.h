#pragma once

#include <QByteArray>
#include <cstring>
#include <QMetaType>
#include <QString>
#include <optional>
#include <vector>

using FourCharCode = quint32;

// 'abcd' as the platform writes four-character codes: the first character in
// the most significant byte.
constexpr FourCharCode fourCharCode(const char (&code)[5])
{
    return (FourCharCode(quint8(code[0])) << 24) | (FourCharCode(quint8(code[1])) << 16)
           | (FourCharCode(quint8(code[2])) << 8) | FourCharCode(quint8(code[3]));
}
QString fourCharString(FourCharCode code);
// Four characters of text, or a number, as a code; nullopt for anything else.
std::optional<FourCharCode> fourCharCodeFrom(const QString &text);

namespace DescType {
constexpr FourCharCode List = fourCharCode("list");
constexpr FourCharCode Record = fourCharCode("reco");
constexpr FourCharCode AppleEvent = fourCharCode("aevt");
constexpr FourCharCode UnicodeText = fourCharCode("utxt");
constexpr FourCharCode Text = fourCharCode("TEXT");
constexpr FourCharCode UTF8Text = fourCharCode("utf8");
constexpr FourCharCode CString = fourCharCode("cstr");
constexpr FourCharCode Boolean = fourCharCode("bool");
constexpr FourCharCode True = fourCharCode("true");
constexpr FourCharCode False = fourCharCode("fals");
constexpr FourCharCode SInt16 = fourCharCode("shor");
constexpr FourCharCode SInt32 = fourCharCode("long");
constexpr FourCharCode UInt32 = fourCharCode("magn");
constexpr FourCharCode SInt64 = fourCharCode("comp");
constexpr FourCharCode Float32 = fourCharCode("sing");
constexpr FourCharCode Float64 = fourCharCode("doub");
constexpr FourCharCode LongDouble = fourCharCode("ldbl");
constexpr FourCharCode LongDateTime = fourCharCode("ldt ");
constexpr FourCharCode Null = fourCharCode("null");
constexpr FourCharCode Type = fourCharCode("type");
constexpr FourCharCode Enumerated = fourCharCode("enum");
constexpr FourCharCode Keyword = fourCharCode("keyw");
constexpr FourCharCode Property = fourCharCode("prop");
constexpr FourCharCode KernelProcessID = fourCharCode("kpid");
constexpr FourCharCode MissingValue = fourCharCode("msng");
constexpr FourCharCode UserFields = fourCharCode("usrf");
constexpr FourCharCode DirectObject = fourCharCode("----");
} // namespace DescType

// A typed value crossing to and from scripts: a four-character type code
// with its data in native byte order, or a list (items 1..n), a record
// (keyword -> descriptor) or an event (attributes and keyword parameters).
class Descriptor {
public:
    Descriptor() : m_type(DescType::Null) {}
    Descriptor(FourCharCode type, QByteArray data) : m_type(type), m_data(std::move(data)) {}

    static Descriptor null() { return Descriptor(); }
    static Descriptor list() { return Descriptor(DescType::List, {}); }
    static Descriptor record() { return Descriptor(DescType::Record, {}); }
    static Descriptor appleEvent(FourCharCode eventClass, FourCharCode eventID, const Descriptor &target,
                                 qint16 returnID, qint32 transactionID);
    static Descriptor string(const QString &text);
    static Descriptor boolean(bool value);
    static Descriptor int32(qint32 value);
    static Descriptor typeCode(FourCharCode code, FourCharCode type = DescType::Type);
    static Descriptor missingValue() { return typeCode(DescType::MissingValue); }

    template <typename T>
    static Descriptor ofValue(FourCharCode type, T value)
    {
        return Descriptor(type, QByteArray(reinterpret_cast<const char *>(&value), sizeof value));
    }

    FourCharCode descriptorType() const { return m_type; }
    const QByteArray &data() const { return m_data; }
    bool isList() const { return m_type == DescType::List; }
    bool isRecordLike() const { return m_type == DescType::Record || m_type == DescType::AppleEvent; }

    // Lists and records: items 1..n (a record's items in keyword order of
    // insertion; keywordForDescriptorAtIndex tells each one's keyword).
    qsizetype numberOfItems() const;
    std::optional<Descriptor> descriptorAtIndex(qsizetype oneBased) const;
    FourCharCode keywordForDescriptorAtIndex(qsizetype oneBased) const;
    void insertDescriptor(const Descriptor &item, qsizetype oneBased);
    // Records and events: setting a keyword again replaces its value in place.
    void setDescriptorForKeyword(const Descriptor &item, FourCharCode keyword);
    std::optional<Descriptor> descriptorForKeyword(FourCharCode keyword) const;

    // Events.
    FourCharCode eventClass() const { return m_eventClass; }
    FourCharCode eventID() const { return m_eventID; }
    qint16 returnID() const { return m_returnID; }
    qint32 transactionID() const { return m_transactionID; }
    std::optional<Descriptor> target() const;

    // Coercion to another type; nullopt when it cannot be made.
    std::optional<Descriptor> coerceToDescriptorType(FourCharCode type) const;

    // Platform readers: each coerces first and reads nothing when it cannot.
    QString stringValue() const; // null string when not text
    bool booleanValue() const;
    qint32 int32Value() const;
    FourCharCode typeCodeValue() const;

    friend bool operator==(const Descriptor &, const Descriptor &);

private:
    FourCharCode m_type;
    QByteArray m_data;
    std::vector<Descriptor> m_items;
    std::vector<FourCharCode> m_keywords; // parallel to m_items in records and events
    FourCharCode m_eventClass = 0;
    FourCharCode m_eventID = 0;
    qint16 m_returnID = 0;
    qint32 m_transactionID = 0;
    std::vector<Descriptor> m_target; // zero or one
};

Q_DECLARE_METATYPE(Descriptor)

// Reads a fixed-width value from a descriptor's data; nullopt unless the
// data has exactly that many bytes.
template <typename T>
std::optional<T> readData(const Descriptor &descriptor)
{
    if (descriptor.data().size() != qsizetype(sizeof(T)))
        return std::nullopt;
    T value;
    std::memcpy(&value, descriptor.data().constData(), sizeof value);
    return value;
}
