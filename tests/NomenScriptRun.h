#pragma once

// Runs of nomen-script for tests that drive selectors the way a user's
// script does. The including target defines NOMEN_SCRIPT_PATH.

#include <QFile>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

namespace {

struct ScriptRun {
    int exitCode;
    QString out;
    QString err;
};

// Runs nomen-script in UTC, with these variables set (an empty value
// removes one).
inline ScriptRun nomenScript(const QStringList &arguments, const QMap<QString, QString> &variables = {})
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable) {
        if (variable.value().isEmpty())
            environment.remove(variable.key());
        else
            environment.insert(variable.key(), variable.value());
    }
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(NOMEN_SCRIPT_PATH), arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(30000))
        return {-1, QString(), QStringLiteral("timed out")};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

inline void writeFile(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(contents);
}

inline QString readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace
