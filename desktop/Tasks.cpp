#include "MiscMethods.h"
#include "ErrnoText.h"

#include "NamedException.h"
#include "PathCodec.h"
#include "SpawnArguments.h"
#include "StringAdditions.h"
#include "SystemLog.h"

#include <QStringDecoder>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace {

struct Pipe {
    int read = -1;
    int write = -1;

    Pipe()
    {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0)
            throw NamedException(QStringLiteral("NSFileHandleOperationException"),
                                 QStringLiteral("cannot create a pipe: %1").arg(errnoText(errno)));
        read = fds[0];
        write = fds[1];
    }
    ~Pipe()
    {
        closeRead();
        closeWrite();
    }
    void closeRead()
    {
        if (read >= 0)
            ::close(read);
        read = -1;
    }
    void closeWrite()
    {
        if (write >= 0)
            ::close(write);
        write = -1;
    }
};

pid_t launch(const QString &launchPath, const QStringList &arguments, const QString &directory, Pipe &input,
             Pipe &output)
{
    const QByteArray path = PathCodec::encode(launchPath);
    if (path.isEmpty() || access(path.constData(), X_OK) != 0)
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("launch path not accessible: %1: %2")
                                 .arg(launchPath, errnoText(path.isEmpty() ? ENOENT : errno)));
    const QByteArray cwd = PathCodec::encode(directory);
    if (access(cwd.constData(), X_OK) != 0)
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("working directory doesn't exist: %1").arg(directory));

    const SpawnArguments words(launchPath, arguments);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.read, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.write, STDERR_FILENO);
    posix_spawn_file_actions_addchdir_np(&actions, cwd.constData());
    // We ignore SIGPIPE to survive a tool that stops reading; the tool gets
    // the default back.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t pid = -1;
    const int status = posix_spawn(&pid, path.constData(), &actions, &attributes, words.argv(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (status != 0)
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("launch failed: %1: %2").arg(launchPath, errnoText(status)));
    return pid;
}

// How many bytes at the end begin a UTF-8 character that the bytes do not
// finish: a lead byte within the last three with too few followers.
qsizetype cutCharacter(QByteArrayView bytes)
{
    for (qsizetype back = 1; back <= 3 && back <= bytes.size(); ++back) {
        const auto c = static_cast<unsigned char>(bytes[bytes.size() - back]);
        if ((c & 0xC0) == 0x80)
            continue; // a continuation byte: look further back
        if (c < 0xC2 || c > 0xF4)
            return 0; // no lead byte: nothing begun
        const qsizetype length = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : 2;
        return length > back ? back : 0;
    }
    return 0;
}

void appendIfUtf8(QString &result, QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    if (!decoder.hasError())
        result += text;
}

// Feeds standard input while reading the output, so a tool that writes a lot
// before it reads cannot block on a full pipe. Reading ends when every
// writer has closed the output.
QString exchange(Pipe &input, Pipe &output, const QByteArray &toSend)
{
    QString result = GlobalKeys::blankStringKey;
    qsizetype sent = 0;
    if (toSend.isEmpty())
        input.closeWrite();
    else
        fcntl(input.write, F_SETFL, fcntl(input.write, F_GETFL) | O_NONBLOCK);
    char buffer[65536];
    QByteArray carried;
    for (;;) {
        pollfd fds[2] = {{output.read, POLLIN, 0}, {input.write, POLLOUT, 0}};
        const nfds_t count = input.write >= 0 ? 2 : 1;
        if (poll(fds, count, -1) < 0) {
            if (errno == EINTR)
                continue;
            break;
        }
        if (count == 2 && (fds[1].revents & (POLLOUT | POLLERR | POLLHUP))) {
            const ssize_t written = ::write(input.write, toSend.constData() + sent, size_t(toSend.size() - sent));
            if (written > 0)
                sent += written;
            if (written < 0 && errno != EAGAIN && errno != EINTR)
                sent = toSend.size(); // the tool closed its input: the rest is not wanted
            if (sent >= toSend.size())
                input.closeWrite();
        }
        if (fds[0].revents & (POLLIN | POLLHUP | POLLERR)) {
            const ssize_t got = ::read(output.read, buffer, sizeof buffer);
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                break;
            // Each read is decoded on its own and dropped when it is not
            // UTF-8; a character the read's end cut in two goes on to the
            // next read, so only output that really is not UTF-8 is lost.
            carried.append(buffer, got);
            const qsizetype whole = carried.size() - cutCharacter(carried);
            appendIfUtf8(result, QByteArrayView(carried).first(whole));
            carried.remove(0, whole);
        }
    }
    appendIfUtf8(result, carried);
    return result;
}

// The output has ended; the tool may still be running. It is reaped now if
// it has finished, otherwise in the background, so it never lingers as a
// zombie and the call never waits for it.
void reap(pid_t pid)
{
    // Most tools exit right as their output ends: a few short looks catch
    // them without a thread.
    int status = 0;
    for (int look = 0; look < 20; ++look) {
        if (waitpid(pid, &status, WNOHANG) != 0)
            return;
        usleep(500);
    }
        std::thread([pid] {
            int ignored = 0;
            waitpid(pid, &ignored, 0);
        }).detach();
}

} // namespace

QString MiscMethods::runTask(const QString &launchPath, const std::optional<QStringList> &arguments,
                                 const std::optional<QString> &data, const QString &workingDirectory)
{
    static const bool sigpipeIgnored = [] { return signal(SIGPIPE, SIG_IGN) != SIG_ERR; }();
    Q_UNUSED(sigpipeIgnored);
    QString result;
    try {
        // Blank here also covers a directory of spaces, which no one means.
        const QString directory = workingDirectory.trimmed().isEmpty() ? QStringLiteral(".") : workingDirectory;
        QStringList argumentList;
        QByteArray input;
        if (arguments && !arguments->isEmpty()) {
            argumentList = *arguments;
            input = data.value_or(QString()).toUtf8();
        } else {
            if (!data)
                throw NamedException(NSInvalidArgumentException,
                                     QStringLiteral("*** -[NSArray initWithObjects:count:]: attempt to insert nil object "
                                                    "from objects[0]"));
            argumentList = {*data};
        }
        Pipe inputPipe;
        Pipe outputPipe;
        const pid_t pid = launch(launchPath, argumentList, directory, inputPipe, outputPipe);
        inputPipe.closeRead();
        outputPipe.closeWrite();
        result = exchange(inputPipe, outputPipe, input);
        reap(pid);
    } catch (const NamedException &exception) {
        result = QStringLiteral("runTask Error: %1: %2").arg(exception.name(), exception.reason());
        SystemLog::write(result);
    }
    return StringAdditions::trimFromEnd(result, {QStringLiteral("\n")});
}
