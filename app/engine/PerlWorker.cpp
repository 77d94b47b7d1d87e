#include "PerlWorker.h"

#include <QList>

#include <QElapsedTimer>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

// The worker's loop is compiled first; then the operation mask is added for
// good, so every program compiled after it is held to the safe set. Each
// program runs in a package of its own that is emptied afterwards, so
// nothing one program defines reaches the next.
const char *const driver = R"PERL(
use Opcode qw(opmask_add invert_opset opset);
use PerlIO::scalar;
{ my $warm = "\x{e9}a1 "; $warm =~ s/\p{L}|\p{Lu}|\p{Digit}|\w|\s|\d/x/gi; my $lower = lc($warm) . uc($warm) . ucfirst($warm); }
binmode STDIN; binmode STDOUT; $| = 1;
my $output = '';
open(my $capture, '>', \$output) or die;
sub run_sandboxed {
    local $@;
    eval "package Sandbox;\n#line 1\n" . $_[0];
    return $@ ? 1 : 0;
}
sub serve {
    while (defined(my $header = <STDIN>)) {
        last unless $header =~ /^(\d+)$/;
        my $length = $1;
        my $program = '';
        while (length($program) < $length) {
            last unless read(STDIN, $program, $length - length($program), length($program));
        }
        $output = '';
        seek($capture, 0, 0);
        my $previous = select($capture);
        my $failed = run_sandboxed($program);
        select($previous);
        undef %Sandbox::;
        print STDOUT "$failed ", length($output), "\n", $output;
    }
}
opmask_add(invert_opset(opset(':default', 'print')));
serve();
)PERL";

constexpr rlim_t memoryLimit = rlim_t(1) << 30;

qint64 now()
{
    static QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return clock.elapsed();
}

} // namespace

PerlWorker::PerlWorker(int timeoutMs) : m_timeoutMs(timeoutMs) {}

PerlWorker::~PerlWorker()
{
    stop();
}

PerlWorker &PerlWorker::shared()
{
    static PerlWorker worker;
    return worker;
}

bool PerlWorker::start()
{
    int toPerl[2];
    int fromPerl[2];
    if (pipe2(toPerl, O_CLOEXEC) != 0)
        return false;
    if (pipe2(fromPerl, O_CLOEXEC) != 0) {
        close(toPerl[0]);
        close(toPerl[1]);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, toPerl[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fromPerl[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    char perl[] = "/usr/bin/perl";
    char flag[] = "-e";
    char *argv[] = {perl, flag, const_cast<char *>(driver), nullptr};
    const int status = posix_spawn(&m_pid, perl, &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(toPerl[0]);
    close(fromPerl[1]);
    if (status != 0) {
        close(toPerl[1]);
        close(fromPerl[0]);
        m_pid = -1;
        return false;
    }
    // A program that tries to eat the machine's memory fails instead.
    const rlimit limit{memoryLimit, memoryLimit};
    prlimit(m_pid, RLIMIT_AS, &limit, nullptr);
    m_toPerl = toPerl[1];
    m_fromPerl = fromPerl[0];
    m_pending.clear();
    return true;
}

void PerlWorker::stop()
{
    if (m_toPerl >= 0)
        close(m_toPerl);
    if (m_fromPerl >= 0)
        close(m_fromPerl);
    m_toPerl = m_fromPerl = -1;
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        int status = 0;
        while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    m_pid = -1;
    m_pending.clear();
}

bool PerlWorker::readLine(QByteArray &into, qint64 deadline)
{
    for (;;) {
        const qsizetype end = m_pending.indexOf('\n');
        if (end >= 0) {
            into = m_pending.left(end);
            m_pending.remove(0, end + 1);
            return true;
        }
        QByteArray more;
        if (!readExactly(more, -1, deadline))
            return false;
    }
}

// Reads `count` bytes into `into` (or, with -1, whatever arrives next into
// the pending buffer) before the deadline.
bool PerlWorker::readExactly(QByteArray &into, qsizetype count, qint64 deadline)
{
    while (count < 0 || m_pending.size() < count) {
        const qint64 left = deadline - now();
        if (left <= 0)
            return false;
        pollfd fd{m_fromPerl, POLLIN, 0};
        const int ready = poll(&fd, 1, int(left));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        char buffer[65536];
        const ssize_t got = read(m_fromPerl, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        m_pending.append(buffer, got);
        if (count < 0)
            return true;
    }
    into = m_pending.left(count);
    m_pending.remove(0, count);
    return true;
}

std::optional<QByteArray> PerlWorker::run(const QByteArray &program)
{
    std::lock_guard guard(m_lock);
    static const bool sigpipeIgnored = [] { return signal(SIGPIPE, SIG_IGN) != SIG_ERR; }();
    Q_UNUSED(sigpipeIgnored);
    if (m_pid < 0 && !start())
        return std::nullopt;
    const QByteArray request = QByteArray::number(program.size()) + '\n' + program;
    for (qsizetype sent = 0; sent < request.size();) {
        const ssize_t written = write(m_toPerl, request.constData() + sent, size_t(request.size() - sent));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            stop();
            return std::nullopt;
        }
        sent += written;
    }
    const qint64 deadline = now() + m_timeoutMs;
    QByteArray header;
    QByteArray output;
    if (!readLine(header, deadline)) {
        stop(); // too slow, or gone: the next program gets a fresh worker
        return std::nullopt;
    }
    const QList<QByteArray> parts = header.split(' ');
    bool sized = parts.size() == 2;
    const qsizetype length = sized ? parts[1].toLongLong(&sized) : 0;
    if (!sized || !readExactly(output, length, deadline)) {
        stop();
        return std::nullopt;
    }
    if (parts[0] != "0")
        return std::nullopt;
    return output;
}
