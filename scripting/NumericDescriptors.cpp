#include "ScriptCoertions.h"

#include <cstring>

namespace ScriptCoertions {

namespace {

template <typename T>
T readPointed(const void *value)
{
    T result;
    std::memcpy(&result, value, sizeof result);
    return result;
}

// A reader coerces first; a coercion that fails reads nothing, giving 0.
template <typename T>
T readAs(const Descriptor &descriptor, FourCharCode type)
{
    const auto coerced = descriptor.coerceToDescriptorType(type);
    return coerced ? readData<T>(*coerced).value_or(T{}) : T{};
}

NamedException byteCountNotSupported(const char *what, int byteCount)
{
    return NamedException(NSInvalidArgumentException,
                          QStringLiteral("NSNumber: %1 with %2 bytes not supported.")
                              .arg(QLatin1String(what))
                              .arg(byteCount));
}

} // namespace

Descriptor descriptorWithInt16(qint16 value)
{
    return Descriptor::ofValue(DescType::SInt16, value);
}

Descriptor descriptorWithUnsignedInt32(quint32 value)
{
    return Descriptor::ofValue(DescType::UInt32, value);
}

Descriptor descriptorWithFloat32(float value)
{
    return Descriptor::ofValue(DescType::Float32, value);
}

Descriptor descriptorWithFloat64(double value)
{
    return Descriptor::ofValue(DescType::Float64, value);
}

Descriptor descriptorWithLongDateTime(qint64 value)
{
    return Descriptor::ofValue(DescType::LongDateTime, value);
}

qint16 int16Value(const Descriptor &descriptor)
{
    return readAs<qint16>(descriptor, DescType::SInt16);
}

quint32 unsignedInt32Value(const Descriptor &descriptor)
{
    return readAs<quint32>(descriptor, DescType::UInt32);
}

float float32Value(const Descriptor &descriptor)
{
    return readAs<float>(descriptor, DescType::Float32);
}

double float64Value(const Descriptor &descriptor)
{
    return readAs<double>(descriptor, DescType::Float64);
}

qint64 longDateTimeValue(const Descriptor &descriptor)
{
    return readAs<qint64>(descriptor, DescType::LongDateTime);
}

bool isMissingValue(const Descriptor &descriptor)
{
    if (descriptor.descriptorType() != DescType::Type || descriptor.data().size() != 4)
        return false;
    return readData<FourCharCode>(descriptor) == DescType::MissingValue;
}

QString objCType(const QVariant &number)
{
    return objCType(number.metaType());
}

QString objCType(QMetaType type)
{
    switch (type.id()) {
    case QMetaType::Bool:
    case QMetaType::Char:
    case QMetaType::SChar:
        return QStringLiteral("c");
    case QMetaType::Short:
        return QStringLiteral("s");
    case QMetaType::Int:
        return QStringLiteral("i");
    case QMetaType::Long:
        return QStringLiteral("l");
    case QMetaType::LongLong:
        return QStringLiteral("q");
    case QMetaType::UChar:
        return QStringLiteral("C");
    case QMetaType::UShort:
        return QStringLiteral("S");
    case QMetaType::UInt:
        return QStringLiteral("I");
    case QMetaType::ULong:
        return QStringLiteral("L");
    case QMetaType::ULongLong:
        return QStringLiteral("Q");
    case QMetaType::Float:
        return QStringLiteral("f");
    case QMetaType::Double:
        return QStringLiteral("d");
    default:
        return QString();
    }
}

Descriptor numberDescriptor(const QVariant &number)
{
    // A long travels in four bytes: its low 32 bits, like an int's.
    const QString type = objCType(number);
    if (type == QLatin1String("c"))
        return Descriptor::boolean(number.toBool());
    if (type == QLatin1String("s")) {
        const qint16 v = qint16(number.toInt());
        return DescriptorValueWithSignedIntP(number, &v, 2);
    }
    if (type == QLatin1String("i") || type == QLatin1String("l")) {
        const qint32 v = qint32(number.toLongLong());
        return DescriptorValueWithSignedIntP(number, &v, 4);
    }
    if (type == QLatin1String("q")) {
        const qint64 v = number.toLongLong();
        return DescriptorValueWithSignedIntP(number, &v, 8);
    }
    if (type == QLatin1String("C")) {
        const quint8 v = quint8(number.toUInt());
        return DescriptorValueWithUnsignedIntP(number, &v, 1);
    }
    if (type == QLatin1String("S")) {
        const quint16 v = quint16(number.toUInt());
        return DescriptorValueWithUnsignedIntP(number, &v, 2);
    }
    if (type == QLatin1String("I") || type == QLatin1String("L")) {
        const quint32 v = quint32(number.toULongLong());
        return DescriptorValueWithUnsignedIntP(number, &v, 4);
    }
    if (type == QLatin1String("Q")) {
        const quint64 v = number.toULongLong();
        return DescriptorValueWithUnsignedIntP(number, &v, 8);
    }
    if (type == QLatin1String("f")) {
        const float v = number.toFloat();
        return DescriptorValueWithFloatP(number, &v, 4);
    }
    if (type == QLatin1String("d")) {
        const double v = number.toDouble();
        return DescriptorValueWithFloatP(number, &v, 8);
    }
    throw NamedException(UnsupportedAEDescriptorConversion,
                         QStringLiteral("ScriptSubroutine: unsupported conversion of an NSNumber with type '%1' to an "
                                        "aeDescriptor.")
                             .arg(type.isEmpty() ? QString::fromLatin1(number.typeName()) : type));
}

Descriptor DescriptorValueWithSignedIntP(const QVariant &number, const void *value, int byteCount)
{
    switch (byteCount) {
    case 0:
    case 1:
        return Descriptor::int32(number.toInt());
    case 2:
        return descriptorWithInt16(readPointed<qint16>(value));
    case 4:
        return Descriptor::int32(readPointed<qint32>(value));
    default: {
        // No 64-bit integers in scripts: they travel as doubles.
        const double d = number.toDouble();
        return DescriptorValueWithFloatP(number, &d, 8);
    }
    }
}

Descriptor DescriptorValueWithUnsignedIntP(const QVariant &number, const void *value, int byteCount)
{
    if (byteCount >= 0 && byteCount <= 3)
        return descriptorWithUnsignedInt32(number.toUInt());
    if (byteCount == 4)
        return descriptorWithUnsignedInt32(readPointed<quint32>(value));
    const double d = double(number.toULongLong());
    return DescriptorValueWithFloatP(number, &d, 8);
}

Descriptor DescriptorValueWithFloatP(const QVariant &number, const void *value, int byteCount)
{
    if (byteCount >= 0 && byteCount <= 3)
        return descriptorWithFloat32(number.toFloat());
    if (byteCount == 4)
        return descriptorWithFloat32(readPointed<float>(value));
    if (byteCount == 8)
        return descriptorWithFloat64(readPointed<double>(value));
    if (byteCount > 8)
        return descriptorWithFloat64(number.toDouble());
    throw NamedException(
        NSInvalidArgumentException,
        QStringLiteral("Cannot create an NSAppleEventDescriptor for float with %1 bytes of data.").arg(byteCount));
}

QVariant NumberWithSignedIntP(const void *value, int byteCount)
{
    switch (byteCount) {
    case 1:
        return QVariant::fromValue(readPointed<char>(value));
    case 2:
        return QVariant::fromValue(readPointed<short>(value));
    case 4:
        return QVariant::fromValue(readPointed<int>(value));
    case 8:
        return QVariant::fromValue(readPointed<long long>(value));
    default:
        throw byteCountNotSupported("number", byteCount);
    }
}

QVariant NumberWithUnsignedIntP(const void *value, int byteCount)
{
    switch (byteCount) {
    case 1:
        return QVariant::fromValue(readPointed<unsigned char>(value));
    case 2:
        return QVariant::fromValue(readPointed<unsigned short>(value));
    case 4:
        return QVariant::fromValue(readPointed<unsigned int>(value));
    case 8:
        return QVariant::fromValue(readPointed<unsigned long long>(value));
    default:
        throw byteCountNotSupported("number", byteCount);
    }
}

QVariant NumberWithFloatP(const void *value, int byteCount)
{
    // Every real number from a script ends as a single-precision float;
    // callers depend on that, so the double is narrowed here on purpose.
    if (byteCount == 4)
        return QVariant::fromValue(readPointed<float>(value));
    if (byteCount == 8)
        return QVariant::fromValue(float(readPointed<double>(value)));
    throw byteCountNotSupported("floating point number", byteCount);
}

QVariant numberWithAEDesc(const Descriptor &descriptor)
{
    switch (descriptor.descriptorType()) {
    case DescType::True:
    case DescType::False:
    case DescType::Boolean:
        return QVariant(descriptor.booleanValue());
    case DescType::SInt16: {
        const qint16 v = int16Value(descriptor);
        return NumberWithSignedIntP(&v, 2);
    }
    case DescType::SInt32: {
        const qint32 v = descriptor.int32Value();
        return NumberWithSignedIntP(&v, 4);
    }
    case DescType::UInt32: {
        const quint32 v = unsignedInt32Value(descriptor);
        return NumberWithUnsignedIntP(&v, 4);
    }
    case DescType::Float32: {
        const float v = float32Value(descriptor);
        return NumberWithFloatP(&v, 4);
    }
    case DescType::Float64: {
        const double v = float64Value(descriptor);
        return NumberWithFloatP(&v, 8);
    }
    default:
        break;
    }
    const auto asDouble = descriptor.coerceToDescriptorType(DescType::Float64);
    if (!asDouble)
        throw NamedException(UnsupportedAEDescriptorConversion,
                             QStringLiteral("ScriptSubroutines: unsupported conversion of an NSAppleEventDescriptor "
                                            "with type '%1' to an aeDescriptor.")
                                 .arg(fourCharString(descriptor.descriptorType())));
    const double v = float64Value(*asDouble);
    return NumberWithFloatP(&v, 8);
}

} // namespace ScriptCoertions
