#pragma once

#include <QList>
#include <QString>

// Running processes, read from /proc.
namespace Processes {

// The processes that belong to this user, in the order of their numbers.
QList<qint64> ofThisUser();
// The path of the program the process runs, or "" when it cannot be read
// (another user's process, a kernel thread, a process that has ended).
QString programOf(qint64 pid);
// The short command name the kernel keeps for the process, or "".
QString commandOf(qint64 pid);

} // namespace Processes
