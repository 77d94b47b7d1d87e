#include "CliOptions.h"

#include "PathCodec.h"
#include "PathNames.h"
#include "SavedRules.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace CliOptions {

namespace {

const QStringList numberOptions = {"start", "step", "zeros", "trim-start", "trim-end"};

qint32 number(const QCommandLineParser &options, const QString &name)
{
    return options.value(name).trimmed().toInt();
}

} // namespace

void declare(QCommandLineParser &options)
{
    options.setApplicationDescription(QStringLiteral(
        "Renames the files of folders by a rule, as the Nomen window does.\n"
        "A dry run unless --apply is given.\n\n"
        "Examples:\n"
        "  nomen-cli --prefix 'Trip «#» ' --zeros 3 --ext-filter jpg ~/Pictures/Trip\n"
        "  nomen-cli --exif --prefix '«date %Y-%m-%d» «camera» «lens» ' ~/Pictures/Trip\n"
        "  nomen-cli --no-original --prefix '«track» «artist» - «title»' ~/Music/Album\n"
        "  nomen-cli --grep --search 'IMG_(\\d+)' --replace 'photo $1' --apply ~/Pictures/Trip\n"
        "  nomen-cli --rule Trip --start 10 ~/Pictures/Trip\n"
        "  nomen-cli --map renames.tsv --apply\n"
        "  nomen-cli --undo\n\n"
        "Exit codes: 0 success, 1 conflicts, 2 failures, 3 refused (a batch cut short\n"
        "waits for --finish or --roll-back, or a journal cannot be believed), 64 usage,\n"
        "66 no such folder, 75 another run is renaming, 130 interrupted."));
    options.addHelpOption();
    options.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("Folders or files to rename."), QStringLiteral("folder..."));
    options.addOptions({
        {"prefix", "Text before the name (tokens: «#» counter, «ƒ» folder, «date FORMAT», «YYYY-MM-DD»..., and what "
                   "files say: «camera» «make» «model» «lens» «iso» «aperture» «exposure» «focal» «width» «height» «artist» "
                   "«albumartist» «album» «title» «track» «disc» «year» «genre» «duration» «resolution» «tag KEY»).", "text"},
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
        {{"exif", "date-taken"}, "Creation dates are the dates photographs were taken and recordings made (JPEG, HEIC, "
                                 "camera raws, MP4, MOV...), as the camera's clock read; files without one keep their own. Without --date-source "
                                 "the date tokens use them (created)."},
        {"recursive", "Descend into subfolders."},
        {"folders", "Rename the folders below the named ones too, after their contents; files are then renamed only when --type, --ext-filter or --long-names picks them."},
        {"long-names", "With --folders: the files whose names have 32 characters or more."},
        {"ext-filter", "Only these extensions (comma-separated, exact).", "list"},
        {"type", "Only these four-character type codes (comma-separated).", "list"},
        {"sort", "Row order: name (natural), date, size or none (the file system's).", "order", "name"},
        {"rule", "Rename by the saved rule NAME (in $XDG_CONFIG_HOME/nomen/rules); options given beside it change its fields.", "name"},
        {"save-rule", "Save the rule the other options give (over --rule, if given) under NAME, and rename nothing.", "name"},
        {"list-rules", "List the saved rules."},
        {"map", "Rename by a table: a first line \"old<TAB>new\", then one old path and new name per line.", "file"},
        {"apply", "Rename the files (through the safe mover, with undo)."},
        {"undo", "Put the last batch back (repeat to go further back)."},
        {"finish", "Finish a batch that was cut short."},
        {"roll-back", "Put the files of a batch that was cut short back under their old names."},
        {"json", "Answer in JSON."},
    });
}

