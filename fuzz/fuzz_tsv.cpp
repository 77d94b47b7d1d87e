// Feeds arbitrary bytes to the tab-separated table reader and checks what
// it promises: every record holds only header keys, never more keys than
// the header names, never an empty record, and never more records than
// lines; text that reads as UTF-8 gives the same records as its bytes.

#include "TsvTable.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringConverter>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QVariantList records = TsvTable::dictionariesFromBytes(bytes);
    // Text with a byte order mark is checked as the decoder reads it; the
    // rest is UTF-8 or gives no records.
    if (records.isEmpty() || QStringConverter::encodingForData(bytes))
        return 0;

    // The header is the first line that is neither empty nor a comment.
    const QString text = QString::fromUtf8(bytes);
    QSet<QString> keys;
    qsizetype lines = 0;
    for (const QString &line : text.split(QRegularExpression(QStringLiteral("\r\n|[\n\r\x{85}\x{2028}\x{2029}]")))) {
        ++lines;
        if (keys.isEmpty() && !line.isEmpty() && !line.startsWith(u'#'))
            for (const QString &key : line.split(u'\t'))
                keys.insert(key);
    }
    if (records.size() >= lines)
        std::abort();
    for (const QVariant &record : records) {
        const QVariantMap map = record.toMap();
        if (map.isEmpty() || map.size() > keys.size())
            std::abort();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            if (!keys.contains(it.key()) || it.value().toString().contains(u'\t'))
                std::abort();
    }
    if (TsvTable::dictionariesFromText(text) != records)
        std::abort();
    return 0;
}
