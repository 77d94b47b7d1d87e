#include "TsvTable.h"

#include "StringAdditions.h"

#include <QStringDecoder>

namespace TsvTable {

QVariantList dictionariesFromText(const QString &text)
{
    QVariantList records;
    QStringList keys;
    bool haveKeys = false;
    for (const QString &line : StringAdditions::paragraphs(text)) {
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const QStringList fields = line.split(u'\t');
        if (!haveKeys) {
            keys = fields;
            haveKeys = true;
            continue;
        }
        QVariantMap record;
        for (qsizetype i = 0; i < keys.size() && i < fields.size(); ++i)
            record.insert(keys[i], fields[i]);
        if (!record.isEmpty())
            records.append(record);
    }
    return records;
}

QVariantList dictionariesFromBytes(const QByteArray &bytes)
{
    const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
    // Stateless: a sequence cut short at the end is an error, not left over.
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    const QString text = decoder(bytes);
    if (decoder.hasError())
        return {};
    return dictionariesFromText(text);
}

} // namespace TsvTable
