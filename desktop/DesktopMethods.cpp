#include "DesktopMethods.h"

#include "MiscMethods.h"
#include "NativeBinding.h"

namespace {

const QString Misc = QStringLiteral("ROZ_MiscMethods");

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

    registry.addClassMethod(Misc, QStringLiteral("runTask:withArguments:onData:atWorkingDirectory:"),
                            [](Invocation &invocation) {
                                const QVariantList &args = invocation.arguments;
                                return QVariant(M::runTask(ArgumentConversion::convert<QString>(args[0], 0),
                                                           optionalList(args[1], 1), optionalString(args[2], 2),
                                                           ArgumentConversion::convert<QString>(args[3], 3)));
                            });

    addClassMethod(registry, Misc, QStringLiteral("returnOSVersion"), &M::returnOSVersion);
    addClassMethod(registry, Misc, QStringLiteral("return104Plus"), &M::return104Plus);
    addClassMethod(registry, Misc, QStringLiteral("return105Plus"), &M::return105Plus);
    addClassMethod(registry, Misc, QStringLiteral("returnHostName"), &M::returnHostName);
    addClassMethod(registry, Misc, QStringLiteral("returnShortUserName"), &M::returnShortUserName);
    addClassMethod(registry, Misc, QStringLiteral("returnFullUserName"), &M::returnFullUserName);
    addClassMethod(registry, Misc, QStringLiteral("returnFullUserNameInits"), &M::returnFullUserNameInits);

    addClassMethod(registry, Misc, QStringLiteral("returnClipboardString"), &M::returnClipboardString);
    addClassMethod(registry, Misc, QStringLiteral("returnClipboard"), &M::returnClipboard);
    addClassMethod(registry, Misc, QStringLiteral("setClipboard:"), &M::setClipboard);
    addClassMethod(registry, Misc, QStringLiteral("resetClipboard:"), &M::resetClipboard);
    addClassMethod(registry, Misc, QStringLiteral("pasteAndRestore:"), &M::pasteAndRestore);

    addClassMethod(registry, Misc, QStringLiteral("returnStartupItem"), &M::returnStartupItem);
    addClassMethod(registry, Misc, QStringLiteral("setStartupItem:"), &M::setStartupItem);

    registerFileItemMethods(registry);
    registerTextShapingMethods(registry);
    registerFontMethods(registry);
    installKeyEventTracking();
}
