// nomen-script: runs JavaScript with the native bridge and prints the
// completion value, so every script-callable method can be tried from a shell.

#include "MethodTable.h"
#include "ScriptHost.h"

#include <QCoreApplication>
#include <QFile>
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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList args = application.arguments().mid(1);
    QString program;
    QString fileName;
    if (args.size() == 2 && args[0] == QLatin1String("-e")) {
        program = args[1];
        fileName = QStringLiteral("-e");
    } else if (args.size() == 1 && !args[0].startsWith(u'-')) {
        fileName = args[0];
        QFile file(fileName);
        if (!file.open(QIODevice::ReadOnly)) {
            writeTo(stderr, QStringLiteral("nomen-script: cannot read %1: %2").arg(fileName, file.errorString()));
            return 1;
        }
        program = QString::fromUtf8(file.readAll());
    } else {
        return usage();
    }

    const MethodRegistry methods = buildMethodTable();
    ScriptHost host(methods);
    const ScriptHost::Outcome outcome = host.evaluate(program, fileName);
    if (!outcome.ok()) {
        writeTo(stderr, outcome.error);
        return 1;
    }
    if (const auto text = host.printable(outcome.value))
        writeTo(stdout, *text);
    return 0;
}
