#include "DesktopMethods.h"

#include "Alerts.h"
#include "MiscMethods.h"
#include "NativeBinding.h"

#include <QWidget>

using ArgumentConversion::convert;
using M = MiscMethods;

namespace {

void registerAlerts(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    const QString C = MiscMethodsClass;
    addClassMethod(registry, C, QStringLiteral("displayAlert:withMessage:"),
                   +[](const QString &title, const QString &message) { return M::displayAlert(title, message); });
    addClassMethod(registry, C, QStringLiteral("displayAlert:withMessage:withButtons:"),
                   +[](const QString &title, const QString &message, const QStringList &buttons) {
                       return M::displayAlert(title, message, buttons);
                   });
    addClassMethod(registry, C, QStringLiteral("displayError:withError:"),
                   +[](const QString &title, const QString &message) { M::displayError(title, message, nullptr); });
    addClassMethod(registry, C, QStringLiteral("displayError:withError:attachedToWindow:"), &M::displayError);
    addClassMethod(registry, C, QStringLiteral("displayInformational:withMessage:"),
                   +[](const QString &title, const QString &message) {
                       return M::displayInformational(title, message, Alerts::localized("OK"));
                   });
    addClassMethod(registry, C, QStringLiteral("displayInformational:withMessage:withDefaultButton:"),
                   &M::displayInformational);
    addClassMethod(registry, C, QStringLiteral("displayWarning:withButtons:withDefaultButton:shouldBeep:"),
                   &M::displayWarning);
    addClassMethod(registry, C, QStringLiteral("displayMessage:withButtons:withDefaultButton:withIcon:attachedToWindow:"),
                   +[](const QString &message, const QStringList &buttons, const QString &defaultButton, int style,
                       bool asSheet) { return M::displayMessage(message, buttons, defaultButton, style, asSheet); });

    // The dialog forms run script text, with the methods of the caller.
    registry.addClassMethod(C, QStringLiteral("displayMessage:withButtons:withDefaultButton:withIcon:giveUpAfter:"),
                            [](Invocation &invocation) {
                                const QVariantList &a = invocation.arguments;
                                return M::displayMessage(*invocation.methods, convert<QString>(a[0], 0),
                                                         convert<QStringList>(a[1], 1), convert<QString>(a[2], 2),
                                                         convert<int>(a[3], 3), convert<int>(a[4], 4));
                            });
    registry.addClassMethod(C, QStringLiteral("displayMessage:withButtons:withDefaultButton:withIcon:shouldGiveUp:"),
                            [](Invocation &invocation) {
                                const QVariantList &a = invocation.arguments;
                                return M::displayMessage(*invocation.methods, convert<QString>(a[0], 0),
                                                         convert<QStringList>(a[1], 1), convert<QString>(a[2], 2),
                                                         convert<int>(a[3], 3), convert<bool>(a[4], 4) ? 10 : 0);
                            });
    registry.addClassMethod(
        C, QStringLiteral("displayMessageWithTitle:withMessage:withButtons:withDefaultButton:withIcon:shouldGiveUp:"),
        [](Invocation &invocation) {
            const QVariantList &a = invocation.arguments;
            return M::displayMessageWithTitle(*invocation.methods, convert<QString>(a[0], 0), convert<QString>(a[1], 1),
                                              convert<QStringList>(a[2], 2), convert<QString>(a[3], 3),
                                              convert<int>(a[4], 4), convert<bool>(a[5], 5));
        });
    // What the dialog global of scripts calls: the chosen title, "" when it
    // gave up, nil when cancelled.
    registry.addClassMethod(QStringLiteral("NomenDialog"), QStringLiteral("display:"), [](Invocation &invocation) {
        const QVariantMap options = convert<QVariantMap>(invocation.arguments[0], 0);
        Alerts::Dialog dialog;
        dialog.message = options.value(QStringLiteral("message")).toString();
        dialog.title = options.value(QStringLiteral("title")).toString();
        dialog.buttons = convert<QStringList>(options.value(QStringLiteral("buttons")), 0);
        dialog.defaultButton = options.value(QStringLiteral("defaultButton")).toString();
        dialog.icon = options.value(QStringLiteral("icon"), 1).toInt();
        dialog.givingUpAfter = options.value(QStringLiteral("givingUpAfter"), 0).toInt();
        const auto chosen = Alerts::runDialog(dialog);
        return chosen ? QVariant(*chosen) : QVariant();
    });
}

void registerUtilities(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    const QString C = MiscMethodsClass;
    addClassMethod(registry, C, QStringLiteral("updateStatus:"), &M::updateStatus);
    addClassMethod(registry, C, QStringLiteral("setLogOutputFile:"), &M::setLogOutputFile);
    addClassMethod(registry, C, QStringLiteral("activate"), &M::activate);
    addClassMethod(registry, C, QStringLiteral("toggleShowInDock"), +[] { return false; });
    addClassMethod(registry, C, QStringLiteral("idleTimeInSeconds"), &M::idleTimeInSeconds);
    addClassMethod(registry, C, QStringLiteral("wait:"), &M::wait);
    addClassMethod(registry, C, QStringLiteral("extendPowerOffBy:"), &M::extendPowerOffBy);
    addClassMethod(registry, C, QStringLiteral("toggleScreenUpdates:"), &M::toggleScreenUpdates);
    addClassMethod(registry, C, QStringLiteral("leadingZeros:minimumNumber:"), &M::leadingZeros);
    registry.addClassMethod(C, QStringLiteral("clearSudo"), [](Invocation &invocation) {
        M::clearSudo(*invocation.methods);
        return QVariant();
    });
}

void registerFileOperations(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    const QString C = MiscMethodsClass;
    addClassMethod(registry, C, QStringLiteral("moveItem:toPath:withReplacing:"), &M::moveItem);
    addClassMethod(registry, C, QStringLiteral("copyItem:toPath:withReplacing:"), &M::copyItem);
    addClassMethod(registry, C, QStringLiteral("deleteItem:"), &M::deleteItem);
    addClassMethod(registry, C,
                   QStringLiteral("writeToFile:withContent:shouldAppend:withCreatorCode:withFileType:shouldRandmize:"),
                   &M::writeToFile);
    addClassMethod(registry, C, QStringLiteral("makeTargetFolder:"), &M::makeTargetFolder);
    addClassMethod(registry, C, QStringLiteral("returnUniquePath:"), &M::returnUniquePath);
    addClassMethod(registry, C, QStringLiteral("returnAppPath:"), &M::returnAppPath);
    addClassMethod(registry, C, QStringLiteral("returnAppPathFromBundleID:"), &M::returnAppPathFromBundleID);
    addClassMethod(registry, C, QStringLiteral("osType:"), &M::osType);
}

} // namespace

void registerAlertAndFileMethods(MethodRegistry &registry)
{
    registerAlerts(registry);
    registerUtilities(registry);
    registerFileOperations(registry);
}
