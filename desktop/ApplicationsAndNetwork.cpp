#include "DesktopEntries.h"
#include "DesktopMethods.h"
#include "DictionaryAdditions.h"
#include "FileStatus.h"
#include "MiscMethods.h"
#include "NativeBinding.h"
#include "NetworkSettings.h"
#include "PathConversion.h"
#include "PhoneServices.h"
#include "Poof.h"
#include "Processes.h"
#include "RunningApplications.h"
#include "ScreenPoints.h"

#include <QApplication>
#include <QUrl>

#include <csignal>

using M = MiscMethods;
using PathConversion::pathPOSIX;

namespace {

QVariantMap dictionaryOf(const RunningApplications::Application &application)
{
    QVariantMap dictionary{
        {QStringLiteral("NSApplicationName"), application.name},
        {QStringLiteral("NSApplicationProcessIdentifier"), int(application.pid)},
    };
    if (!application.program.isEmpty())
        dictionary.insert(QStringLiteral("NSApplicationPath"), application.program);
    if (!application.identifier.isEmpty()) {
        QString identifier = application.identifier;
        if (identifier.endsWith(QLatin1String(".desktop")))
            identifier.chop(8);
        dictionary.insert(QStringLiteral("NSApplicationBundleIdentifier"), identifier);
    }
    return dictionary;
}

} // namespace

int MiscMethods::pidForApplication(const QString &name)
{
    const QString listing = runTask(QStringLiteral("/bin/ps"), QStringList{QStringLiteral("ax")}, QString(), QString());
    // "--" keeps a name that starts with "-" a pattern, never an option.
    const QString matches = runTask(QStringLiteral("/usr/bin/grep"),
                                    QStringList{QStringLiteral("-i"), QStringLiteral("--"), name}, listing, QString());
    if (matches.isEmpty())
        return 0;
    const QString pids =
        runTask(QStringLiteral("/usr/bin/awk"), QStringList{QStringLiteral("{print $1}")}, matches, QString());
    return pids.isEmpty() ? 0 : DictionaryAdditions::intValue(pids);
}

bool MiscMethods::killApplication(const QString &name)
{
    const int pid = pidForApplication(name);
    if (pid <= 0)
        return false;
    ::kill(pid, SIGKILL);
    return true;
}

QStringList MiscMethods::returnLaunchedApplicationsPaths()
{
    QStringList paths;
    for (const qint64 pid : Processes::ofThisUser()) {
        const QString program = Processes::programOf(pid);
        if (!program.isEmpty())
            paths.append(program);
    }
    return paths;
}

bool MiscMethods::launchApplication(const QString &name)
{
    return DesktopEntries::launch(DesktopEntries::find(name), {});
}

void MiscMethods::hideOtherApplications()
{
    RunningApplications::minimiseOthers();
}

QVariant MiscMethods::returnCurrentApplication()
{
    const auto application = RunningApplications::active();
    return application ? QVariant(dictionaryOf(*application)) : QVariant();
}

QVariantList MiscMethods::returnLaunchedApplications()
{
    QVariantList applications;
    for (const auto &application : RunningApplications::listed())
        applications.append(dictionaryOf(application));
    return applications;
}

QVariantList MiscMethods::returnLaunchedApplicationProperty(const QString &key, bool forHFS)
{
    const bool convert = forHFS && key == QLatin1String("NSApplicationPath");
    QVariantList values;
    for (const QVariant &application : returnLaunchedApplications()) {
        const QVariantMap dictionary = application.toMap();
        if (!dictionary.contains(key))
            continue;
        const QVariant value = dictionary.value(key);
        values.append(convert ? QVariant(PathConversion::pathHFS(value.toString())) : value);
    }
    return values;
}

QString MiscMethods::returnDefaultAppForItem(const QString &path)
{
    return DesktopEntries::programOf(DesktopEntries::defaultForFile(pathPOSIX(path)));
}

QString MiscMethods::returnDefaultAppForURLScheme(const QString &url)
{
    return DesktopEntries::programOf(DesktopEntries::defaultForScheme(QUrl(url).scheme()));
}

