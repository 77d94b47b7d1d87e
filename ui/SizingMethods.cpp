#include "UiMethods.h"

#include "ArgumentConversion.h"
#include "BusyIndicator.h"
#include "LargeText.h"
#include "MethodRegistry.h"
#include "NativeBinding.h"
#include "Swatches.h"
#include "TextViews.h"
#include "WindowSizing.h"

namespace {

// A colour as itself, as a name or "#rrggbb", or as red, green, blue and
// optionally alpha from 0 to 1.
QColor colorFrom(const QVariant &value, int index)
{
    if (value.metaType() == QMetaType::fromType<QColor>())
        return value.value<QColor>();
    if (value.typeId() == QMetaType::QString && QColor::isValidColorName(value.toString()))
        return QColor::fromString(value.toString());
    if (value.typeId() == QMetaType::QVariantList) {
        const QVariantList parts = value.toList();
        if (parts.size() == 3 || parts.size() == 4)
            return QColor::fromRgbF(parts[0].toFloat(), parts[1].toFloat(), parts[2].toFloat(),
                                    parts.size() == 4 ? parts[3].toFloat() : 1.0f);
    }
    throw ArgumentConversion::WrongType{index, QStringLiteral("a colour"), ArgumentConversion::kindOf(value)};
}

} // namespace

void registerSizingMethods(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    const QString M = MiscMethodsClass;
    addClassMethod(registry, M, QStringLiteral("showLargeText:inTextField:inWindow:"),
                   +[](const QString &text, QWidget *field, QWidget *window) { LargeText::show(text, field, window); });
    addClassMethod(registry, M, QStringLiteral("fitTextFieldToText:withOffset:smallestAllowableSize:adjustFromTop:"),
                   &WindowSizing::fitTextFieldToText);
    addClassMethod(registry, M, QStringLiteral("discloseWindow:toHeight:useAnimation:"), &WindowSizing::discloseWindow);
    addClassMethod(registry, M, QStringLiteral("logEntry:toTextView:shouldUpdateFont:"),
                   +[](const QString &line, QWidget *view, bool updateFont) { TextViews::logEntry(view, line, updateFont); });
    addClassMethod(registry, M, QStringLiteral("autoScroll:"), &TextViews::autoScroll);
    addClassMethod(registry, M, QStringLiteral("makePI"), +[]() -> QObject * { return BusyIndicator::makeAccessory(); });
    addClassMethod(registry, M, QStringLiteral("swatchForColor:withWidth:withHeight:atPath:"),
                   +[](const QVariant &color, int width, int height, const QString &path) {
                       return Swatches::write(Swatches::ofColor(colorFrom(color, 0), width, height), path);
                   });
    addClassMethod(registry, M, QStringLiteral("swatchForGradient:atAngle:withWidth:withHeight:atPath:"),
                   +[](const QVariantList &colors, double angle, int width, int height, const QString &path) {
                       QList<QColor> stops;
                       for (const QVariant &color : colors)
                           stops.append(colorFrom(color, 0));
                       return Swatches::write(Swatches::ofGradient(stops, angle, width, height), path);
                   });
}