QString problem(const QCommandLineParser &options)
{
    for (const QString &name : numberOptions) {
        bool ok = false;
        options.value(name).trimmed().toInt(&ok);
        if (!ok)
            return QStringLiteral("nomen-cli: --%1 takes a whole number, not \"%2\"").arg(name, options.value(name));
    }
    const std::pair<QString, QStringList> choices[] = {{"sort", {"name", "date", "size", "none"}},
                                                       {"date-source", {"none", "now", "created", "modified"}},
                                                       {"case", RenameRule::caseNames()},
                                                       {"ext-case", RenameRule::caseNames()}};
    for (const auto &[option, allowed] : choices)
        if (options.isSet(option) && !allowed.contains(options.value(option)))
            return QStringLiteral("nomen-cli: --%1 takes one of: %2").arg(option, allowed.join(QStringLiteral(", ")));
    int commands = 0;
    for (const char *command : {"apply", "undo", "finish", "roll-back"})
        commands += options.isSet(QString::fromLatin1(command));
    if (commands > 1)
        return QStringLiteral("nomen-cli: choose one of --apply, --undo, --finish and --roll-back");
    if (options.isSet("save-rule"))
        if (const auto usable = SavedRules::checkName(options.value("save-rule")); !usable)
            return QStringLiteral("nomen-cli: --save-rule: ") + usable.reason();
    if (options.isSet("map") && options.isSet("rule"))
        return QStringLiteral("nomen-cli: --map renames by its table alone; leave out --rule");
    if (options.isSet("map") && !options.positionalArguments().isEmpty())
        return QStringLiteral("nomen-cli: --map names every item itself; leave out the folders");
    return {};
}

RenameRule rule(const QCommandLineParser &options, RenameRule base)
{
    RenameRule rule = std::move(base);
    const auto given = [&options](const char *name) { return options.isSet(QString::fromLatin1(name)); };
    const auto list = [&options](const char *name) {
        return options.value(QString::fromLatin1(name)).split(u',', Qt::SkipEmptyParts);
    };
    if (given("prefix"))
        rule.prefix.text = options.value("prefix");
    if (given("suffix"))
        rule.suffix.text = options.value("suffix");
    // The counter options count for the prefix and the suffix alike.
    for (RenameRule::Part *part : {&rule.prefix, &rule.suffix}) {
        if (given("start"))
            part->start = number(options, "start");
        if (given("step"))
            part->step = number(options, "step");
        if (given("zeros")) {
            part->leadingZeros = true;
            part->digits = number(options, "zeros");
        }
        if (given("date-source"))
            part->date = RenameRule::dateNamed(options.value("date-source")).value_or(RenameRule::NoDate);
    }
    if (given("no-original"))
        rule.includeOriginal = false;
    if (given("search"))
        rule.search = options.value("search");
    if (given("replace"))
        rule.replace = options.value("replace");
    if (given("grep"))
        rule.searchKind = RenameRule::Search::Grep;
    if (given("ignore-case"))
        rule.considerCase = false;
    if (given("trim-start"))
        rule.trimStart = number(options, "trim-start");
    if (given("trim-end"))
        rule.trimEnd = number(options, "trim-end");
    if (given("case"))
        rule.nameCase = RenameRule::caseNamed(options.value("case"));
    if (given("strip-diacritics"))
        rule.stripAccents = true;
    if (given("extension"))
        rule.newExtension = RenameRule::extensionWithStop(options.value("extension"));
    if (given("ext-case"))
        rule.extensionCase = RenameRule::caseNamed(options.value("ext-case"));
    if (given("ext-filter"))
        rule.extensions = list("ext-filter");
    if (given("type"))
        rule.types = list("type");
    rule.descend = rule.descend || given("recursive");
    rule.folders = rule.folders || given("folders");
    rule.longNames = rule.longNames || given("long-names");
    rule.datesTaken = rule.datesTaken || given("exif");
    // Dates taken replace the creation date: --exif alone makes the date
    // tokens use it, unless the rule chose the modification date.
    if (given("exif") && !given("date-source"))
        for (RenameRule::Part *part : {&rule.prefix, &rule.suffix})
            if (part->date == RenameRule::NoDate || part->date == RenameRule::Now)
                part->date = RenameRule::Created;
    return rule;
}

std::optional<QString> resolvedArgument(const QString &argument)
{
    QByteArray path = PathCodec::encode(PathNames::absolute(argument));
    struct stat info;
    if (lstat(path.constData(), &info) != 0)
        return std::nullopt;
    // A folder is listed, not renamed: the folder a link leads to is the one.
    if (struct stat followed; stat(path.constData(), &followed) == 0 && S_ISDIR(followed.st_mode))
        if (char *real = realpath(path.constData(), nullptr)) {
            path = real;
            free(real);
        }
    return PathCodec::decode(path);
}

} // namespace CliOptions
