#include "TextMethods.h"

#include "ByteFormatter.h"
#include "DictionaryAdditions.h"
#include "NativeBinding.h"
#include "SortFunctions.h"
#include "StringAdditions.h"

namespace {

const QString NSString = QStringLiteral("NSString");
const QString NSCharacterSetClass = QStringLiteral("NSCharacterSet");

// The match list comes back as the result; the range list and the error go
// into the boxes the caller passes (an array and an object), when it does.
QVariant substringsMatching(Invocation &invocation)
{
    using ArgumentConversion::convert;
    const auto self = convert<QString>(invocation.receiver, -1);
    const auto pattern = convert<QString>(invocation.arguments[0], 0);
    const auto count = convert<int>(invocation.arguments[1], 1);
    const auto options = convert<int>(invocation.arguments[2], 2);
    QList<TextRange> ranges;
    std::optional<ErrorInfo> error;
    const auto matches = StringAdditions::substringsMatchingRegularExpression(
        self, pattern, count, options, invocation.hasBox(3) ? &ranges : nullptr,
        invocation.hasBox(4) ? &error : nullptr);
    if (invocation.hasBox(3) && matches && count != -1) {
        QVariantList rangeList;
        for (const TextRange &range : ranges)
            rangeList.append(QVariant::fromValue(range));
        invocation.outputs[3] = rangeList;
    }
    if (invocation.hasBox(4))
        invocation.outputs[4] = error ? QVariant::fromValue(*error) : QVariant();
    return ArgumentConversion::toVariant(matches);
}

// A setter of a mutable dictionary: the receiver comes back changed.
template <typename T, void (*setter)(QVariantMap &, T, const QString &)>
QVariant dictionarySetter(Invocation &invocation)
{
    using ArgumentConversion::convert;
    QVariantMap self = convert<QVariantMap>(invocation.receiver, -1);
    setter(self, convert<T>(invocation.arguments[0], 0), convert<QString>(invocation.arguments[1], 1));
    invocation.receiverOutput = self;
    return QVariant();
}

void registerDictionaryMethods(MethodRegistry &registry)
{
    using namespace DictionaryAdditions;
    using NativeBinding::addInstanceMethod;
    for (const QString &dictionary : {QStringLiteral("NSDictionary"), QStringLiteral("NSMutableDictionary")}) {
        registry.addInstanceMethod(dictionary, QStringLiteral("setBool:forKey:"),
                                   &dictionarySetter<bool, &MutableDictionaryAdditions::setBool>);
        registry.addInstanceMethod(dictionary, QStringLiteral("setInteger:forKey:"),
                                   &dictionarySetter<qint32, &MutableDictionaryAdditions::setInteger>);
        registry.addInstanceMethod(dictionary, QStringLiteral("setUnsignedInteger:forKey:"),
                                   &dictionarySetter<quint32, &MutableDictionaryAdditions::setUnsignedInteger>);
        registry.addInstanceMethod(dictionary, QStringLiteral("setFloat:forKey:"),
                                   &dictionarySetter<float, &MutableDictionaryAdditions::setFloat>);
    }
    const QString NSDictionary = QStringLiteral("NSDictionary");
    addInstanceMethod(registry, NSDictionary, QStringLiteral("stringForKey:"), &stringForKey);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("dateForKey:"), &dateForKey);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("boolForKey:"), &boolForKey);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("integerForKey:"), &integerForKey);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("floatForKey:"), &floatForKey);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("uintForKey:"), &uintForKey);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("size"), &size);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("owner"), &owner);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("posixPermissions"), &posixPermissions);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("creationDate"), &creationDate);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("modificationDate"), &modificationDate);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("type"), &type);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isType:"), &isType);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isDirectory"), &isDirectory);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isFile"), &isFile);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isSymbolicLink"), &isSymbolicLink);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isSocket"), &isSocket);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isCharacterSpecial"), &isCharacterSpecial);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isBlockSpecial"), &isBlockSpecial);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isUnknownType"), &isUnknownType);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isExtensionHidden"), &isExtensionHidden);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("hfsCreatorCode"), &hfsCreatorCode);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("hfsTypeCode"), &hfsTypeCode);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isReadOnly"), &isReadOnly);
    addInstanceMethod(registry, NSDictionary, QStringLiteral("isAppendOnly"), &isAppendOnly);
    NativeBinding::addClassMethod(registry, NSDictionary, QStringLiteral("osType:"), &osType);
}

} // namespace