bool MiscMethods::openFile(const QString &path, const std::optional<QString> &application)
{
    const QString posix = pathPOSIX(path);
    if (!FileStatus::of(posix, true))
        return false;
    const QString identifier = application ? DesktopEntries::find(*application) : DesktopEntries::defaultForFile(posix);
    return DesktopEntries::launch(identifier, {posix});
}

void MiscMethods::openURL(const QString &url)
{
    DesktopEntries::openUri(url);
}

void MiscMethods::openURLInBackground(const QString &url)
{
    DesktopEntries::openUri(url);
}

void MiscMethods::poof(const QString &point)
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;
    Poof::play(ScreenPoints::toTopLeft(ScreenPoints::fromText(point)));
}

bool MiscMethods::sendGoogleSMS(const QString &message, const QString &subject, const QString &phone,
                                    const QString &carrier)
{
    return PhoneServices::sendMessage(message, subject, phone, carrier);
}

std::optional<QString> MiscMethods::returnCarrierForMobileNumber(const QString &phone)
{
    return PhoneServices::carrierOf(phone);
}

bool MiscMethods::isNetworkAvailable(const QString &host)
{
    return NetworkSettings::isReachable(host);
}

QVariantMap MiscMethods::returnProxyInfoRaw()
{
    return NetworkSettings::rawProxies();
}

QVariantMap MiscMethods::returnProxyInfo()
{
    return NetworkSettings::proxySummary(NetworkSettings::rawProxies());
}

void registerApplicationAndNetworkMethods(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    const QString C = MiscMethodsClass;
    addClassMethod(registry, C, QStringLiteral("pidForApplication:"), &M::pidForApplication);
    addClassMethod(registry, C, QStringLiteral("killApplication:"), &M::killApplication);
    addClassMethod(registry, C, QStringLiteral("launchApplication:"), &M::launchApplication);
    addClassMethod(registry, C, QStringLiteral("hideOtherApplications"), &M::hideOtherApplications);
    addClassMethod(registry, C, QStringLiteral("returnCurrentApplication"), &M::returnCurrentApplication);
    addClassMethod(registry, C, QStringLiteral("returnLaunchedApplications"), &M::returnLaunchedApplications);
    addClassMethod(registry, C, QStringLiteral("returnLaunchedApplicationProperty:forHFS:"),
                   &M::returnLaunchedApplicationProperty);
    addClassMethod(registry, C, QStringLiteral("returnLaunchedApplicationsPaths"),
                   &M::returnLaunchedApplicationsPaths);
    addClassMethod(registry, C, QStringLiteral("returnDefaultAppForItem:"), &M::returnDefaultAppForItem);
    addClassMethod(registry, C, QStringLiteral("returnDefaultAppForURLScheme:"), &M::returnDefaultAppForURLScheme);
    addClassMethod(registry, C, QStringLiteral("openFile:withApplication:"),
                   +[](const QString &path, const QVariant &application) {
                       return M::openFile(path, application.typeId() == QMetaType::QString
                                                    ? std::optional(application.toString())
                                                    : std::nullopt);
                   });
    addClassMethod(registry, C, QStringLiteral("openURL:"), &M::openURL);
    addClassMethod(registry, C, QStringLiteral("openURLInBackground:"), &M::openURLInBackground);
    addClassMethod(registry, C, QStringLiteral("poof:"), &M::poof);
    addClassMethod(registry, C, QStringLiteral("sendGoogleSMS:withSubject:toPhone:forCarrier:"), &M::sendGoogleSMS);
    addClassMethod(registry, C, QStringLiteral("returnCarrierForMobileNumber:"), &M::returnCarrierForMobileNumber);
    addClassMethod(registry, C, QStringLiteral("isNetworkAvailable:"), &M::isNetworkAvailable);
    addClassMethod(registry, C, QStringLiteral("returnProxyInfoRaw"), &M::returnProxyInfoRaw);
    addClassMethod(registry, C, QStringLiteral("returnProxyInfo"), &M::returnProxyInfo);
}
