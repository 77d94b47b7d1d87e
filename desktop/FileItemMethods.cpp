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

const QString Misc = QStringLiteral("ROZ_MiscMethods");
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
    addClassMethod(registry, Misc, QStringLiteral("itemExists:"), &M::itemExists);
    addClassMethod(registry, Misc, QStringLiteral("returnCreationDate:"), &M::returnCreationDate);
    addClassMethod(registry, Misc, QStringLiteral("returnModificationDate:"), &M::returnModificationDate);
    addClassMethod(registry, Misc, QStringLiteral("returnCreationAndModificationDate:"), &M::returnCreationAndModificationDate);
    addClassMethod(registry, Misc, QStringLiteral("returnCreatorCode:"), &M::returnCreatorCode);
    addClassMethod(registry, Misc, QStringLiteral("returnFileType:"), &M::returnFileType);
    addClassMethod(registry, Misc, QStringLiteral("returnItemInfo:"), &M::returnItemInfo);
    addClassMethod(registry, Misc, QStringLiteral("returnItemUTI:"), &M::returnItemUTI);
    addClassMethod(registry, Misc, QStringLiteral("returnItemDisplayKind:"), &M::returnItemDisplayKind);
    addClassMethod(registry, Misc, QStringLiteral("returnItemDefaultApp:"), &M::returnItemDefaultApp);
    addClassMethod(registry, Misc, QStringLiteral("returnItemIsImage:"), &M::returnItemIsImage);
    addClassMethod(registry, Misc, QStringLiteral("returnItemName:"), &M::returnItemName);
    addClassMethod(registry, Misc, QStringLiteral("returnItemDisplayedName:"), &M::returnItemDisplayedName);
    addClassMethod(registry, Misc, QStringLiteral("returnItemExtension:"), &M::returnItemExtension);
    addClassMethod(registry, Misc, QStringLiteral("returnItemContainer:"), &M::returnItemContainer);
    addClassMethod(registry, Misc, QStringLiteral("returnItemIsLocked:"), &M::returnItemIsLocked);
    addClassMethod(registry, Misc, QStringLiteral("returnItemOwner:"), &M::returnItemOwner);
    addClassMethod(registry, Misc, QStringLiteral("returnItemGroup:"), &M::returnItemGroup);
    addClassMethod(registry, Misc, QStringLiteral("returnItemPermissions:"), &M::returnItemPermissions);
    addClassMethod(registry, Misc, QStringLiteral("returnItemVisiblity:"), &M::returnItemVisiblity);
    addClassMethod(registry, Misc, QStringLiteral("returnItemIsFolder:"), &M::returnItemIsFolder);
    addClassMethod(registry, Misc, QStringLiteral("returnItemIsPackage:"), &M::returnItemIsPackage);
    addClassMethod(registry, Misc, QStringLiteral("returnItemIsWritable:"), &M::returnItemIsWritable);
    addClassMethod(registry, Misc, QStringLiteral("returnFolderContents:"), &M::returnFolderContents);
    addClassMethod(registry, Misc, QStringLiteral("returnCompleteFolderContents:withInvisibles:"),
                   &M::returnCompleteFolderContents);

    addClassMethod(registry, Misc, QStringLiteral("setCreationDate:toDate:"), &M::setCreationDate);
    addClassMethod(registry, Misc, QStringLiteral("setModificationDate:toDate:"), &M::setModificationDate);
    addClassMethod(registry, Misc, QStringLiteral("setCreationAndModificationDate:toDate:"), &M::setCreationAndModificationDate);
    addClassMethod(registry, Misc, QStringLiteral("randomizeDate:"), &M::randomizeDate);
    addClassMethod(registry, Misc, QStringLiteral("setCreatorCode:toCode:"), &M::setCreatorCode);
    addClassMethod(registry, Misc, QStringLiteral("setFileType:toType:"), &M::setFileType);
    addClassMethod(registry, Misc, QStringLiteral("setItemName:toName:"), &M::setItemName);
    addClassMethod(registry, Misc, QStringLiteral("setItemOwner:toOwner:"), &M::setItemOwner);
    addClassMethod(registry, Misc, QStringLiteral("setItemGroup:toGroup:"), &M::setItemGroup);
    addClassMethod(registry, Misc, QStringLiteral("setItemPermissions:toPermissions:"), &M::setItemPermissions);
}

void registerElementsAndIntrospection(MethodRegistry &registry)
{
    addClassMethod(registry, Misc, QStringLiteral("returnImage:"), &M::returnImage);
    addClassMethod(registry, Misc, QStringLiteral("returnIcon:"), &M::returnIcon);
    addClassMethod(registry, Misc, QStringLiteral("deleteKeyPressed:"), &M::deleteKeyPressed);
    addClassMethod(registry, Misc, QStringLiteral("arrowKeyPressed:"), &M::arrowKeyPressed);
    addClassMethod(registry, Misc, QStringLiteral("expandOutlineItem:atRow:"), &M::expandOutlineItem);
    addClassMethod(registry, Misc, QStringLiteral("isOutlineItemExpanded:atRow:"), &M::isOutlineItemExpanded);
    addClassMethod(registry, Misc, QStringLiteral("uintForElement:"), &M::uintForElement);
    addClassMethod(registry, Misc, QStringLiteral("stringForElement:"), &M::stringForElement);
    addClassMethod(registry, Misc, QStringLiteral("dateForElement:"), &M::dateForElement);
    addClassMethod(registry, Misc, QStringLiteral("isThisAString:"), &M::isThisAString);
    addClassMethod(registry, Misc, QStringLiteral("isThisAnArray:"), &M::isThisAnArray);
    addClassMethod(registry, Misc, QStringLiteral("isThisADictionary:"), &M::isThisADictionary);
    addClassMethod(registry, Misc, QStringLiteral("isThisANumber:"), &M::isThisANumber);
    addClassMethod(registry, Misc, QStringLiteral("isThisADate:"), &M::isThisADate);
    addClassMethod(registry, Misc, QStringLiteral("dictionaryArrayFromTSVFile:"), &M::dictionaryArrayFromTSVFile);
    addClassMethod(registry, Misc, QStringLiteral("isThisABoolean:"), &M::isThisABoolean);

    // These read the method table itself.
    const auto withTable = [&registry](const QString &selector, auto describe) {
        registry.addClassMethod(Misc, selector, [describe](Invocation &invocation) {
            return QVariant(describe(*invocation.methods, invocation.arguments[0]));
        });
    };
    withTable(QStringLiteral("superclassesForObject:"), &Introspection::superclassesForObject);
    withTable(QStringLiteral("classMethodsForObject:"), &Introspection::classMethodsForObject);
    withTable(QStringLiteral("instanceMethodsForObject:"), &Introspection::instanceMethodsForObject);
    withTable(QStringLiteral("classMethodNamesForObject:"), &Introspection::classMethodNamesForObject);
    withTable(QStringLiteral("instanceMethodNamesForObject:"), &Introspection::instanceMethodNamesForObject);
    withTable(QStringLiteral("describeObject:"), &Introspection::describeObject);
    registry.addClassMethod(Misc, QStringLiteral("ivarsForObject:"), [](Invocation &invocation) {
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
