#include "PerlWorker.h"

#include "PathCodec.h"

#include <QList>
#include <QRegularExpression>

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
# Names of characters (\N{GREEK SMALL LETTER ALPHA}) are looked up in
# tables loaded now, as perl loads them for a program of its own; later
# programs may not load anything.
use charnames ':full', ':short';
{ my $named = "\N{GREEK SMALL LETTER ALPHA}"; }
binmode STDIN; binmode STDOUT;
# Programs arrive as UTF-8 and run as characters, so ".", "\w", classes and
# case folding see letters, not bytes; what they print goes back as UTF-8.
# Lone surrogates (a name's bytes that are not UTF-8) travel as Perl's own
# three bytes each way.
my $output = '';
open(my $capture, '>:utf8', \$output) or die;
$SIG{__WARN__} = sub {};
my %compiled;
my $why = '';
sub run_sandboxed {
    local $@;
    eval "package Sandbox;\n#line 1\n" . $_[0];
    $why = $@;
    return $@ ? 1 : 0;
}
# The composer's programs differ only in their text. When the text cannot
# interpolate anything and the pattern and replacement run no code, the
# substitution is compiled once and reused: it does exactly what the whole
# program would, and keeps no state between names.
sub run_substitution {
    my ($program) = @_;
    return undef unless $program =~ m{\A\$x = "((?:[^"\\\$\@]|\\.)*)"; \$x =~ s/((?:[^/\\]|\\.)*)/((?:[^/\\]|\\.)*)/g(i?); print \$x;\z}s;
    my ($text, $pattern, $replacement, $flags) = ($1, $2, $3, $4);
    for ($pattern, $replacement) {
        return undef if /[\@{]/ || /\$(?![0-9&])/ || /\(\?\??\{/;
    }
    $text =~ s/\\(.)/$1/gs;
    my $key = "$flags\0$pattern\0$replacement";
    %compiled = () if keys(%compiled) > 64;
    my $code = $compiled{$key};
    unless ($code) {
        local $@;
        $code = eval "package Sandbox;\n#line 1\nsub { \$x = \$_[0]; \$x =~ s/$pattern/$replacement/g$flags; print \$x; }";
        $why = $@, return 1 unless $code;
        $compiled{$key} = $code;
    }
    local $@;
    eval { $code->($text); 1 } or do { $why = $@; return 1 };
    return 0;
}
# Requests are read in blocks and answered in blocks: everything that has
# arrived is worked through before the answers go out together.
sub flush_answers {
    while (length $_[0]) {
        my $written = syswrite(STDOUT, $_[0]);
        return 0 unless $written;
        substr($_[0], 0, $written) = '';
    }
    return 1;
}
sub serve {
    my ($in, $out) = ('', '');
    for (;;) {
        while ($in =~ /\A(\d+)\n/) {
            my ($length, $start) = ($1, length($1) + 1);
            last if length($in) < $start + $length;
            my $program = substr($in, $start, $length);
            substr($in, 0, $start + $length) = '';
            utf8::decode($program);
            $output = '';
            seek($capture, 0, 0);
            my $previous = select($capture);
            my $failed = run_substitution($program);
            # Only a whole program can leave names behind; empty its package after it.
            unless (defined $failed) {
                $failed = run_sandboxed($program);
                undef %Sandbox::;
            }
            select($previous);
            # A failed program answers why, in Perl's words.
            if ($failed) {
                $output = $why;
                utf8::encode($output);
            }
            $out .= "$failed " . length($output) . "\n" . $output;
        }
        return if length($in) && $in !~ /\A\d*\z/ && $in !~ /\A\d+\n/;
        return unless flush_answers($out);
        return unless sysread(STDIN, $in, 1 << 20, length $in);
    }
}
opmask_add(invert_opset(opset(':default', 'print')));
serve();
)PERL";

// Perl's message in one line, without where in the worker it was found.
QString inOneLine(const QString &message)
{
    QString line = message.left(message.indexOf(u'\n'));
    static const QRegularExpression where(QStringLiteral("\\s+at \\(eval \\d+\\) line \\d+(\\.$)?"));
    line.remove(where);
    return line.trimmed();
}

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
    fcntl(m_toPerl, F_SETFL, fcntl(m_toPerl, F_GETFL) | O_NONBLOCK);
    m_pending.clear();
    m_taken = 0;
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
    m_taken = 0;
}

// A whole response in the pending bytes: "STATUS LENGTH\n" and the output.
// Answers are taken from a read position, not cut from the front, so a
// batch's many answers cost no copying of what follows them.
std::optional<PerlWorker::Response> PerlWorker::takeResponse()
{
    const qsizetype end = m_pending.indexOf('\n', m_taken);
    if (end < 0) {
        m_pending.remove(0, m_taken);
        m_taken = 0;
        return std::nullopt;
    }
    const QByteArrayView header(m_pending.constData() + m_taken, end - m_taken);
    const qsizetype space = header.indexOf(' ');
    bool sized = space > 0;
    const qsizetype length = sized ? header.sliced(space + 1).toLongLong(&sized) : 0;
    if (!sized)
        return Response{false, {}, true};
    if (m_pending.size() < end + 1 + length)
        return std::nullopt;
    Response response{header.first(space) == "0", m_pending.mid(end + 1, length), false};
    m_taken = end + 1 + length;
    return response;
}

