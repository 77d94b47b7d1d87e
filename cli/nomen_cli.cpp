// nomen-cli: renames the files of folders by a rule, composing exactly what
// the window composes. A dry run by default: it shows the old and new names
// with any conflict; --apply renames through the safe mover, --undo puts
// the last batch back.

#include "BatchRenaming.h"
#include "FolderListing.h"
#include "JsonText.h"
#include "LocalTimeZone.h"
#include "MethodTable.h"
#include "NamedException.h"
#include "RZApplication.h"
#include "RenameEngine.h"
#include "SafeMover.h"
#include "SortFunctions.h"
#include "TablePreview.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

enum ExitCode { Success = 0, Conflicts = 1, Failures = 2, Usage = 64 };

void say(FILE *stream, const QString &text)
{
    const QByteArray bytes = (text + u'\n').toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

qint32 dateChoice(const QString &source)
{
    if (source == QLatin1String("now"))
        return 1;
    if (source == QLatin1String("created"))
        return 2;
    if (source == QLatin1String("modified"))
        return 3;
    return 0;
}

// The rule as the window's controls would give it: the counter padded as
// with the full interface, the extension with its full stop.
QVariantList settingsFrom(const QCommandLineParser &options)
{
    QString extension = options.value("extension");
    if (!extension.isEmpty() && !extension.startsWith(u'.'))
        extension.prepend(u'.');
    return {options.value("prefix"), options.value("start").toInt(), options.value("step").toInt(), true,
            options.value("zeros").toInt(), !options.isSet("no-original"), options.value("search"),
            options.value("replace"), options.isSet("grep") ? QStringLiteral("GREP") : QStringLiteral("literal"),
            !options.isSet("ignore-case"), options.value("trim-start").toInt(), options.value("trim-end").toInt(),
            options.isSet("case"), options.value("case"), options.isSet("strip-diacritics"), options.value("suffix"),
            options.value("start").toInt(), options.value("step").toInt(), true, options.value("zeros").toInt(),
            extension, options.isSet("extension"), options.isSet("ext-case"), options.value("ext-case")};
}

void sortRows(QVariantList &rows, const QString &order)
{
    if (order == QLatin1String("none"))
        return;
    std::stable_sort(rows.begin(), rows.end(), [&](const QVariant &a, const QVariant &b) {
        const QVariantMap x = a.toMap(), y = b.toMap();
        if (order == QLatin1String("date"))
            return x.value("modification").toDateTime() < y.value("modification").toDateTime();
        if (order == QLatin1String("size"))
            return x.value("size").toULongLong() < y.value("size").toULongLong();
        return SortFunctions::stringAsNumberCompare(x.value("location").toString() + x.value("original").toString(),
                                                    y.value("location").toString() + y.value("original").toString()) < 0;
    });
}

// The first option whose value is not one of its choices, as an error
// line; empty when every value is known.
QString unknownChoice(const QCommandLineParser &options)
{
    const QStringList cases = {"UPPERCASE", "lowercase", "Title Case", "Sentence case"};
    const std::pair<QString, QStringList> choices[] = {{"sort", {"name", "date", "size", "none"}},
                                                       {"date-source", {"none", "now", "created", "modified"}},
                                                       {"case", cases},
                                                       {"ext-case", cases}};
    for (const auto &[option, allowed] : choices)
        if (options.isSet(option) && !allowed.contains(options.value(option)))
            return QStringLiteral("nomen-cli: --%1 takes one of: %2").arg(option, allowed.join(QStringLiteral(", ")));
    return {};
}

const char *statusName(SafeMover::Status status)
{
    switch (status) {
    case SafeMover::Status::Renamed:
        return "rename";
    case SafeMover::Status::Unchanged:
        return "unchanged";
    case SafeMover::Status::Conflict:
        return "conflict";
    case SafeMover::Status::Failed:
        return "failed";
    }
    return "";
}

// A bar on the terminal for long batches, redrawn at most ten times a
// second; nothing when standard error is not a terminal.
class ProgressBar {
public:
    explicit ProgressBar(SafeMover &mover)
    {
        if (!isatty(STDERR_FILENO))
            return;
        m_clock.start();
        mover.progress = [this](size_t done, size_t total) { show(done, total); };
    }
    ~ProgressBar()
    {
        if (m_drawn)
            std::fputs("\r\033[K", stderr);
    }

private:
    void show(size_t done, size_t total)
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

    QElapsedTimer m_clock;
    qint64 m_last = -1000;
    bool m_drawn = false;
};

int report(const std::vector<SafeMover::Outcome> &outcomes, bool json, bool applied)
{
    int conflicts = 0;
    int failures = 0;
    QJsonArray rows;
    for (const SafeMover::Outcome &outcome : outcomes) {
        conflicts += outcome.status == SafeMover::Status::Conflict;
        failures += outcome.status == SafeMover::Status::Failed;
        QString status = QString::fromLatin1(statusName(outcome.status));
        if (applied && outcome.status == SafeMover::Status::Renamed)
            status = QStringLiteral("renamed");
        if (json) {
            rows.append(QJsonObject{{"from", outcome.move.from}, {"to", outcome.move.to}, {"status", status},
                                    {"reason", outcome.reason}});
        } else {
            QString line = QStringLiteral("%1  %2 -> %3").arg(status.leftJustified(9), outcome.move.from, outcome.move.to.section(u'/', -1));
            if (!outcome.reason.isEmpty())
                line += QStringLiteral("  (") + outcome.reason + u')';
            say(stdout, line);
        }
    }
    if (json)
        say(stdout, QString::fromUtf8(QJsonDocument(rows).toJson(QJsonDocument::Indented)).trimmed());
    else
        say(stdout, QStringLiteral("%1 rows, %2 conflicts, %3 failures%4").arg(outcomes.size()).arg(conflicts).arg(failures)
                        .arg(applied ? QString() : QStringLiteral(" (dry run: nothing renamed; --apply to rename)")));
    return failures ? Failures : conflicts ? Conflicts : Success;
}

} // namespace

