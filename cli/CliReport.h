#pragma once

#include "SafeMover.h"

#include <QElapsedTimer>
#include <QString>
#include <cstdio>
#include <functional>
#include <vector>

// What nomen-cli prints: one line per row (or JSON), a summary, and what to
// do about a batch that was refused or cut short. Names are written byte
// for byte, as the file system holds them.
namespace CliReport {

enum ExitCode { Success = 0, Conflicts = 1, Failures = 2, Refused = 3, Usage = 64, NoInput = 66, Busy = 75, Interrupted = 130 };

void say(FILE *stream, const QString &text);

// The rows and a summary line; the exit code they call for. A table's
// outcomes are told where their items are by its rows.
int rows(const std::vector<SafeMover::Outcome> &outcomes, bool json, bool applied, const Batch::TableRows &table = {});
// A whole report of the mover: a refusal, the rows, an interruption.
int report(const SafeMover::Report &report, bool json, const Batch::TableRows &table = {});
// Why nothing can be renamed, with what to do next; its exit code.
int refusal(SafeMover::Refusal refusal, const QString &text);

// A bar on the terminal for long batches, redrawn at most ten times a
// second; nothing when standard error is not a terminal.
class ProgressBar {
public:
    explicit ProgressBar(SafeMover &mover);
    ~ProgressBar();

private:
    void show(size_t done, size_t total);

    SafeMover &m_mover;
    QElapsedTimer m_clock;
    qint64 m_last = -1000;
    bool m_drawn = false;
};

} // namespace CliReport
