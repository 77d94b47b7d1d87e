#include "PathCodec.h"

#include <algorithm>

namespace PathCodec {

namespace {

// Length of the valid UTF-8 sequence at `at`, or 0.
int validSequence(const unsigned char *s, qsizetype left)
{
    const unsigned char c = s[0];
    auto continuation = [&](int i) { return i < left && (s[i] & 0xC0) == 0x80; };
    if (c < 0x80)
        return 1;
    if (c >= 0xC2 && c <= 0xDF)
        return continuation(1) ? 2 : 0;
    if (c >= 0xE0 && c <= 0xEF) {
        if (!continuation(1) || !continuation(2))
            return 0;
        if (c == 0xE0 && s[1] < 0xA0)
            return 0; // overlong
        if (c == 0xED && s[1] >= 0xA0)
            return 0; // a surrogate, which UTF-8 may not carry
        return 3;
    }
    if (c >= 0xF0 && c <= 0xF4) {
        if (!continuation(1) || !continuation(2) || !continuation(3))
            return 0;
        if ((c == 0xF0 && s[1] < 0x90) || (c == 0xF4 && s[1] >= 0x90))
            return 0;
        return 4;
    }
    return 0;
}

} // namespace

QString decode(const QByteArray &bytes)
{
    QString text;
    text.reserve(bytes.size());
    const auto *data = reinterpret_cast<const unsigned char *>(bytes.constData());
    qsizetype i = 0;
    while (i < bytes.size()) {
        // A run of ASCII goes across in one step.
        qsizetype run = i;
        while (run < bytes.size() && data[run] < 0x80)
            ++run;
        if (run > i) {
            text += QLatin1String(bytes.constData() + i, run - i);
            i = run;
            continue;
        }
        const int length = validSequence(data + i, bytes.size() - i);
        if (length == 0) {
            text += QChar(char16_t(0xDC00 + data[i]));
            ++i;
        } else {
            // Worked out here rather than by a UTF-8 decoder, which would
            // take U+FEFF for a byte order mark and drop it from the name.
            static constexpr unsigned char leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
            char32_t code = data[i] & leadBits[length];
            for (int k = 1; k < length; ++k)
                code = (code << 6) | (data[i + k] & 0x3F);
            text += QStringView(QChar::fromUcs4(code));
            i += length;
        }
    }
    return text;
}

QByteArray encode(const QString &text)
{
    // Without surrogates (the usual case) UTF-8 is the answer, and Qt's
    // encoder is much faster than one byte at a time.
    const char16_t *units = reinterpret_cast<const char16_t *>(text.constData());
    if (std::none_of(units, units + text.size(), [](char16_t c) { return QChar::isSurrogate(c); }))
        return text.toUtf8();
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < 0x80) {
            bytes += char(c);
        } else if (c >= 0xDC80 && c <= 0xDCFF) {
            bytes += char(c - 0xDC00); // a byte that was not UTF-8
        } else if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            const char32_t code = QChar::surrogateToUcs4(c, text[++i].unicode());
            bytes += char(0xF0 | (code >> 18));
            bytes += char(0x80 | ((code >> 12) & 0x3F));
            bytes += char(0x80 | ((code >> 6) & 0x3F));
            bytes += char(0x80 | (code & 0x3F));
        } else if (c < 0x800) {
            bytes += char(0xC0 | (c >> 6));
            bytes += char(0x80 | (c & 0x3F));
        } else {
            // Any other lone surrogate has no bytes of its own; it is
            // written as UTF-8 would write the replacement character.
            const char16_t unit = QChar::isSurrogate(c) ? char16_t(0xFFFD) : c;
            bytes += char(0xE0 | (unit >> 12));
            bytes += char(0x80 | ((unit >> 6) & 0x3F));
            bytes += char(0x80 | (unit & 0x3F));
        }
    }
    return bytes;
}

QStringList arguments(int argc, char **argv)
{
    QStringList decoded;
    for (int i = 1; i < argc; ++i)
        decoded.append(decode(argv[i]));
    return decoded;
}

} // namespace PathCodec