int main(int argc, char **argv)
{
    pinLocalTimeZone();
    QCoreApplication application(argc, argv);
    application.setApplicationName(QStringLiteral("nomen-cli"));
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral(
        "Renames the files of folders by a rule, as the Nomen window does.\n"
        "A dry run unless --apply is given.\n\n"
        "Examples:\n"
        "  nomen-cli --prefix 'Trip «#» ' --zeros 3 --ext-filter jpg ~/Pictures/Trip\n"
        "  nomen-cli --grep --search 'IMG_(\\d+)' --replace 'photo $1' --apply ~/Pictures/Trip\n"
        "  nomen-cli --undo\n\n"
        "Exit codes: 0 success, 1 conflicts, 2 failures, 64 usage."));
    options.addHelpOption();
    options.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("Folders or files to rename."), QStringLiteral("folder..."));
    const QList<QCommandLineOption> list = {
        {"prefix", "Text before the name (tokens: «#» counter, «ƒ» folder, «date FORMAT», «YYYY-MM-DD»...).", "text"},
        {"suffix", "Text after the name, with the same tokens.", "text"},
        {"start", "First counter value.", "n", "1"},
        {"step", "Counter increment.", "n", "1"},
        {"zeros", "Minimum counter digits.", "n", "0"},
        {"no-original", "Leave the original name out."},
        {"search", "Text to search in the name.", "text"},
        {"replace", "Replacement text.", "text"},
        {"grep", "Search with a Perl regular expression."},
        {"ignore-case", "Ignore case in a GREP search."},
        {"trim-start", "Characters dropped from the start (negative empties the name).", "n", "0"},
        {"trim-end", "Characters dropped from the end (negative keeps the last n).", "n", "0"},
        {"case", "UPPERCASE, lowercase, Title Case or Sentence case.", "name"},
        {"strip-diacritics", "Remove accents."},
        {"extension", "New extension.", "ext"},
        {"ext-case", "Case of the extension.", "name"},
        {"date-source", "Date for date tokens: none, now, created or modified.", "source", "none"},
        {"exif", "Take creation dates from the photographs' EXIF data."},
        {"recursive", "Descend into subfolders."},
        {"folders", "Rename the folders below the named ones too, after their contents; files are then renamed only when --type, --ext-filter or --long-names picks them."},
        {"long-names", "With --folders: the files whose names have 32 characters or more."},
        {"ext-filter", "Only these extensions (comma-separated, exact).", "list"},
        {"type", "Only these four-character type codes (comma-separated).", "list"},
        {"sort", "Row order: name (natural), date, size or none (the file system's).", "order", "name"},
        {"apply", "Rename the files (through the safe mover, with undo)."},
        {"undo", "Put the last batch back."},
        {"json", "Answer in JSON."},
    };
    options.addOptions(list);
    options.process(application);

    RZApplication::loadTranslations(application);
    SafeMover mover(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/nomen"));
    if (options.isSet("undo")) {
        std::vector<SafeMover::Outcome> outcomes;
        {
            const ProgressBar bar(mover);
            outcomes = mover.undoLast();
        }
        return report(outcomes, options.isSet("json"), true);
    }
    if (mover.hasUnfinishedBatch()) {
        say(stderr, QStringLiteral("nomen-cli: a batch was interrupted; finishing it first"));
        mover.finishUnfinished();
    }
    if (const QString error = unknownChoice(options); !error.isEmpty()) {
        say(stderr, error);
        return Usage;
    }
    if (options.positionalArguments().isEmpty()) {
        say(stderr, QStringLiteral("nomen-cli: name a folder (see --help)"));
        return Usage;
    }

    const MethodRegistry methods = buildMethodTable();
    try {
        RenameEngine engine(methods, RZApplication::resourceDirectory() + QStringLiteral("/Scripts"));
        engine.use_exif_date = options.isSet("exif");
        std::vector<SafeMover::Move> moves;
        QVariantList rows;
        for (QString root : options.positionalArguments()) {
            while (root.size() > 1 && root.endsWith(u'/'))
                root.chop(1);
            ListingRequest request;
            request.paths = {root};
            request.root = root;
            request.descend = options.isSet("recursive");
            request.folderRows = options.isSet("folders");
            request.longNames = options.isSet("long-names");
            request.extensions = options.value("ext-filter").split(u',', Qt::SkipEmptyParts);
            request.typeCodes = options.value("type").split(u',', Qt::SkipEmptyParts);
            rows += engine.listing().parseItems(request).value_or(QVariantList());
        }
        sortRows(rows, options.value("sort"));
        engine.settings().setConstantData(settingsFrom(options));
        QStringList names;
        for (const QVariant &row : rows)
            names.append(row.toMap().value("original").toString());
        engine.prefetchGrep(names);
        // The batch pass's names; the rows themselves say where each file is.
        const qint32 choice = dateChoice(options.value("date-source"));
        for (const BatchRenaming::RowMove &rowMove : BatchRenaming::movesFor(
                 rows, TablePreview::newNames(engine.composer, rows, choice, choice, QDateTime::currentDateTime())))
            moves.push_back(rowMove.move);
        if (!options.isSet("apply"))
            return report(SafeMover::plan(moves), options.isSet("json"), false);
        std::vector<SafeMover::Outcome> outcomes;
        {
            const ProgressBar bar(mover);
            outcomes = mover.apply(moves);
        }
        return report(outcomes, options.isSet("json"), true);
    } catch (const NamedException &failure) {
        say(stderr, QStringLiteral("nomen-cli: %1: %2").arg(failure.name(), failure.reason()));
        return Failures;
    }
}
