#pragma once

#include "Descriptor.h"
#include "NamedException.h"

#include <QDateTime>
#include <QVariant>
#include <functional>

inline const QString UnsupportedAEDescriptorConversion = QStringLiteral("UnsupportedAEDescriptorConversion");

// A dictionary whose keys may be numbers (four-character keywords) as well
// as strings, as records converted back from descriptors have. Keys keep the
// order in which they were set.
struct MixedKeyDictionary {
    QList<std::pair<QVariant, QVariant>> entries;

    void setValue(const QVariant &key, const QVariant &value);
    friend bool operator==(const MixedKeyDictionary &, const MixedKeyDictionary &) = default;
};
Q_DECLARE_METATYPE(MixedKeyDictionary)

// Conversion of native values to descriptors and back, and the numeric
// descriptor layouts.
namespace ScriptCoertions {

// Values to descriptors and back.
Descriptor aeDescriptorValue(const QVariant &object);
QVariant objCObjectValue(const Descriptor &descriptor);
QVariant arrayWithAEDesc(const Descriptor &descriptor);
QVariant dictionaryWithAEDesc(const Descriptor &descriptor);
QVariant stringWithAEDesc(const Descriptor &descriptor);
QVariant nullWithAEDesc(const Descriptor &descriptor);
QVariant dateWithAEDesc(const Descriptor &descriptor);
QVariant numberWithAEDesc(const Descriptor &descriptor);
void logDescriptorType(const Descriptor &descriptor);
QString descriptorTypeName(FourCharCode type); // null when the type has no name

// Numeric layouts.
Descriptor descriptorWithInt16(qint16 value);
Descriptor descriptorWithUnsignedInt32(quint32 value);
Descriptor descriptorWithFloat32(float value);
Descriptor descriptorWithFloat64(double value);
Descriptor descriptorWithLongDateTime(qint64 value);
qint16 int16Value(const Descriptor &descriptor);
quint32 unsignedInt32Value(const Descriptor &descriptor);
float float32Value(const Descriptor &descriptor);
double float64Value(const Descriptor &descriptor);
qint64 longDateTimeValue(const Descriptor &descriptor);
bool isMissingValue(const Descriptor &descriptor);

// A number's descriptor, chosen by its C type; and the three routes by byte
// count that choice goes through. `value` points at `byteCount` bytes.
Descriptor numberDescriptor(const QVariant &number);
Descriptor DescriptorValueWithSignedIntP(const QVariant &number, const void *value, int byteCount);
Descriptor DescriptorValueWithUnsignedIntP(const QVariant &number, const void *value, int byteCount);
Descriptor DescriptorValueWithFloatP(const QVariant &number, const void *value, int byteCount);
// Numbers of the C type the byte count gives.
QVariant NumberWithSignedIntP(const void *value, int byteCount);
QVariant NumberWithUnsignedIntP(const void *value, int byteCount);
QVariant NumberWithFloatP(const void *value, int byteCount);

// The C type encoding of a number ("c", "i", "Q", ...); empty
// for a value that is not a number.
QString objCType(const QVariant &number);
QString objCType(QMetaType type);

} // namespace ScriptCoertions

// The process-wide table from descriptor type to the class method that
// turns such a descriptor into a value. Built with its standard rows on
// first use; rows may be added or replaced at any time.
class ConversionTable {
public:
    using Converter = std::function<QVariant(const Descriptor &)>;

    static ConversionTable &shared();

    // Stores the converter under each type until a zero type ends the list;
    // the first type is stored even when it is zero.
    void registerConversionSubroutine(const Converter &converter, const QList<FourCharCode> &types);
    const Converter *find(FourCharCode type) const;
    // Back to the standard rows, for tests.
    void reset();

private:
    ConversionTable();
    QHash<FourCharCode, std::shared_ptr<const Converter>> m_rows;
};

// Long date times: seconds since 1 January 1904 in local wall-clock time.
namespace LongDateTime {
qint64 fromDate(const QDateTime &date);
QDateTime toDate(qint64 seconds);
} // namespace LongDateTime
