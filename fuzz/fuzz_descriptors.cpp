// Builds descriptor trees of arbitrary types and byte lengths from the input
// and sends them through the conversion to values and back. Nothing may
// crash; the only exception allowed is the named conversion failure.

#include "ScriptCoertions.h"

#include <QCoreApplication>
#include <cstdint>

namespace {

const FourCharCode knownTypes[] = {
    DescType::List,    DescType::Record,   DescType::UnicodeText, DescType::Text,        DescType::UTF8Text,
    DescType::CString, DescType::Boolean,  DescType::True,        DescType::False,       DescType::SInt16,
    DescType::SInt32,  DescType::UInt32,   DescType::SInt64,      DescType::Float32,     DescType::Float64,
    DescType::LongDouble, DescType::LongDateTime, DescType::Null, DescType::Type,        DescType::Enumerated,
    fourCharCode("alis"), DescType::AppleEvent};

struct Reader {
    const uint8_t *data;
    size_t size;
    size_t at = 0;

    uint8_t next() { return at < size ? data[at++] : 0; }
    QByteArray bytes(size_t count)
    {
        count = std::min(count, size - std::min(at, size));
        QByteArray out(reinterpret_cast<const char *>(data + at), qsizetype(count));
        at += count;
        return out;
    }
};

Descriptor build(Reader &in, int depth)
{
    const uint8_t pick = in.next();
    const FourCharCode type = knownTypes[pick % std::size(knownTypes)];
    if ((type == DescType::List || type == DescType::Record || type == DescType::AppleEvent) && depth < 6) {
        Descriptor container = type == DescType::List ? Descriptor::list()
                               : type == DescType::Record
                                   ? Descriptor::record()
                                   : Descriptor::appleEvent(1, 2, Descriptor::null(), -1, 0);
        const int count = in.next() % 5;
        for (int i = 0; i < count; ++i) {
            if (type == DescType::List) {
                container.insertDescriptor(build(in, depth + 1), i + 1);
            } else {
                // Half the keywords are 'usrf', whose value should be a list.
                const FourCharCode keyword = (in.next() & 1) ? DescType::UserFields : FourCharCode(in.next());
                container.setDescriptorForKeyword(build(in, depth + 1), keyword);
            }
        }
        return container;
    }
    return Descriptor(type, in.bytes(in.next() % 20));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);

    Reader in{data, size};
    const Descriptor tree = build(in, 0);
    try {
        const QVariant value = ScriptCoertions::objCObjectValue(tree);
        const Descriptor again = ScriptCoertions::aeDescriptorValue(value);
        ScriptCoertions::objCObjectValue(again);
        tree.stringValue();
        tree.coerceToDescriptorType(DescType::List);
        ScriptCoertions::float64Value(tree);
        ScriptCoertions::isMissingValue(tree);
    } catch (const NamedException &exception) {
        if (exception.name() != UnsupportedAEDescriptorConversion)
            __builtin_trap();
    }
    return 0;
}
