#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <sys/types.h>

// A tool started with empty input whose standard output (and, when asked,
// standard error) is read to its end.
struct ChildOutput {
    pid_t pid = -1;
    QByteArray output;
    int launchError = 0; // errno-style; 0 when it started

    static ChildOutput read(const QString &launchPath, const QStringList &arguments, bool withStandardError);
    // The exit status, once the output has ended; nullopt if it was not a normal exit.
    std::optional<int> wait() const;
    // Reaped aside, so the caller need not wait.
    void reapAside() const;
};
