#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <mutex>
#include <optional>
#include <sys/types.h>
#include <vector>

// One long-lived perl process that runs programs as `perl -e PROGRAM` would
// and answers what they print. The programs it runs may do no more than
// Perl's default safe operations and print: no system calls, files,
// processes or modules. A program that runs past the time limit (a
// catastrophic pattern, an endless loop) fails, and the worker is replaced.
class PerlWorker {
public:
    explicit PerlWorker(int timeoutMs = 2000);
    ~PerlWorker();
    PerlWorker(const PerlWorker &) = delete;
    PerlWorker &operator=(const PerlWorker &) = delete;

    // The program's output, or nullopt when it failed to compile or run.
    // Programs and their output are characters: Perl matches letters, not
    // bytes, and a name's bytes that are not UTF-8 come back as they went.
    std::optional<QString> run(const QString &program);
    // Many programs at once, sent while earlier answers come back: a batch
    // costs the programs' own time, not a round trip each.
    std::vector<std::optional<QString>> runAll(const QStringList &programs);
    // Each program's output, or why it failed in Perl's words (a pattern
    // that does not compile, a program that runs too long).
    struct Answer {
        std::optional<QString> output;
        QString failure;
    };
    std::vector<Answer> answersOf(const QStringList &programs);
    // Why the program fails; nullopt when it runs.
    std::optional<QString> failureOf(const QString &program);

    // The one worker of this process.
    static PerlWorker &shared();

private:
    bool start();
    void stop();
    struct Response {
        bool ok;
        QByteArray output;
        bool garbled;
    };
    std::optional<Response> takeResponse();
    struct Progress {
        bool started;    // a worker was there to ask
        size_t answered; // programs before this one have their answers
        size_t sent;     // programs before this one were sent whole
    };
    std::vector<std::optional<QByteArray>> runAll(const std::vector<QByteArray> &programs,
                                                  std::vector<QByteArray> *failures);
    Progress exchange(const std::vector<QByteArray> &programs, size_t first, size_t last,
                      std::vector<std::optional<QByteArray>> &results, std::vector<QByteArray> *failures);

    int m_timeoutMs;
    pid_t m_pid = -1;
    int m_toPerl = -1;
    int m_fromPerl = -1;
    QByteArray m_pending;
    qsizetype m_taken = 0; // answers before this position are taken
    std::mutex m_lock;
};
