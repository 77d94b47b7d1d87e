// nomen-script: runs JavaScript with the native bridge and prints the
// completion value, so every script-callable method can be tried from a shell.

#include "Alerts.h"
#include "DeferredCalls.h"
#include "FileBytes.h"
#include "LocalTimeZone.h"
#include "MethodTable.h"
#include "NamedException.h"
#include "PathCodec.h"
#include "RZApplication.h"
#include "ScriptHost.h"

#include <sys/stat.h>
#include <unistd.h>
#include <cstdio>

namespace {

int usage()
{
    std::fputs("usage: nomen-script FILE.js\n       nomen-script -e TEXT\n", stderr);
    return 2;
}

void writeTo(FILE *stream, const QString &text)
{
    const QByteArray bytes = (text + u'\n').toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

// Qt wants a private runtime directory and warns on every run without one;
// this is the one it would pick.
void ensureRuntimeDirectory()
{
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        return;
    const QByteArray temporary = qgetenv("TMPDIR");
    const QByteArray directory = (temporary.isEmpty() ? QByteArray("/tmp") : temporary) + "/runtime-" + QByteArray::number(getuid());
    mkdir(directory.constData(), 0700);
    struct stat info;
    if (stat(directory.constData(), &info) == 0 && info.st_uid == getuid() && (info.st_mode & 0777) == 0700)
        qputenv("XDG_RUNTIME_DIR", directory);
}

} // namespace

int main(int argc, char **argv)
{
    // Without a display the clipboard and windows still work, inside this
    // process, on Qt's offscreen platform.
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Nobody sees an offscreen window, so nobody could answer an alert.
    Alerts::setUnattended(qgetenv("QT_QPA_PLATFORM") == "offscreen");
    ensureRuntimeDirectory();
    pinLocalTimeZone();
    RZApplication application(argc, argv);
    const QStringList args = application.arguments().mid(1);
    QString program;
    QString fileName;
    if (args.size() == 2 && args[0] == QLatin1String("-e")) {
        program = args[1];
        fileName = QStringLiteral("-e");
    } else if (args.size() == 1 && !args[0].startsWith(u'-')) {
        // The name as its bytes: Qt has taken its own options out of argv.
        fileName = argc == 2 ? PathCodec::decode(argv[1]) : args[0];
        const auto contents = FileBytes::read(fileName);
        if (!contents.bytes) {
            writeTo(stderr, QStringLiteral("nomen-script: cannot read %1").arg(contents.error));
            return 1;
        }
        program = QString::fromUtf8(*contents.bytes);
    } else {
        return usage();
    }

    const MethodRegistry methods = buildMethodTable();
    try {
        application.init(methods);
    } catch (const NamedException &failure) {
        writeTo(stderr, QStringLiteral("nomen-script: %1: %2").arg(failure.name(), failure.reason()));
        return 1;
    }
    ScriptHost host(methods);
    // The application object, with the window's interface loaded, as the
    // window's own script sees it.
    QJSEngine::setObjectOwnership(&application, QJSEngine::CppOwnership);
    host.engine().globalObject().setProperty(QStringLiteral("application"), host.engine().newQObject(&application));
    const ScriptHost::Outcome outcome = host.evaluate(program, fileName);
    if (!outcome.ok()) {
        writeTo(stderr, outcome.error);
        return 1;
    }
    if (const auto text = host.printable(outcome.value))
        writeTo(stdout, *text);
    // Work the script left for later, such as a clipboard to put back.
    DeferredCalls::waitForPending(5000);
    return 0;
}
