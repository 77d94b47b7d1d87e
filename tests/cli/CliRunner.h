#pragma once

#include "PathCodec.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include "TemporaryFolder.h"

// Runs nomen-cli with a private data folder (its journals), as a user would.
struct CliRun {
    int exitCode = -1;
    bool crashed = false;
    QString out;
    QString err;
};

class CliRunner {
public:
    TemporaryFolder data;
    QString workingDirectory;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

    CliRunner() { environment.insert(QStringLiteral("XDG_DATA_HOME"), data.path()); }

    QString journals() const { return data.path() + QStringLiteral("/nomen"); }

    // With the fault library loaded: a signal after `renames` renames.
    void signalAfter(int renames, int signal = 9)
    {
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(NOMEN_FAULTS_LIBRARY));
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           environment.value(QStringLiteral("ASAN_OPTIONS")) + QStringLiteral(":verify_asan_link_order=0"));
        environment.insert(QStringLiteral("NOMEN_FAULT_SIGNAL_AFTER"), QString::number(renames));
        environment.insert(QStringLiteral("NOMEN_FAULT_SIGNAL"), QString::number(signal));
    }
    void noFaults()
    {
        for (const char *name : {"LD_PRELOAD", "NOMEN_FAULT_SIGNAL_AFTER", "NOMEN_FAULT_SIGNAL", "NOMEN_FAULT_NO_REPLACE_FLAG"})
            environment.remove(QString::fromLatin1(name));
    }

    CliRun run(const QStringList &arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        if (!workingDirectory.isEmpty())
            process.setWorkingDirectory(workingDirectory);
        process.start(QStringLiteral(NOMEN_CLI_PATH), arguments);
        process.waitForFinished(60000);
        return {process.exitCode(), process.exitStatus() == QProcess::CrashExit,
                PathCodec::decode(process.readAllStandardOutput()), PathCodec::decode(process.readAllStandardError())};
    }
};
