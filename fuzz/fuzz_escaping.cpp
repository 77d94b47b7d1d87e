// Feeds arbitrary text to the URL decoder, the hex reader, wrapping and the
// percent-escape pair, and checks what each promises: escapes round-trip
// text that UTF-8 can hold, decoding and hex reading never grow the text,
// wrapped lines fit and lose nothing but the spaces at their breaks.

#include "StringAdditions.h"

#include <cstdint>

using namespace StringAdditions;

namespace {

QString withoutBreaks(QString text)
{
    text.remove(u'\n');
    text.remove(u' ');
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    const QString text(reinterpret_cast<const QChar *>(data + 1), qsizetype((size - 1) / 2));
    const quint32 length = data[0] % 40;

    if (text == QString::fromUtf8(text.toUtf8()) && removePercentEscapes(addPercentEscapes(text)) != text)
        __builtin_trap();
    if (prepForURL(text).contains(u' '))
        __builtin_trap();
    if (decodeURLString(text).size() > text.size())
        __builtin_trap();
    const QString hex = convertFromHex(text);
    if (!isBlankString(text) && hex.size() != text.size() / 2)
        __builtin_trap();
    if (convertFromHex(convertToHex(hex)) != hex)
        __builtin_trap();
    const QString wrapped = wrapToLength(text, length);
    if (length >= 2 && quint32(text.size()) > length) {
        for (const QString &line : wrapped.split(u'\n'))
            if (quint32(line.size()) > length)
                __builtin_trap();
    }
    if (withoutBreaks(wrapped) != withoutBreaks(text))
        __builtin_trap();
    return 0;
}
