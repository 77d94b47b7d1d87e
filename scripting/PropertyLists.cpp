#include "PropertyLists.h"

#include <QDateTime>
#include <QTimeZone>
#include <cstdlib>
#include <limits>
#include <memory>
#include <plist/plist.h>

namespace PropertyLists {

namespace {

// Dates count seconds from the first instant of 2001 in UTC.
const QDateTime referenceDate(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);

constexpr int MaximumDepth = 512;

QVariant valueOf(plist_t node, int depth)
{
    if (depth > MaximumDepth)
        return QVariant();
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        uint8_t flag = 0;
        plist_get_bool_val(node, &flag);
        return QVariant(flag != 0);
    }
    case PLIST_UINT: {
        // Negative integers are kept in the same 64 bits, two's complement.
        uint64_t bits = 0;
        plist_get_uint_val(node, &bits);
        const auto number = qint64(bits);
        if (number >= std::numeric_limits<qint32>::min() && number <= std::numeric_limits<qint32>::max())
            return QVariant(qint32(number));
        return QVariant(qlonglong(number));
    }
    case PLIST_REAL: {
        double real = 0;
        plist_get_real_val(node, &real);
        return QVariant(real);
    }
    case PLIST_STRING:
    case PLIST_KEY: {
        char *text = nullptr;
        plist_get_string_val(node, &text);
        const QString string = QString::fromUtf8(text);
        std::free(text);
        return string;
    }
    case PLIST_DATE: {
        int32_t seconds = 0;
        int32_t microseconds = 0;
        plist_get_date_val(node, &seconds, &microseconds);
        return referenceDate.addMSecs(qint64(seconds) * 1000 + microseconds / 1000).toLocalTime();
    }
    case PLIST_DATA: {
        char *bytes = nullptr;
        uint64_t length = 0;
        plist_get_data_val(node, &bytes, &length);
        const QByteArray data(bytes, qsizetype(length));
        std::free(bytes);
        return data;
    }
    case PLIST_UID: {
        uint64_t uid = 0;
        plist_get_uid_val(node, &uid);
        return QVariant(qulonglong(uid));
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t size = plist_array_get_size(node);
        for (uint32_t i = 0; i < size; ++i)
            list.append(valueOf(plist_array_get_item(node, i), depth + 1));
        return list;
    }
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter iterator = nullptr;
        plist_dict_new_iter(node, &iterator);
        for (;;) {
            char *key = nullptr;
            plist_t item = nullptr;
            plist_dict_next_item(node, iterator, &key, &item);
            if (!item)
                break;
            map.insert(QString::fromUtf8(key), valueOf(item, depth + 1));
            std::free(key);
        }
        std::free(iterator);
        return map;
    }
    default:
        return QVariant();
    }
}

} // namespace

Parsed parse(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return {std::nullopt, QStringLiteral("the data is empty")};
    if (quint64(bytes.size()) > std::numeric_limits<uint32_t>::max())
        return {std::nullopt, QStringLiteral("the data is too long for a property list")};
    plist_t root = nullptr;
    plist_from_memory(bytes.constData(), uint32_t(bytes.size()), &root);
    if (!root) {
        const bool binary = plist_is_binary(bytes.constData(), uint32_t(bytes.size()));
        return {std::nullopt, binary ? QStringLiteral("damaged binary property list")
                                     : QStringLiteral("not a property list in XML or binary form")};
    }
    const std::unique_ptr<void, void (*)(plist_t)> owner(root, &plist_free);
    return {valueOf(root, 0), QString()};
}

} // namespace PropertyLists
