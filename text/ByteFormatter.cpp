#include "ByteFormatter.h"

#include "DictionaryAdditions.h"
#include "StringAdditions.h"

#include <QCoreApplication>

namespace ByteFormatter {

namespace {

QString unit(const char *key)
{
    return QCoreApplication::translate("ui", key);
}

} // namespace

QString stringForObjectValue(const QVariant &object)
{
    if (!DictionaryAdditions::isNumber(object))
        return QStringLiteral("-");
    const float v = object.toFloat();
    if (v >= BytesPerGB)
        return QString::asprintf("%.2f ", double(v / BytesPerGB)) + unit("GB");
    if (v >= BytesPerMB)
        return QString::asprintf("%.2f ", double(v / BytesPerMB)) + unit("MB");
    if (v >= BytesPerKB)
        return QString::asprintf("%.1f ", double(v / BytesPerKB)) + unit("KB");
    return QString::number(int(v)) + u' ' + unit("B");
}

Parsed getObjectValueForString(const QString &text)
{
    const std::pair<const char *, float> scales[] = {{"GB", BytesPerGB}, {"MB", BytesPerMB}, {"KB", BytesPerKB}, {"B", 1.0f}};
    for (const auto &[key, scale] : scales) {
        const QString suffix = u' ' + unit(key);
        if (text.endsWith(suffix))
            return {DictionaryAdditions::floatValue(StringAdditions::desuffix(text, suffix)) * scale, {}};
    }
    return {std::nullopt, QCoreApplication::translate("ui", "Couldn't find unit designation")};
}

AttributedString attributedStringForObjectValue(const QVariant &object, const QVariantMap &attributes)
{
    return {stringForObjectValue(object), attributes};
}

} // namespace ByteFormatter
