#include "DesktopMethods.h"

#include "Introspection.h"
#include "MiscMethods.h"
#include "NativeBinding.h"
#include "PathConversion.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QTreeView>

namespace {

using ArgumentConversion::convert;
using NativeBinding::addClassMethod;
using M = MiscMethods;

void registerPaths(MethodRegistry &registry)
{
    const QString NSString = QStringLiteral("NSString");
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("pathHFS"), &PathConversion::pathHFS);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("pathPOSIX"), &PathConversion::pathPOSIX);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("alias"), &PathConversion::alias);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("aliasData"), &PathConversion::aliasData);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("fsRef"), &PathConversion::fsRef);
    // No reference is ever set, so none names a path.
    registry.addClassMethod(NSString, QStringLiteral("stringWithFSRef:"), [](Invocation &) { return QVariant(); });
}

void registerItems(MethodRegistry &registry)
{
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("itemExists:"), &M::itemExists);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnCreationDate:"), &M::returnCreationDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnModificationDate:"), &M::returnModificationDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnCreationAndModificationDate:"), &M::returnCreationAndModificationDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnCreatorCode:"), &M::returnCreatorCode);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnFileType:"), &M::returnFileType);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemInfo:"), &M::returnItemInfo);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemUTI:"), &M::returnItemUTI);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemDisplayKind:"), &M::returnItemDisplayKind);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemDefaultApp:"), &M::returnItemDefaultApp);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemIsImage:"), &M::returnItemIsImage);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemName:"), &M::returnItemName);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemDisplayedName:"), &M::returnItemDisplayedName);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemExtension:"), &M::returnItemExtension);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemContainer:"), &M::returnItemContainer);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemIsLocked:"), &M::returnItemIsLocked);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemOwner:"), &M::returnItemOwner);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemGroup:"), &M::returnItemGroup);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemPermissions:"), &M::returnItemPermissions);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemVisiblity:"), &M::returnItemVisiblity);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemIsFolder:"), &M::returnItemIsFolder);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemIsPackage:"), &M::returnItemIsPackage);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnItemIsWritable:"), &M::returnItemIsWritable);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnFolderContents:"), &M::returnFolderContents);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnCompleteFolderContents:withInvisibles:"),
                   &M::returnCompleteFolderContents);

    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setCreationDate:toDate:"), &M::setCreationDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setModificationDate:toDate:"), &M::setModificationDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setCreationAndModificationDate:toDate:"), &M::setCreationAndModificationDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("randomizeDate:"), &M::randomizeDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setCreatorCode:toCode:"), &M::setCreatorCode);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setFileType:toType:"), &M::setFileType);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setItemName:toName:"), &M::setItemName);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setItemOwner:toOwner:"), &M::setItemOwner);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setItemGroup:toGroup:"), &M::setItemGroup);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setItemPermissions:toPermissions:"), &M::setItemPermissions);
}

void registerElementsAndIntrospection(MethodRegistry &registry)
{
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnImage:"), &M::returnImage);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnIcon:"), &M::returnIcon);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("deleteKeyPressed:"), &M::deleteKeyPressed);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("arrowKeyPressed:"), &M::arrowKeyPressed);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("expandOutlineItem:atRow:"), &M::expandOutlineItem);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("isOutlineItemExpanded:atRow:"), &M::isOutlineItemExpanded);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("uintForElement:"), &M::uintForElement);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("stringForElement:"), &M::stringForElement);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("dateForElement:"), &M::dateForElement);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("isThisAString:"), &M::isThisAString);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("isThisAnArray:"), &M::isThisAnArray);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("isThisADictionary:"), &M::isThisADictionary);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("isThisANumber:"), &M::isThisANumber);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("isThisADate:"), &M::isThisADate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("dictionaryArrayFromTSVFile:"), &M::dictionaryArrayFromTSVFile);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("isThisABoolean:"), &M::isThisABoolean);

    // These read the method table itself.
    const auto withTable = [&registry](const QString &selector, auto describe) {
        registry.addClassMethod(MiscMethodsClass, selector, [describe](Invocation &invocation) {
            return QVariant(describe(*invocation.methods, invocation.arguments[0]));
        });
    };
    withTable(QStringLiteral("superclassesForObject:"), &Introspection::superclassesForObject);
    withTable(QStringLiteral("classMethodsForObject:"), &Introspection::classMethodsForObject);
    withTable(QStringLiteral("instanceMethodsForObject:"), &Introspection::instanceMethodsForObject);
    withTable(QStringLiteral("classMethodNamesForObject:"), &Introspection::classMethodNamesForObject);
    withTable(QStringLiteral("instanceMethodNamesForObject:"), &Introspection::instanceMethodNamesForObject);
    withTable(QStringLiteral("describeObject:"), &Introspection::describeObject);
    registry.addClassMethod(MiscMethodsClass, QStringLiteral("ivarsForObject:"), [](Invocation &invocation) {
        return QVariant(Introspection::ivarsForObject(invocation.arguments[0]));
    });
}

void registerColors(MethodRegistry &registry)
{
    registry.addValueClass(QMetaType::fromType<QColor>(), QStringLiteral("NSColor"));
    registry.addValueClass(QMetaType::fromType<QImage>(), QStringLiteral("NSImage"));
    registry.addValueClass(QMetaType::fromType<QIcon>(), QStringLiteral("NSImage"));
    for (const QString &dictionary : {QStringLiteral("NSDictionary"), QStringLiteral("NSMutableDictionary")})
        registry.addInstanceMethod(dictionary, QStringLiteral("setColor:forKey:"), [](Invocation &invocation) {
            QVariantMap self = convert<QVariantMap>(invocation.receiver, -1);
            const QVariant color = invocation.arguments[0];
            if (color.metaType() != QMetaType::fromType<QColor>())
                throw ArgumentConversion::WrongType{0, QStringLiteral("a colour"), ArgumentConversion::kindOf(color)};
            self.insert(convert<QString>(invocation.arguments[1], 1),
                        ColorArchiving::archivedData(color.value<QColor>()));
            invocation.receiverOutput = self;
            return QVariant();
        });
    registry.addInstanceMethod(QStringLiteral("NSDictionary"), QStringLiteral("colorForKey:"), [](Invocation &invocation) {
        const QVariant value = convert<QVariantMap>(invocation.receiver, -1).value(convert<QString>(invocation.arguments[0], 0));
        if (value.typeId() != QMetaType::QByteArray)
            return QVariant();
        const auto color = ColorArchiving::colorFromData(value.toByteArray());
        return color ? QVariant(*color) : QVariant();
    });
}

} // namespace

void registerFileItemMethods(MethodRegistry &registry)
{
    registerPaths(registry);
    registerItems(registry);
    registerElementsAndIntrospection(registry);
    registerColors(registry);
}
