#include "ChildOutput.h"
#include "SpawnArguments.h"

#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char **environ;

ChildOutput ChildOutput::read(const QString &launchPath, const QStringList &arguments, bool withStandardError)
{
    ChildOutput child;
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0) {
        child.launchError = errno;
        return child;
    }
    const SpawnArguments words(launchPath, arguments);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    if (withStandardError)
        posix_spawn_file_actions_adddup2(&actions, output[1], STDERR_FILENO);
    child.launchError = posix_spawn(&child.pid, words.argv()[0], &actions, nullptr, words.argv(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    if (child.launchError != 0) {
        close(output[0]);
        child.pid = -1;
        return child;
    }
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(output[0], buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        child.output.append(buffer, got);
    }
    close(output[0]);
    return child;
}

std::optional<int> ChildOutput::wait() const
{
    if (pid < 0)
        return std::nullopt;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

void ChildOutput::reapAside() const
{
    if (pid < 0)
        return;
    std::thread([pid = pid] {
        int ignored = 0;
        waitpid(pid, &ignored, 0);
    }).detach();
}
