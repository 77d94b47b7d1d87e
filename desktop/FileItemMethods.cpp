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
using M = ROZ_MiscMethods;

void registerPaths(MethodRegistry &registry)
{
    const QString NSString = QStringLiteral("NSString");
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("pathHFS"), &ROZ_PathConversion::pathHFS);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("pathPOSIX"), &ROZ_PathConversion::pathPOSIX);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("alias"), &ROZ_PathConversion::alias);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("aliasData"), &ROZ_PathConversion::aliasData);
    NativeBinding::addInstanceMethod(registry, NSString, QStringLiteral("fsRef"), &ROZ_PathConversion::fsRef);
    // No reference is ever set, so none names a path.
    registry.addClassMethod(NSString, QStringLiteral("stringWithFSRef:"), [](Invocation &) { return QVariant(); });
}

void registerItems(MethodRegistry &registry)
{
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("itemExists:"), &M::itemExists);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnCreationDate:"), &M::returnCreationDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnModificationDate:"), &M::returnModificationDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnCreationAndModificationDate:"), &M::returnCreationAndModificationDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnCreatorCode:"), &M::returnCreatorCode);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnFileType:"), &M::returnFileType);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemInfo:"), &M::returnItemInfo);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemUTI:"), &M::returnItemUTI);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemDisplayKind:"), &M::returnItemDisplayKind);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemDefaultApp:"), &M::returnItemDefaultApp);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemIsImage:"), &M::returnItemIsImage);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemName:"), &M::returnItemName);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemDisplayedName:"), &M::returnItemDisplayedName);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemExtension:"), &M::returnItemExtension);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemContainer:"), &M::returnItemContainer);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemIsLocked:"), &M::returnItemIsLocked);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemOwner:"), &M::returnItemOwner);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemGroup:"), &M::returnItemGroup);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemPermissions:"), &M::returnItemPermissions);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemVisiblity:"), &M::returnItemVisiblity);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemIsFolder:"), &M::returnItemIsFolder);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemIsPackage:"), &M::returnItemIsPackage);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnItemIsWritable:"), &M::returnItemIsWritable);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnFolderContents:"), &M::returnFolderContents);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnCompleteFolderContents:withInvisibles:"),
                   &M::returnCompleteFolderContents);

    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setCreationDate:toDate:"), &M::setCreationDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setModificationDate:toDate:"), &M::setModificationDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setCreationAndModificationDate:toDate:"), &M::setCreationAndModificationDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("randomizeDate:"), &M::randomizeDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setCreatorCode:toCode:"), &M::setCreatorCode);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setFileType:toType:"), &M::setFileType);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setItemName:toName:"), &M::setItemName);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setItemOwner:toOwner:"), &M::setItemOwner);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setItemGroup:toGroup:"), &M::setItemGroup);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setItemPermissions:toPermissions:"), &M::setItemPermissions);
}

void registerElementsAndIntrospection(MethodRegistry &registry)
{
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnImage:"), &M::returnImage);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnIcon:"), &M::returnIcon);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("deleteKeyPressed:"), &M::deleteKeyPressed);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("arrowKeyPressed:"), &M::arrowKeyPressed);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("expandOutlineItem:atRow:"), &M::expandOutlineItem);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("isOutlineItemExpanded:atRow:"), &M::isOutlineItemExpanded);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("uintForElement:"), &M::uintForElement);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("stringForElement:"), &M::stringForElement);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("dateForElement:"), &M::dateForElement);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("isThisAString:"), &M::isThisAString);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("isThisAnArray:"), &M::isThisAnArray);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("isThisADictionary:"), &M::isThisADictionary);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("isThisANumber:"), &M::isThisANumber);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("isThisADate:"), &M::isThisADate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("dictionaryArrayFromTSVFile:"), &M::dictionaryArrayFromTSVFile);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("isThisABoolean:"), &M::isThisABoolean);

    // These read the method table itself.
    const auto withTable = [&registry](const QString &selector, auto describe) {
        registry.addClassMethod(ROZ_MiscMethodsClass, selector, [describe](Invocation &invocation) {
            return QVariant(describe(*invocation.methods, invocation.arguments[0]));
        });
    };
    withTable(QStringLiteral("superclassesForObject:"), &Introspection::superclassesForObject);
    withTable(QStringLiteral("classMethodsForObject:"), &Introspection::classMethodsForObject);
    withTable(QStringLiteral("instanceMethodsForObject:"), &Introspection::instanceMethodsForObject);
    withTable(QStringLiteral("classMethodNamesForObject:"), &Introspection::classMethodNamesForObject);
    withTable(QStringLiteral("instanceMethodNamesForObject:"), &Introspection::instanceMethodNamesForObject);
    withTable(QStringLiteral("describeObject:"), &Introspection::describeObject);
    registry.addClassMethod(ROZ_MiscMethodsClass, QStringLiteral("ivarsForObject:"), [](Invocation &invocation) {
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
                        ROZ_ColorArchiving::archivedData(color.value<QColor>()));
            invocation.receiverOutput = self;
            return QVariant();
        });
    registry.addInstanceMethod(QStringLiteral("NSDictionary"), QStringLiteral("colorForKey:"), [](Invocation &invocation) {
        const QVariant value = convert<QVariantMap>(invocation.receiver, -1).value(convert<QString>(invocation.arguments[0], 0));
        if (value.typeId() != QMetaType::QByteArray)
            return QVariant();
        const auto color = ROZ_ColorArchiving::colorFromData(value.toByteArray());
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
