#include "CliReport.h"

#include "JsonString.h"
#include "PathCodec.h"

#include <unistd.h>

namespace CliReport {

namespace {

const char *statusName(SafeMover::Status status, bool applied)
{
    switch (status) {
    case SafeMover::Status::Renamed:
        return applied ? "renamed" : "rename";
    case SafeMover::Status::Unchanged:
        return "unchanged";
    case SafeMover::Status::Conflict:
        return "conflict";
    case SafeMover::Status::Failed:
        return "failed";
    }
    return "";
}

// The new name as the rule made it, "/" and all.
QString newName(const SafeMover::Move &move)
{
    const QString folder = move.from.left(move.from.lastIndexOf(u'/') + 1);
    return move.to.startsWith(folder) ? move.to.mid(folder.size()) : move.to;
}

const QString howToGoOn = QStringLiteral("nomen-cli --finish completes it; nomen-cli --roll-back puts its files back "
                                         "under their old names");

} // namespace

void say(FILE *stream, const QString &text)
{
    const QByteArray bytes = PathCodec::encode(text + u'\n');
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

int rows(const std::vector<SafeMover::Outcome> &outcomes, bool json, bool applied, const Batch::TableRows &table)
{
    int conflicts = 0;
    int failures = 0;
    // Written in blocks: a hundred thousand rows are a hundred thousand lines,
    // each made in one buffer.
    QByteArray out;
    QString line;
    const auto flush = [&out] {
        std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
        out.clear();
    };
    if (json)
        out += "[";
    for (size_t i = 0; i < outcomes.size(); ++i) {
        const SafeMover::Outcome &outcome = outcomes[i];
        conflicts += outcome.status == SafeMover::Status::Conflict;
        failures += outcome.status == SafeMover::Status::Failed;
        const QLatin1String status(statusName(outcome.status, applied));
        line.resize(0);
        if (json) {
            const SafeMover::Move move = table.moveOf(outcome);
            line = (i ? QStringLiteral(",\n  {\"from\": ") : QStringLiteral("\n  {\"from\": ")) + JsonString::quoted(move.from)
                   + QStringLiteral(", \"to\": ") + JsonString::quoted(move.to) + QStringLiteral(", \"status\": \"") + status
                   + QStringLiteral("\", \"reason\": ") + JsonString::quoted(outcome.reason);
            if (!outcome.warning.isEmpty())
                line += QStringLiteral(", \"warning\": ") + JsonString::quoted(outcome.warning);
            line += u'}';
        } else {
            line += status;
            for (qsizetype width = status.size(); width < 9; ++width)
                line += u' ';
            line += QLatin1String("  ");
            if (const ItemRecord *row = table.rowOf(outcome)) {
                line += row->location;
                line += row->name;
                line += QLatin1String(" -> ");
                line += (*table.newNames)[outcome.row];
            } else {
                const SafeMover::Move move = table.moveOf(outcome);
                line += move.from;
                line += QLatin1String(" -> ");
                line += newName(move);
            }
            if (!outcome.reason.isEmpty())
                line += QStringLiteral("  (") + outcome.reason + u')';
            if (!outcome.warning.isEmpty())
                line += QStringLiteral("  (warning: ") + outcome.warning + u')';
            line += u'\n';
        }
        out += PathCodec::encode(line);
        if (out.size() > (1 << 16))
            flush();
    }
    if (json)
        out += outcomes.empty() ? "]\n" : "\n]\n";
    flush();
    if (!json)
        say(stdout, QStringLiteral("%1 rows, %2 conflicts, %3 failures%4").arg(outcomes.size()).arg(conflicts).arg(failures)
                        .arg(applied ? QString() : QStringLiteral(" (dry run: nothing renamed; --apply to rename)")));
    return failures ? Failures : conflicts ? Conflicts : Success;
}

int refusal(SafeMover::Refusal refusal, const QString &text)
{
    switch (refusal) {
    case SafeMover::Refusal::None:
        return Success;
    case SafeMover::Refusal::Busy:
        say(stderr, QStringLiteral("nomen-cli: ") + text);
        return Busy;
    case SafeMover::Refusal::Pending:
        say(stderr, QStringLiteral("nomen-cli: %1: %2.").arg(text, howToGoOn));
        return Refused;
    case SafeMover::Refusal::Distrusted:
        say(stderr, QStringLiteral("nomen-cli: %1. Check the files it names, then move it out of the way to go on.").arg(text));
        return Refused;
    case SafeMover::Refusal::NoJournal:
        say(stderr, QStringLiteral("nomen-cli: ") + text);
        return Failures;
    }
    return Failures;
}

int report(const SafeMover::Report &report, bool json, const Batch::TableRows &table)
{
    if (report.refusal != SafeMover::Refusal::None)
        return refusal(report.refusal, report.refusalText);
    const int code = rows(report.outcomes, json, true, table);
    if (!report.notice.isEmpty())
        say(stderr, QStringLiteral("nomen-cli: ") + report.notice);
    if (report.interrupted) {
        say(stderr, QStringLiteral("nomen-cli: interrupted between two moves; the batch is pending: ") + howToGoOn);
        return Interrupted;
    }
    return code;
}

ProgressBar::ProgressBar(SafeMover &mover) : m_mover(mover)
{
    if (!isatty(STDERR_FILENO))
        return;
    m_clock.start();
    mover.progress = [this](size_t done, size_t total) { show(done, total); };
}

ProgressBar::~ProgressBar()
{
    m_mover.progress = nullptr;
    if (m_drawn)
        std::fputs("\r\033[K", stderr);
}

void ProgressBar::show(size_t done, size_t total)
{
    if (total < 1000 || (done != total && m_clock.elapsed() - m_last < 100))
        return;
    m_last = m_clock.elapsed();
    const int width = 40;
    const int filled = int(done * width / total);
    std::fprintf(stderr, "\r[%s%s] %3d%%  %zu/%zu", QByteArray(filled, '#').constData(),
                 QByteArray(width - filled, ' ').constData(), int(done * 100 / total), done, total);
    std::fflush(stderr);
    m_drawn = true;
}

} // namespace CliReport
