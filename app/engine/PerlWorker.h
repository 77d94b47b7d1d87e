#pragma once

#include <QByteArray>
#include <mutex>
#include <optional>
#include <sys/types.h>

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
    std::optional<QByteArray> run(const QByteArray &program);

    // The one worker of this process.
    static PerlWorker &shared();

private:
    bool start();
    void stop();
    bool readExactly(QByteArray &into, qsizetype count, qint64 deadline);
    bool readLine(QByteArray &into, qint64 deadline);

    int m_timeoutMs;
    pid_t m_pid = -1;
    int m_toPerl = -1;
    int m_fromPerl = -1;
    QByteArray m_pending;
    std::mutex m_lock;
};
