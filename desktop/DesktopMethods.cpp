#include "DesktopMethods.h"

#include "MiscMethods.h"
#include "NativeBinding.h"

namespace {

std::optional<QStringList> optionalList(const QVariant &value, int index)
{
    if (ArgumentConversion::isNil(value))
        return std::nullopt;
    return ArgumentConversion::convert<QStringList>(value, index);
}

std::optional<QString> optionalString(const QVariant &value, int index)
{
    if (ArgumentConversion::isNil(value))
        return std::nullopt;
    return ArgumentConversion::convert<QString>(value, index);
}

} // namespace

void registerDesktopMethods(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    using M = ROZ_MiscMethods;

    registry.addClassMethod(ROZ_MiscMethodsClass, QStringLiteral("runTask:withArguments:onData:atWorkingDirectory:"),
                            [](Invocation &invocation) {
                                const QVariantList &args = invocation.arguments;
                                return QVariant(M::runTask(ArgumentConversion::convert<QString>(args[0], 0),
                                                           optionalList(args[1], 1), optionalString(args[2], 2),
                                                           ArgumentConversion::convert<QString>(args[3], 3)));
                            });

    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnOSVersion"), &M::returnOSVersion);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("return104Plus"), &M::return104Plus);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("return105Plus"), &M::return105Plus);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnHostName"), &M::returnHostName);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnShortUserName"), &M::returnShortUserName);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnFullUserName"), &M::returnFullUserName);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnFullUserNameInits"), &M::returnFullUserNameInits);

    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnClipboardString"), &M::returnClipboardString);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnClipboard"), &M::returnClipboard);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setClipboard:"), &M::setClipboard);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("resetClipboard:"), &M::resetClipboard);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("pasteAndRestore:"), &M::pasteAndRestore);

    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnStartupItem"), &M::returnStartupItem);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("setStartupItem:"), &M::setStartupItem);

    registerFileItemMethods(registry);
    registerTextShapingMethods(registry);
    registerFontMethods(registry);
    registerAlertAndFileMethods(registry);
    registerApplicationAndNetworkMethods(registry);
    installKeyEventTracking();
}
