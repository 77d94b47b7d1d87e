#include "DesktopMethods.h"

#include "NativeBinding.h"
#include "TextShaping.h"

void registerTextShapingMethods(MethodRegistry &registry)
{
    using NativeBinding::addInstanceMethod;
    using namespace TextShaping;
    const QString NSString = QStringLiteral("NSString");
    addInstanceMethod(registry, NSString, QStringLiteral("truncateString:andAttributes:"), &truncateString);
    addInstanceMethod(registry, NSString, QStringLiteral("truncatePathString:andAttributes:"), &truncatePathString);
    addInstanceMethod(registry, NSString, QStringLiteral("color"), &color);
    addInstanceMethod(registry, NSString, QStringLiteral("hoverAttributedStringOfSize:"), &hoverAttributedStringOfSize);
    addInstanceMethod(registry, NSString, QStringLiteral("convertHTMLEntities"), &convertHTMLEntities);
    addInstanceMethod(registry, NSString, QStringLiteral("flattenHTML"), &flattenHTML);
    addInstanceMethod(registry, NSString, QStringLiteral("phonemes"), &phonemes);
}
