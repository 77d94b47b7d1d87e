#pragma once

#include <QList>
#include <QString>
#include <optional>

// Running applications are the processes whose top-level windows the window
// manager lists (_NET_CLIENT_LIST), one per process, in the window
// manager's order. Without a display or a window manager there are none.
namespace RunningApplications {

struct Application {
    qint64 pid = 0;
    QString name;       // the desktop entry's name, else the window class, else the command
    QString program;    // the program's path, "" when it cannot be read
    QString identifier; // the desktop entry's identifier, "" when none is known
};

QList<Application> listed();
// The application of the active window (_NET_ACTIVE_WINDOW).
std::optional<Application> active();
// Minimises every listed window of other processes; answers how many.
int minimiseOthers();

} // namespace RunningApplications
