#include "DesktopMethods.h"
#include "ScriptClassNames.h"

#include "Collections.h"
#include "NativeBinding.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>

// The font of any interface object with a "font" property (widgets,
// actions): read, given another family at the same size, or resized.
namespace {

QFont fontOf(const QObject *control)
{
    const QVariant font = control ? control->property("font") : QVariant();
    if (font.typeId() != QMetaType::QFont)
        throw ArgumentConversion::WrongType{0, QStringLiteral("an object with a font"),
                                            control ? scriptClassName(*control->metaObject())
                                                    : QStringLiteral("nil")};
    return font.value<QFont>();
}

double pointSizeOf(const QFont &font)
{
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

QVariantList returnAllFonts()
{
    QVariantList families;
    for (const QString &family : QFontDatabase::families())
        families.append(family);
    return Collections::sortArray(families);
}

void setFont(QObject *control, const QString &family)
{
    QFont font = fontOf(control);
    const double size = pointSizeOf(font);
    font = QFont(family);
    font.setPointSizeF(size);
    control->setProperty("font", font);
}

void setSize(QObject *control, float size)
{
    QFont font = fontOf(control);
    if (size > 0)
        font.setPointSizeF(size);
    control->setProperty("font", font);
}

// "Family Style pt", the style left out when it is the family's plain one.
QString returnFontInfo(QObject *control)
{
    const QFont font = fontOf(control);
    const QFontInfo shown(font);
    static const QStringList plainStyles{QStringLiteral("Regular"), QStringLiteral("Book"), QStringLiteral("Normal"),
                                         QStringLiteral("Roman"), QString()};
    const QString name = plainStyles.contains(shown.styleName()) ? shown.family()
                                                                 : shown.family() + u' ' + shown.styleName();
    return QStringLiteral("%1 %2pt").arg(name).arg(int(pointSizeOf(font)));
}

} // namespace

void registerFontMethods(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnAllFonts"), &returnAllFonts);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setFont:toFont:"), &setFont);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setSize:toSize:"), &setSize);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnFontInfo:"), &returnFontInfo);
}
