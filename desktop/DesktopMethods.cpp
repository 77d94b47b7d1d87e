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
    using M = MiscMethods;

    registry.addClassMethod(MiscMethodsClass, QStringLiteral("runTask:withArguments:onData:atWorkingDirectory:"),
                            [](Invocation &invocation) {
                                const QVariantList &args = invocation.arguments;
                                return QVariant(M::runTask(ArgumentConversion::convert<QString>(args[0], 0),
                                                           optionalList(args[1], 1), optionalString(args[2], 2),
                                                           ArgumentConversion::convert<QString>(args[3], 3)));
                            });

    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnOSVersion"), &M::returnOSVersion);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("return104Plus"), &M::return104Plus);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("return105Plus"), &M::return105Plus);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnHostName"), &M::returnHostName);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnShortUserName"), &M::returnShortUserName);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnFullUserName"), &M::returnFullUserName);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnFullUserNameInits"), &M::returnFullUserNameInits);

    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnClipboardString"), &M::returnClipboardString);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnClipboard"), &M::returnClipboard);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setClipboard:"), &M::setClipboard);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("resetClipboard:"), &M::resetClipboard);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("pasteAndRestore:"), &M::pasteAndRestore);

    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnStartupItem"), &M::returnStartupItem);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("setStartupItem:"), &M::setStartupItem);

    registerFileItemMethods(registry);
    registerTextShapingMethods(registry);
    registerFontMethods(registry);
    registerAlertAndFileMethods(registry);
    registerApplicationAndNetworkMethods(registry);
    installKeyEventTracking();
}