std::optional<QString> PerlWorker::run(const QString &program)
{
    return std::move(answersOf({program}).front().output);
}

std::vector<std::optional<QString>> PerlWorker::runAll(const QStringList &programs)
{
    std::vector<std::optional<QString>> outputs;
    outputs.reserve(size_t(programs.size()));
    for (Answer &answer : answersOf(programs))
        outputs.push_back(std::move(answer.output));
    return outputs;
}

std::optional<QString> PerlWorker::failureOf(const QString &program)
{
    Answer answer = std::move(answersOf({program}).front());
    if (answer.output)
        return std::nullopt;
    return answer.failure;
}

std::vector<PerlWorker::Answer> PerlWorker::answersOf(const QStringList &programs)
{
    std::vector<QByteArray> sent;
    sent.reserve(size_t(programs.size()));
    for (const QString &program : programs)
        sent.push_back(PathCodec::encodeKeepingSurrogates(program));
    std::vector<QByteArray> failures(sent.size());
    const std::vector<std::optional<QByteArray>> printed = runAll(sent, &failures);
    std::vector<Answer> answers(sent.size());
    for (size_t i = 0; i < sent.size(); ++i) {
        if (printed[i])
            answers[i].output = PathCodec::decodeKeepingSurrogates(*printed[i]);
        else if (failures[i].isEmpty())
            answers[i].failure = QStringLiteral("Perl gave no answer in time");
        else
            answers[i].failure = inOneLine(PathCodec::decodeKeepingSurrogates(failures[i]));
    }
    return answers;
}

std::vector<std::optional<QByteArray>> PerlWorker::runAll(const std::vector<QByteArray> &programs,
                                                          std::vector<QByteArray> *failures)
{
    std::lock_guard guard(m_lock);
    static const bool sigpipeIgnored = [] { return signal(SIGPIPE, SIG_IGN) != SIG_ERR; }();
    Q_UNUSED(sigpipeIgnored);
    std::vector<std::optional<QByteArray>> results(programs.size());
    size_t next = 0;
    while (next < programs.size()) {
        const Progress progress = exchange(programs, next, programs.size(), results, failures);
        if (!progress.started) {
            // No perl to run them: they all fail, and say so.
            for (size_t i = next; failures && i < programs.size(); ++i)
                (*failures)[i] = "/usr/bin/perl could not be started";
            break;
        }
        next = progress.answered;
        if (next == programs.size())
            break;
        // Answers come in blocks, so a program that ran away held back the
        // answers of those sent with it: they go again one at a time, and
        // only the runaway one fails.
        const size_t window = std::max(progress.sent, next + 1);
        for (; next < window; ++next)
            exchange(programs, next, next + 1, results, failures);
    }
    return results;
}

// Sends programs [first, last) while reading their answers into `results`.
// On a timeout or a broken worker it stops the worker and says how far the
// answers and the sending got.
PerlWorker::Progress PerlWorker::exchange(const std::vector<QByteArray> &programs, size_t first, size_t last,
                                          std::vector<std::optional<QByteArray>> &results,
                                          std::vector<QByteArray> *failures)
{
    if (m_pid < 0 && !start())
        return {false, first, first};
    QByteArray outgoing;
    std::vector<qsizetype> ends;
    for (size_t i = first; i < last; ++i) {
        outgoing += QByteArray::number(programs[i].size()) + '\n' + programs[i];
        ends.push_back(outgoing.size());
    }
    qsizetype sent = 0;
    size_t answered = first;
    qint64 deadline = now() + m_timeoutMs;
    bool broken = false;
    while (answered < last && !broken) {
        while (const auto response = takeResponse()) {
            if (response->garbled) {
                broken = true;
                break;
            }
            if (response->ok)
                results[answered] = response->output;
            else if (failures)
                (*failures)[answered] = response->output;
            ++answered;
            deadline = now() + m_timeoutMs;
        }
        if (broken || answered == last)
            break;
        const qint64 left = deadline - now();
        if (left <= 0) {
            broken = true;
            break;
        }
        pollfd fds[2] = {{m_fromPerl, POLLIN, 0}, {m_toPerl, POLLOUT, 0}};
        const nfds_t count = sent < outgoing.size() ? 2 : 1;
        if (poll(fds, count, int(left)) < 0 && errno != EINTR) {
            broken = true;
            break;
        }
        if (count == 2 && (fds[1].revents & (POLLOUT | POLLERR | POLLHUP))) {
            const ssize_t written = write(m_toPerl, outgoing.constData() + sent, size_t(outgoing.size() - sent));
            if (written > 0)
                sent += written;
            else if (errno != EAGAIN && errno != EINTR)
                broken = true;
        }
        if (fds[0].revents & (POLLIN | POLLHUP | POLLERR)) {
            char buffer[65536];
            const ssize_t got = read(m_fromPerl, buffer, sizeof buffer);
            if (got > 0)
                m_pending.append(buffer, got);
            else if (got == 0 || (errno != EAGAIN && errno != EINTR))
                broken = true;
        }
    }
    if (broken)
        stop();
    size_t fullySent = first;
    while (fullySent < last && ends[fullySent - first] <= sent)
        ++fullySent;
    return {true, answered, fullySent};
}
