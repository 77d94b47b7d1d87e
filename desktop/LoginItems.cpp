#include "DesktopEntries.h"
#include "MiscMethods.h"
#include "PathCodec.h"
#include "UserFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

// Login items are freedesktop autostart entries: one desktop entry file,
// named after the application, in $XDG_CONFIG_HOME/autostart.
QString autostartFile()
{
    return UserFolders::configHome() + QStringLiteral("/autostart/nomen.desktop");
}

QString executable()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
}

} // namespace

bool MiscMethods::returnStartupItem()
{
    QFile file(autostartFile());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    bool inEntry = false;
    bool hidden = false;
    QString program;
    for (const QString &rawLine : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const QString line = rawLine.trimmed();
        if (line.startsWith(u'[')) {
            inEntry = line == QLatin1String("[Desktop Entry]");
            continue;
        }
        if (!inEntry)
            continue;
        const QString key = line.section(u'=', 0, 0).trimmed();
        const QString value = line.section(u'=', 1).trimmed();
        if (key == QLatin1String("Exec"))
            program = DesktopEntries::programOfExec(value);
        else if (key == QLatin1String("Hidden"))
            hidden = value.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
    }
    const QString target = QFileInfo(program).canonicalFilePath();
    return !hidden && !target.isEmpty() && target == executable();
}

void MiscMethods::setStartupItem(bool enabled)
{
    // Failures are swallowed: a login item is a convenience, never an error.
    const QString path = autostartFile();
    if (!enabled) {
        QFile::remove(path);
        return;
    }
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return;
    const QString entry = QStringLiteral("[Desktop Entry]\nType=Application\nName=Nomen\n"
                                         "Comment=Batch file renamer\nExec=%1\nHidden=false\nTerminal=false\n")
                              .arg(DesktopEntries::execWord(executable()));
    file.write(PathCodec::encode(entry));
    file.commit();
}
