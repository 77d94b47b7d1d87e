#include "PathCodec.h"

#include <algorithm>
#include <vector>

namespace PathCodec {

namespace {

// Length of the valid UTF-8 sequence at `at`, or 0. With `surrogates`
// the three bytes of a lone surrogate count as a sequence too.
int validSequence(const unsigned char *s, qsizetype left, bool surrogates)
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
        if (c == 0xED && s[1] >= 0xA0 && !surrogates)
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

QString decode(const QByteArray &bytes, bool surrogates)
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
        const int length = validSequence(data + i, bytes.size() - i, surrogates);
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

void appendUtf8(QByteArray &bytes, char32_t code)
{
    if (code < 0x80) {
        bytes += char(code);
    } else if (code < 0x800) {
        bytes += char(0xC0 | (code >> 6));
        bytes += char(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        bytes += char(0xE0 | (code >> 12));
        bytes += char(0x80 | ((code >> 6) & 0x3F));
        bytes += char(0x80 | (code & 0x3F));
    } else {
        bytes += char(0xF0 | (code >> 18));
        bytes += char(0x80 | ((code >> 12) & 0x3F));
        bytes += char(0x80 | ((code >> 6) & 0x3F));
        bytes += char(0x80 | (code & 0x3F));
    }
}

bool hasSurrogates(const QString &text)
{
    const char16_t *units = reinterpret_cast<const char16_t *>(text.constData());
    return std::any_of(units, units + text.size(), [](char16_t c) { return QChar::isSurrogate(c); });
}

// Each code unit's bytes; `loneSurrogate` says what a surrogate without
// its partner becomes.
template <typename Lone>
QByteArray encodeUnits(const QString &text, Lone loneSurrogate)
{
    QByteArray bytes;
    bytes.reserve(text.size() + 8);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            appendUtf8(bytes, QChar::surrogateToUcs4(c, text[++i].unicode()));
        else if (QChar::isSurrogate(c))
            loneSurrogate(bytes, c);
        else
            appendUtf8(bytes, c);
    }
    return bytes;
}

} // namespace

QString decode(const QByteArray &bytes)
{
    return decode(bytes, false);
}

QByteArray encode(const QString &text)
{
    // Without surrogates (the usual case) UTF-8 is the answer, and Qt's
    // encoder is much faster than one unit at a time.
    if (!hasSurrogates(text))
        return text.toUtf8();
    return encodeUnits(text, [](QByteArray &bytes, char16_t c) {
        if (c >= 0xDC80 && c <= 0xDCFF)
            bytes += char(c - 0xDC00); // a byte that was not UTF-8
        else
            appendUtf8(bytes, 0xFFFD); // any other lone surrogate has no bytes of its own
    });
}

QByteArray encodeKeepingSurrogates(const QString &text)
{
    if (!hasSurrogates(text))
        return text.toUtf8();
    return encodeUnits(text, [](QByteArray &bytes, char16_t c) { appendUtf8(bytes, c); });
}

QString decodeKeepingSurrogates(const QByteArray &bytes)
{
    return decode(bytes, true);
}

namespace {

// The runs of bytes that are not UTF-8 in a name read by `decode`.
std::vector<QStringView> escapedRuns(const QString &name)
{
    std::vector<QStringView> runs;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= name.size(); ++i) {
        const bool escaped = i < name.size() && name[i].unicode() >= 0xDC80 && name[i].unicode() <= 0xDCFF;
        if (escaped && start < 0)
            start = i;
        if (!escaped && start >= 0) {
            runs.push_back(QStringView(name).mid(start, i - start));
            start = -1;
        }
        if (i + 1 < name.size() && name[i].isHighSurrogate() && name[i + 1].isLowSurrogate())
            ++i; // a whole character
    }
    return runs;
}

} // namespace

bool splitsCharacter(const QString &oldName, const QString &newName)
{
    if (!hasSurrogates(newName))
        return false;
    // A lone surrogate that stands for no byte, or bytes that would join
    // into a character of their own, do not come back as themselves.
    if (decode(encode(newName)) != newName)
        return true;
    const std::vector<QStringView> before = escapedRuns(oldName);
    for (const QStringView run : escapedRuns(newName))
        if (std::none_of(before.cbegin(), before.cend(), [run](QStringView old) { return old.contains(run); }))
            return true;
    return false;
}

QStringList arguments(int argc, char **argv)
{
    QStringList decoded;
    for (int i = 1; i < argc; ++i)
        decoded.append(decode(argv[i]));
    return decoded;
}

} // namespace PathCodec
