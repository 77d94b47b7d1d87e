#pragma once

#include <QString>

// The system log is the process's standard error: one line per entry with
// date, time, program name and process id in front.
namespace SystemLog {

void write(const QString &message);

// Interprets `format` as a printf-style format that was given no arguments.
// "%%" prints "%"; "%@" and "%s" print "(null)"; a numeric directive prints
// zero with its flags, width and precision; "%c" prints nothing. Text that is
// not a complete directive stays as it is. No argument is ever read.
QString formatWithoutArguments(const QString &format);

} // namespace SystemLog
