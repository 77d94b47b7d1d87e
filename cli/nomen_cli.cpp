// nomen-cli: renames the files of folders by a rule (given in options, or
// saved by name and changed by options), composing exactly what the window
// composes, or by a mapping file of old and new names. A dry run by
// default: it shows the old and new names with any conflict; --apply
// renames through the safe mover, --undo puts the last batch back,
// --finish and --roll-back deal with a batch cut short.

#include "BatchPass.h"
#include "CliOptions.h"
#include "CliReport.h"
#include "FolderListing.h"
#include "GrepPrefetch.h"
#include "HeapPages.h"
#include "LocalTimeZone.h"
#include "MapFile.h"
#include "NamedException.h"
#include "PathCodec.h"
#include "RenameEngine.h"
#include "RowOrder.h"
#include "SafeMover.h"
#include "SavedRules.h"
#include "UiStrings.h"

#include <QCoreApplication>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>

using CliReport::say;

namespace {

std::atomic<bool> interrupted{false};

// Ctrl-C while files move stops the batch between two moves; a second one
// ends the program at once (the batch can still be finished or rolled back).
class StopBetweenMoves {
public:
    StopBetweenMoves()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) { interrupted.store(true); };
        action.sa_flags = SA_RESETHAND;
        sigemptyset(&action.sa_mask);
        sigaction(SIGINT, &action, &m_interrupt);
        sigaction(SIGTERM, &action, &m_terminate);
    }
    ~StopBetweenMoves()
    {
        sigaction(SIGINT, &m_interrupt, nullptr);
        sigaction(SIGTERM, &m_terminate, nullptr);
    }

private:
    struct sigaction m_interrupt = {};
    struct sigaction m_terminate = {};
};

// The rows in the order asked for: the window's natural name order unless
// told otherwise.
void sortRows(std::vector<ItemRecord> &rows, const QString &order)
{
    if (order == QLatin1String("date"))
        RowOrder::byValue(rows, RowOrder::Value::Modified);
    else if (order == QLatin1String("size"))
        RowOrder::byValue(rows, RowOrder::Value::Size);
    else if (order != QLatin1String("none"))
        RowOrder::byName(rows);
}

// The rows of the named folders and files, in order, with the names the
// rule gives them.
struct Table {
    std::vector<ItemRecord> rows;
    Composed composed;
    SeenFolders seen; // the names the listing saw, so the plan need not read its folders again

    Batch::TableRows rowsOfOutcomes() const { return {&rows, &composed.names}; }
};

Table compose(const QCommandLineParser &options, const RenameRule &rule, const QStringList &roots)
{
    RenameEngine engine;
    engine.readsDatesTaken = rule.datesTaken;
    engine.useRule(rule); // the listing reads what the rule's tokens show
    Table table;
    std::vector<ItemRecord> &rows = table.rows;
    for (const QString &root : roots) {
        ListingRequest request;
        request.paths = {root};
        request.root = root;
        request.descend = rule.descend;
        request.folderRows = rule.folders;
        request.longNames = rule.longNames;
        request.extensions = rule.extensions;
        request.typeCodes = rule.types;
        request.keepsNames = true;
        Listing listing = engine.listing().list(request);
        std::move(listing.seen.begin(), listing.seen.end(), std::back_inserter(table.seen));
        if (rows.empty())
            rows = std::move(listing.items);
        else
            rows.insert(rows.end(), std::make_move_iterator(listing.items.begin()), std::make_move_iterator(listing.items.end()));
    }
    HeapPages::adviseHugePages();
    sortRows(rows, options.value("sort"));
    PassRequest pass;
    pass.prefixChoice = rule.prefix.date;
    pass.suffixChoice = rule.suffix.date;
    pass.supplied = QDateTime::currentDateTime();
    table.composed = engine.composeTable(rows, pass);
    HeapPages::adviseHugePages();
    return table;
}

// A row whose GREP program failed stays as it is, and says why; a row
// whose file recorded no value for a token says which.
std::vector<SafeMover::Outcome> withComposingNotes(std::vector<SafeMover::Outcome> outcomes, const Table &table)
{
    const QStringList &failures = table.composed.grepFailures;
    const QStringList &warnings = table.composed.warnings;
    for (SafeMover::Outcome &outcome : outcomes) {
        if (outcome.row >= 0 && outcome.row < failures.size())
            if (const QString &failure = failures[outcome.row]; !failure.isEmpty())
                outcome.reason = QStringLiteral("Perl: ") + failure;
        if (outcome.row >= 0 && outcome.row < warnings.size())
            if (const QString &warning = warnings[outcome.row]; !warning.isEmpty())
                outcome.warning = outcome.warning.isEmpty() ? warning : warning + QStringLiteral("; ") + outcome.warning;
    }
    return outcomes;
}

// --undo, --finish, --roll-back: the journal alone says what to do.
int journalCommand(SafeMover &mover, const QCommandLineParser &options)
{
    const StopBetweenMoves stop;
    const CliReport::ProgressBar bar(mover);
    SafeMover::Report report;
    if (options.isSet("undo"))
        report = mover.undoLast();
    else if (options.isSet("finish"))
        report = mover.finishPending();
    else
        report = mover.rollBackPending();
    if (report.refusal == SafeMover::Refusal::None && report.outcomes.empty()) {
        say(stderr, options.isSet("undo") ? QStringLiteral("nomen-cli: nothing to undo")
                                          : QStringLiteral("nomen-cli: no batch was cut short"));
        return CliReport::Success;
    }
    return CliReport::report(report, options.isSet("json"));
}

