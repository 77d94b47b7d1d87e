// nomen: the window. Native code loads the interface and the engine; the
// main script decides what each control does.

#include "Dialogs.h"
#include "MainScript.h"
#include "LocalTimeZone.h"
#include "MethodTable.h"
#include "NamedException.h"
#include "RZApplication.h"


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
    script.start(application.arguments().mid(1));
    return application.exec();
}