void registerTextMethods(MethodRegistry &registry)
{
    using namespace StringAdditions;
    using NativeBinding::addClassMethod;
    using NativeBinding::addInstanceMethod;

    registry.addValueClass(QMetaType::fromType<CharacterSet>(), NSCharacterSetClass);
    addClassMethod(registry, NSCharacterSetClass, QStringLiteral("allWhitespaceCharacterSet"),
                   +[] { return allWhitespaceCharacterSet(); });
    addClassMethod(registry, NSCharacterSetClass, QStringLiteral("newlineCharacterSet"),
                   +[] { return newlineCharacterSet(); });

    // The size column's formatter, as the script can call it. Reading a
    // text back answers [YES, number] or [NO, error text]: a script has no
    // out-pointers to pass.
    const QString formatter = QStringLiteral("ROZ_ByteFormatter");
    addClassMethod(registry, formatter, QStringLiteral("stringForObjectValue:"),
                   +[](const QVariant &object) { return ByteFormatter::stringForObjectValue(object); });
    addClassMethod(registry, formatter, QStringLiteral("getObjectValue:forString:errorDescription:"),
                   +[](const QVariant &, const QString &text, const QVariant &) {
                       const ByteFormatter::Parsed parsed = ByteFormatter::getObjectValueForString(text);
                       return parsed.value ? QVariantList{true, *parsed.value} : QVariantList{false, parsed.errorDescription};
                   });
    addClassMethod(registry, formatter, QStringLiteral("attributedStringForObjectValue:withDefaultAttributes:"),
                   &ByteFormatter::attributedStringForObjectValue);
    registry.addValueClass(QMetaType::fromType<AttributedString>(), QStringLiteral("NSAttributedString"));
    addInstanceMethod(registry, QStringLiteral("NSAttributedString"), QStringLiteral("string"),
                      +[](const AttributedString &self) { return self.string; });
    addInstanceMethod(registry, QStringLiteral("NSAttributedString"), QStringLiteral("attributes"),
                      +[](const AttributedString &self) { return self.attributes; });

    // Case, cleaning and trimming.
    addInstanceMethod(registry, NSString, QStringLiteral("log"), &StringAdditions::log);
    addInstanceMethod(registry, NSString, QStringLiteral("isBlankString"), &isBlankString);
    addInstanceMethod(registry, NSString, QStringLiteral("reverse"), &StringAdditions::reverse);
    addInstanceMethod(registry, NSString, QStringLiteral("titleCaseString"), &titleCaseString);
    addInstanceMethod(registry, NSString, QStringLiteral("stripDiacritical"), &stripDiacritical);
    addInstanceMethod(registry, NSString, QStringLiteral("clean:"), &clean);
    addInstanceMethod(registry, NSString, QStringLiteral("cleanWithReplace:withCharacter:"), &cleanWithReplace);
    addInstanceMethod(registry, NSString, QStringLiteral("trimFromStart:"), &trimFromStart);
    addInstanceMethod(registry, NSString, QStringLiteral("trimFromEnd:"), &trimFromEnd);
    addInstanceMethod(registry, NSString, QStringLiteral("trimFromBoth:"), &trimFromBoth);
    addInstanceMethod(registry, NSString, QStringLiteral("hasCaseInsensitivePrefix:"), &hasCaseInsensitivePrefix);
    addInstanceMethod(registry, NSString, QStringLiteral("hasCaseInsensitiveSuffix:"), &hasCaseInsensitiveSuffix);
    addInstanceMethod(registry, NSString, QStringLiteral("deprefix:"), &deprefix);
    addInstanceMethod(registry, NSString, QStringLiteral("desuffix:"), &desuffix);
    addInstanceMethod(registry, NSString, QStringLiteral("deprefixCaseInsensitive:"), &deprefixCaseInsensitive);
    addInstanceMethod(registry, NSString, QStringLiteral("desuffixCaseInsensitive:"), &desuffixCaseInsensitive);

    // Characters, words and paragraphs.
    addInstanceMethod(registry, NSString, QStringLiteral("characters"), &characters);
    addInstanceMethod(registry, NSString, QStringLiteral("characterCount"), &characterCount);
    addInstanceMethod(registry, NSString, QStringLiteral("charAtIndex:"), &charAtIndex);
    addInstanceMethod(registry, NSString, QStringLiteral("firstCharacter"), &firstCharacter);
    addInstanceMethod(registry, NSString, QStringLiteral("words"), &words);
    addInstanceMethod(registry, NSString, QStringLiteral("wordCount"), &wordCount);
    addInstanceMethod(registry, NSString, QStringLiteral("wordAtIndex:"), &wordAtIndex);
    addInstanceMethod(registry, NSString, QStringLiteral("paragraphs"), &paragraphs);
    addInstanceMethod(registry, NSString, QStringLiteral("paragraphCount"), &paragraphCount);
    addInstanceMethod(registry, NSString, QStringLiteral("paragraphAtIndex:"), &paragraphAtIndex);
    addInstanceMethod(registry, NSString, QStringLiteral("tokensSeparatedByCharactersFromSet:"),
                      &tokensSeparatedByCharactersFromSet);

    // Search, replace and regular expressions.
    addInstanceMethod(registry, NSString, QStringLiteral("snr:replaceWith:"), &snr);
    addInstanceMethod(registry, NSString, QStringLiteral("snrBatch:replaceArray:"), &snrBatch);
    addInstanceMethod(registry, NSString, QStringLiteral("containsString:consideringCase:"), &containsString);
    addInstanceMethod(registry, NSString, QStringLiteral("substringToDelim:"), &substringToDelim);
    addInstanceMethod(registry, NSString, QStringLiteral("substringFromDelim:toDelim:"), &substringFromDelim);
    addInstanceMethod(registry, NSString, QStringLiteral("validateWithRegEx:"), &validateWithRegEx);
    addInstanceMethod(registry, NSString, QStringLiteral("grep:options:"), &grep);
    registry.addInstanceMethod(NSString, QStringLiteral("substringsMatchingRegularExpression:count:options:ranges:error:"),
                               &substringsMatching);

    // Escaping and encoding.
    addInstanceMethod(registry, NSString, QStringLiteral("quotedForm"), &quotedForm);
    addInstanceMethod(registry, NSString, QStringLiteral("addQuoteEscapes"), &addQuoteEscapes);
    addInstanceMethod(registry, NSString, QStringLiteral("removeQuoteEscapes"), &removeQuoteEscapes);
    addInstanceMethod(registry, NSString, QStringLiteral("addPercentEscapes"), &addPercentEscapes);
    addInstanceMethod(registry, NSString, QStringLiteral("prepForURL"), &prepForURL);
    addInstanceMethod(registry, NSString, QStringLiteral("removePercentEscapes"), &removePercentEscapes);
    addInstanceMethod(registry, NSString, QStringLiteral("decodeURLString"), &decodeURLString);
    addInstanceMethod(registry, NSString, QStringLiteral("safeForXML"), &safeForXML);
    addInstanceMethod(registry, NSString, QStringLiteral("convertToHex"), &convertToHex);
    addInstanceMethod(registry, NSString, QStringLiteral("convertFromHex"), &convertFromHex);
    addInstanceMethod(registry, NSString, QStringLiteral("isValidURL"), &isValidURL);
    addClassMethod(registry, NSString, QStringLiteral("uuidString"), &uuidString);

    // Shaping by characters.
    addInstanceMethod(registry, NSString, QStringLiteral("wrapToLength:"), &wrapToLength);
    addInstanceMethod(registry, NSString, QStringLiteral("truncateStringToMaxCharacters:"), &truncateStringToMaxCharacters);
    addClassMethod(registry, NSString, QStringLiteral("ordinalStringForInt:"), &ordinalStringForInt);
    addClassMethod(registry, NSString, QStringLiteral("pluralStringForCount:zero:singluar:plural:"), &pluralStringForCount);
    addInstanceMethod(registry, NSString, QStringLiteral("checksum"), &checksum);

    // Sorting and dictionaries.
    addInstanceMethod(registry, NSString, QStringLiteral("stringAsNumberSort:"), &StringAdditions::stringAsNumberSort);
    registerDictionaryMethods(registry);
}