// --list-rules and --save-rule: the saved rules themselves.
int ruleCommand(const SavedRules &rules, const QCommandLineParser &options, const RenameRule &rule)
{
    if (options.isSet("list-rules")) {
        for (const QString &name : rules.names())
            say(stdout, name);
        return CliReport::Success;
    }
    const QString name = options.value("save-rule");
    if (const auto saved = rules.save(name, rule); !saved) {
        say(stderr, QStringLiteral("nomen-cli: the rule \"%1\" was not saved: %2").arg(name, saved.reason()));
        return CliReport::Failures;
    }
    say(stderr, QStringLiteral("nomen-cli: saved the rule \"%1\" as \"%2\"").arg(name, rules.pathOf(name)));
    return CliReport::Success;
}

// The folders and files named on the command line, as absolute paths; a
// usage or no-input exit code when there are none or one is not there.
Result<QStringList> rootsOf(const QStringList &arguments)
{
    QStringList roots;
    for (const QString &argument : arguments) {
        const auto root = CliOptions::resolvedArgument(argument);
        if (!root)
            return Failure{QStringLiteral("no such folder or file \"%1\"").arg(argument)};
        roots.append(*root);
    }
    return roots;
}

// A dry run holds a table of many small strings and nothing else: once its
// rows are out, the process ends without taking them apart one by one.
[[noreturn]] void endNow(int code)
{
    std::fflush(stdout);
    std::fflush(stderr);
    std::_Exit(code);
}

} // namespace

int main(int argc, char **argv)
{
    HeapPages::growInLargeSteps(size_t(1) << 30);
    pinLocalTimeZone();
    QCoreApplication application(argc, argv);
    application.setApplicationName(QStringLiteral("nomen-cli"));
    QCommandLineParser options;
    CliOptions::declare(options);
    // Arguments are read as names are, so a name that is not UTF-8 reaches
    // the disk unchanged.
    options.process(QStringList{application.applicationFilePath()} + PathCodec::arguments(argc, argv));
    if (const QString problem = CliOptions::problem(options); !problem.isEmpty()) {
        say(stderr, problem);
        return CliReport::Usage;
    }
    UiStrings::install(application);
    SafeMover mover;
    mover.interruption = &interrupted;
    if (options.isSet("undo") || options.isSet("finish") || options.isSet("roll-back"))
        return journalCommand(mover, options);

    const SavedRules rules;
    RenameRule base;
    if (options.isSet("rule")) {
        auto saved = rules.load(options.value("rule"));
        if (!saved) {
            say(stderr, QStringLiteral("nomen-cli: %1").arg(saved.reason()));
            return CliReport::NoInput;
        }
        base = std::move(*saved);
    }
    const RenameRule rule = CliOptions::rule(options, base);
    if (!options.isSet("list-rules") && !options.isSet("map")) {
        if (const QString problem = GrepPrefetch::patternError(rule); !problem.isEmpty()) {
            say(stderr, QStringLiteral("nomen-cli: the search pattern cannot be used: ") + problem);
            return CliReport::Usage;
        }
    }
    if (options.isSet("list-rules") || options.isSet("save-rule"))
        return ruleCommand(rules, options, rule);

    // A map names its moves itself; a rule composes them from the listing.
    std::vector<Batch::Move> mapped;
    QStringList roots;
    if (options.isSet("map")) {
        auto map = MapFile::read(options.value("map"));
        if (!map) {
            say(stderr, QStringLiteral("nomen-cli: %1").arg(map.reason()));
            return CliReport::NoInput;
        }
        mapped = std::move(*map);
    } else {
        if (options.positionalArguments().isEmpty()) {
            say(stderr, QStringLiteral("nomen-cli: name a folder (see --help)"));
            return CliReport::Usage;
        }
        auto found = rootsOf(options.positionalArguments());
        if (!found) {
            say(stderr, QStringLiteral("nomen-cli: ") + found.reason());
            return CliReport::NoInput;
        }
        roots = std::move(*found);
    }

    const bool apply = options.isSet("apply");
    // An apply holds the lock from listing to renaming, so what it lists is
    // what it renames, and checks for a batch cut short before the work.
    if (apply) {
        if (const auto held = mover.hold(); !held)
            return CliReport::refusal(SafeMover::Refusal::Busy, held.reason());
    }
    if (const auto refused = mover.pendingRefusal()) {
        if (apply)
            return CliReport::refusal(refused->refusal, refused->refusalText);
        CliReport::refusal(refused->refusal, refused->refusalText + QStringLiteral("; this dry run goes on"));
    }
    const bool json = options.isSet("json");
    if (options.isSet("map")) {
        if (!apply)
            return CliReport::rows(SafeMover::plan(mapped), json, false);
        const StopBetweenMoves stop;
        const CliReport::ProgressBar bar(mover);
        return CliReport::report(mover.apply(mapped), json);
    }
    try {
        const Table table = compose(options, rule, roots);
        if (!apply)
            endNow(CliReport::rows(withComposingNotes(SafeMover::plan(table.rows, table.composed.names, &table.seen), table),
                                   json, false, table.rowsOfOutcomes()));
        const StopBetweenMoves stop;
        const CliReport::ProgressBar bar(mover);
        SafeMover::Report report = mover.apply(table.rows, table.composed.names, &table.seen);
        report.outcomes = withComposingNotes(std::move(report.outcomes), table);
        return CliReport::report(report, json, table.rowsOfOutcomes());
    } catch (const NamedException &failure) {
        say(stderr, QStringLiteral("nomen-cli: %1: %2").arg(failure.name(), failure.reason()));
        return CliReport::Failures;
    }
}
