#include "GrepReplace.h"

#include "StringAdditions.h"
#include "SystemLog.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

using ROZ_NSStringAdditions::snr;

namespace GrepReplace {

QString escapeString(const QString &text)
{
    return snr(snr(text, QStringLiteral("/"), QStringLiteral("\\/")), QStringLiteral("\""), QStringLiteral("\\\""));
}

QString escapeStringT(const QString &text)
{
    const QString backslashes = snr(text, QStringLiteral("\\"), QStringLiteral("\\\\"));
    return escapeString(backslashes);
}

QString program(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase)
{
    // Joined piece by piece: the pieces may hold "%" of their own.
    return QStringLiteral("$x = \"") + escapeStringT(text) + QStringLiteral("\"; $x =~ s/") + escapeString(pattern)
           + u'/' + escapeString(replacement) + QStringLiteral("/g") + (consideringCase ? QString() : QStringLiteral("i"))
           + QStringLiteral("; print $x;");
}

QString snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase,
                const std::function<QVariant(const QString &)> &executePerl)
{
    const QVariant result = executePerl(program(text, pattern, replacement, consideringCase));
    return result.typeId() == QMetaType::QString ? result.toString() : text;
}

QVariant runPERL(const QStringList &arguments)
{
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0)
        return false;
    std::vector<QByteArray> words = {QByteArrayLiteral("/usr/bin/perl")};
    for (const QString &argument : arguments)
        words.push_back(argument.toUtf8());
    std::vector<char *> argv;
    for (QByteArray &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    pid_t pid = -1;
    const int status = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    if (status != 0) {
        close(output[0]);
        SystemLog::write(QStringLiteral("runTask Error: NSInvalidArgumentException: launch path not accessible: "
                                        "/usr/bin/perl: ")
                         + QString::fromLocal8Bit(strerror(status)));
        return false;
    }
    QByteArray printed;
    char buffer[65536];
    for (;;) {
        const ssize_t got = read(output[0], buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        printed.append(buffer, got);
    }
    close(output[0]);
    int exit = 0;
    while (waitpid(pid, &exit, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(exit) || WEXITSTATUS(exit) != 0)
        return false;
    return ROZ_NSStringAdditions::trimFromEnd(QString::fromUtf8(printed), {QStringLiteral("\n")});
}

} // namespace GrepReplace
