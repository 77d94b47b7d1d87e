// nomen: the window. Native code loads the interface and the engine; the
// main script decides what each control does.

#include "Dialogs.h"
#include "MainScript.h"
#include "LocalTimeZone.h"
#include "MethodTable.h"
#include "NamedException.h"
#include "PathCodec.h"
#include "PathNames.h"
#include "RZApplication.h"


namespace {

// The items handed over on the command line or by a file manager (Qt has
// taken its own options out of argv), as absolute paths.
QStringList handedOver(int argc, char **argv)
{
    QStringList paths;
    for (const QString &argument : PathCodec::arguments(argc, argv))
        paths.append(PathNames::absolute(argument));
    return paths;
}

} // namespace

int main(int argc, char **argv)
{
    pinLocalTimeZone();
    RZApplication application(argc, argv);
    const MethodRegistry methods = buildMethodTable();
    try {
        application.init(methods);
    } catch (const NamedException &failure) {
        Dialogs::showError(QStringLiteral("Nomen cannot start"), QStringLiteral("%1: %2").arg(failure.name(), failure.reason()));
        return 1;
    }
    MainScript script(application, methods);
    if (!script.load(RZApplication::resourceDirectory() + QStringLiteral("/main.js"))) {
        Dialogs::showError(QStringLiteral("Nomen cannot start"), script.errors().join(u'\n'));
        return 1;
    }
    script.start(handedOver(argc, argv));
    return application.exec();
}
