#include "TextMethods.h"

#include "NativeBinding.h"
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
    const auto matches = ROZ_NSStringAdditions::substringsMatchingRegularExpression(
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

} // namespace

void registerTextMethods(MethodRegistry &registry)
{
    using namespace ROZ_NSStringAdditions;
    using NativeBinding::addClassMethod;
    using NativeBinding::addInstanceMethod;

    registry.addValueClass(QMetaType::fromType<CharacterSet>(), NSCharacterSetClass);
    addClassMethod(registry, NSCharacterSetClass, QStringLiteral("allWhitespaceCharacterSet"),
                   +[] { return allWhitespaceCharacterSet(); });
    addClassMethod(registry, NSCharacterSetClass, QStringLiteral("newlineCharacterSet"),
                   +[] { return newlineCharacterSet(); });

    // Case, cleaning and trimming.
    addInstanceMethod(registry, NSString, QStringLiteral("log"), &ROZ_NSStringAdditions::log);
    addInstanceMethod(registry, NSString, QStringLiteral("isBlankString"), &isBlankString);
    addInstanceMethod(registry, NSString, QStringLiteral("reverse"), &ROZ_NSStringAdditions::reverse);
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
}
