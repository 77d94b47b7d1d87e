#include "BatchPass.h"
#include "GrepPrefetch.h"
#include "GrepReplace.h"
#include "NameComposer.h"
#include "NameCorpus.h"
#include "PathCodec.h"
#include "PerlWorker.h"
#include "TestPrinting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>

namespace {

// What perl prints for these arguments, byte for byte, given these names
// on its standard input, each ended by NUL.
QByteArray perl(const QStringList &arguments, const QList<QByteArray> &names = {})
{
    QProcess process;
    process.start(QStringLiteral("/usr/bin/perl"), arguments);
    for (const QByteArray &name : names)
        process.write(name + '\0');
    process.closeWriteChannel();
    process.waitForFinished(60000);
    return process.readAllStandardOutput();
}

std::optional<QString> throughWorker(const QString &program)
{
    return PerlWorker::shared().run(program);
}

TEST(Escaping, SlashesAndQuotesForPatternsBackslashesTooForText)
{
    EXPECT_EQ(GrepReplace::escapeString(QStringLiteral("a/b\"c\\d")), QStringLiteral("a\\/b\\\"c\\d"));
    EXPECT_EQ(GrepReplace::escapeStringT(QStringLiteral("a/b\"c\\d$x@y")), QStringLiteral("a\\/b\\\"c\\\\d$x@y"));
    EXPECT_EQ(GrepReplace::program("t", "p", "r", true), QStringLiteral("$x = \"t\"; $x =~ s/p/r/g; print $x;"));
    EXPECT_EQ(GrepReplace::program("t", "p", "r", false), QStringLiteral("$x = \"t\"; $x =~ s/p/r/gi; print $x;"));
}

// A whole program as the composer builds it: what the worker prints is
// what perl prints for the same program read as UTF-8 characters.
struct ProgramCase {
    const char *name;
    QString text, pattern, replacement;
    friend void PrintTo(const ProgramCase &c, std::ostream *os) { *os << c.name; }
};

class SameProgramAsPerl : public testing::TestWithParam<ProgramCase> {};

TEST_P(SameProgramAsPerl, WorkerPrintsWhatPerlPrints)
{
    const ProgramCase &c = GetParam();
    const QString program = GrepReplace::program(c.text, c.pattern, c.replacement, true);
    const auto ours = PerlWorker::shared().run(program);
    ASSERT_TRUE(ours.has_value()) << program.toStdString();
    EXPECT_EQ(PathCodec::encode(*ours), perl({QStringLiteral("-CSA"), QStringLiteral("-Mutf8"), QStringLiteral("-e"), program}))
        << program.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Table, SameProgramAsPerl,
    testing::Values(ProgramCase{"slash_in_pattern_is_literal", "a/b/c", "a/b", "x"},
                    ProgramCase{"quotes_and_backslashes_pass_through", "say \"hi\" \\o/", "hi", "bye"},
                    ProgramCase{"dollar_word_vanishes", "prix $word ici é", "ici", "là"},
                    ProgramCase{"at_array_vanishes", "mail@home", "mail", "post"}),
    [](const auto &info) { return info.param.name; });

// A search and replace as users write them, over names in many scripts.
struct Rule {
    const char *name;
    QString pattern, replacement;
    bool ignoreCase = false;
};

const std::vector<Rule> &rules()
{
    static const std::vector<Rule> table = {
        {"first_character", "^(.)", "[$1]"},
        {"swap_pairs", "(.)(.)", "$2$1"},
        {"words", "\\w+", "<$&>"},
        {"umlaut_ignoring_case", "ü", "ue", true},
        {"sharp_s_folds_to_ss", "straße", "street", true},
        {"posix_upper", "[[:upper:]]", "_"},
        {"property_Lu", "\\p{Lu}", "^"},
        {"three_characters", ".{3}", "[$&]"},
        {"outside_ascii", "[^\\x00-\\x7F]", "?"},
        {"doubled_letter", "(\\w)\\1", "=$1="},
        {"trim_spaces", "^\\s+|\\s+$", ""},
        {"sprintf_counter", "(\\d+)", "${\\ sprintf('%04d', $1)}"},
        {"lookahead", "\\w(?=\\d)", "#"},
        {"lookbehind", "(?<=\\p{Greek})\\p{Greek}", "*"},
        {"upper_first", "(\\w+)", "\\u$1"},
        {"lower_first", "(\\w+)", "\\l$1"},
        {"upper_span", "(\\p{L}+)", "\\U$1\\E!"},
        {"named_captures", "(?<first>\\w)(?<rest>\\w*)", "$+{rest}$+{first}"},
        {"word_boundaries", "\\b", "|"},
        {"han_script", "\\p{Han}+", "(kanji)"},
        {"cyrillic_range_ignoring_case", "[а-я]", "c", true},
        {"final_sigma_ignoring_case", "σ", "s", true},
        {"pictographs", "\\p{Extended_Pictographic}", "E"},
        {"graphemes", "\\X", "."},
        {"marks_removed", "\\p{M}", ""},
        {"alternation_ignoring_case", "(omega|οδος)", "<$1>", true},
        {"runs_of_non_word", "[^\\p{L}\\p{N}]+", "-"},
        {"named_character", "\\N{GREEK CAPITAL LETTER OMEGA}", "O"},
        {"cyrillic_word_ignoring_case", "привет", "hi", true},
        {"horizontal_space", "\\h", "_"},
        {"last_digit", "(\\d)(?!\\d)", "$1."},
        {"inline_flag", "(?i)É", "E"},
        {"code_point_escape", "\\x{1F4F7}", "camera"},
        {"posix_alpha", "[[:alpha:]]+", "A"},
        {"turkish_dotless_ignoring_case", "i", "!", true},
    };
    return table;
}

QByteArray substitution(const Rule &rule)
{
    return "s/" + rule.pattern.toUtf8() + '/' + rule.replacement.toUtf8() + "/g" + (rule.ignoreCase ? "i" : "");
}

// Perl's own answers: for UTF-8 names perl -CSA -Mutf8 itself; for names
// that are not UTF-8 the same substitution on the name read with each such
// byte as U+DC80+byte and written back as that byte.
QList<QByteArray> perlAnswers(const Rule &rule, const QList<QByteArray> &names, bool utf8)
{
    const QByteArray loop = "$/ = \"\\0\"; while (my $x = <STDIN>) { chop $x; " + (utf8 ? QByteArray() : "$x = dec($x); ")
                            + "$x =~ " + substitution(rule) + "; print " + (utf8 ? "$x" : "enc($x)") + ", \"\\0\" }";
    static const QByteArray bytesInOut = R"PERL(
        no warnings;
        my $valid = qr/[\x00-\x7F]|[\xC2-\xDF][\x80-\xBF]|\xE0[\xA0-\xBF][\x80-\xBF]|[\xE1-\xEC\xEE\xEF][\x80-\xBF]{2}
                      |\xED[\x80-\x9F][\x80-\xBF]|\xF0[\x90-\xBF][\x80-\xBF]{2}|[\xF1-\xF3][\x80-\xBF]{3}
                      |\xF4[\x80-\x8F][\x80-\xBF]{2}/x;
        sub dec { my ($b, $x) = (shift, '');
                  while ($b =~ /\G(?:($valid+)|(.))/gs) {
                      if (defined $1) { my $v = $1; utf8::decode($v); $x .= $v } else { $x .= chr(0xDC00 + ord $2) } }
                  return $x }
        sub enc { my $b = ''; for my $c (split //, shift) { my $o = ord $c;
                  if ($o >= 0xDC80 && $o <= 0xDCFF) { $b .= chr($o - 0xDC00) } else { utf8::encode($c); $b .= $c } }
                  return $b }
        binmode STDIN; binmode STDOUT;
    )PERL";
    const QStringList arguments = utf8 ? QStringList{QStringLiteral("-CSA"), QStringLiteral("-Mutf8"), QStringLiteral("-e"),
                                                     QString::fromUtf8(loop)}
                                       : QStringList{QStringLiteral("-Mutf8"), QStringLiteral("-e"),
                                                     QString::fromUtf8(bytesInOut + loop)};
    QList<QByteArray> answers = perl(arguments, names).split('\0');
    answers.removeLast();
    return answers;
}

// Every rule over names in every script, composed as a rename composes
// them, gives what Perl gives; names that are not UTF-8 keep their bytes.
TEST(GrepInEveryScript, EveryNameAsPerlReadsIt)
{
    QList<QByteArray> utf8;
    for (const QString &name : NameCorpus::utf8Names(300))
        utf8.append(name.toUtf8());
    const QList<QByteArray> broken = NameCorpus::brokenNames();
    QStringList disagreements;
    for (const Rule &rule : rules()) {
        RenameRule settings = RenameRule::blank();
        settings.includeOriginal = true;
        settings.searchKind = RenameRule::Search::Grep;
        settings.search = rule.pattern;
        settings.replace = rule.replacement;
        settings.considerCase = !rule.ignoreCase;
        NameComposer composer;
        composer.useRule(settings);
        QStringList asked;
        for (const QByteArray &name : utf8)
            asked.append(PathCodec::decode(name));
        // The UTF-8 names are worked out ahead, as a batch is; the others
        // one at a time, as a name not asked about ahead is.
        composer.grep = GrepPrefetch::replacementFor(settings, asked);
        for (const bool isUtf8 : {true, false}) {
            const QList<QByteArray> &names = isUtf8 ? utf8 : broken;
            const QList<QByteArray> expected = perlAnswers(rule, names, isUtf8);
            ASSERT_EQ(expected.size(), names.size()) << rule.name;
            for (qsizetype i = 0; i < names.size(); ++i) {
                const QString ours = composer.generateNewName({PathCodec::decode(names[i]), 1, false, "/t/", {}, {}});
                if (!composer.lastFailure.isEmpty() || PathCodec::encode(ours) != expected[i])
                    disagreements.append(QStringLiteral("%1 on \"%2\": ours \"%3\", perl \"%4\" %5")
                                             .arg(rule.name, PathCodec::decode(names[i]), ours, PathCodec::decode(expected[i]),
                                                  composer.lastFailure));
            }
        }
    }
    EXPECT_EQ(disagreements.size(), 0) << disagreements.mid(0, 20).join(u'\n').toStdString();
}

TEST(Worker, HostileNamesRunNoCodeAndTouchNoFile)
{
    TemporaryFolder dir;
    const QString marker = dir.filePath(QStringLiteral("pwned"));
    const QStringList hostile = {
        QStringLiteral("x@{[ system(\"touch %1\") ]}").arg(marker),
        QStringLiteral("x${\\ `touch %1` }").arg(marker),
        QStringLiteral("x@{[ open(my $f, '>', '%1') ]}").arg(marker),
        QStringLiteral("x@{[ unlink('%1') ]}@{[ require POSIX ]}").arg(marker),
        QStringLiteral("x@{[ eval 'exec \"/bin/touch\", \"%1\"' ]}").arg(marker),
        QStringLiteral("é@{[ system(\"touch %1\") ]}写真").arg(marker),
    };
    for (const QString &name : hostile) {
        const QString result = GrepReplace::snrGrep(name, QStringLiteral("x"), QStringLiteral("y"), true, &throughWorker);
        EXPECT_EQ(result, name) << "a failed program leaves the name as it was";
        EXPECT_FALSE(QFile::exists(marker)) << name.toStdString();
    }
    const QString pattern = GrepReplace::snrGrep(QStringLiteral("abc"), QStringLiteral("b(?{ system('touch %1') })").arg(marker),
                                                 QStringLiteral("B"), true, &throughWorker);
    EXPECT_EQ(pattern, QStringLiteral("abc"));
    EXPECT_FALSE(QFile::exists(marker));
}

TEST(Worker, NothingOneProgramDefinesReachesTheNext)
{
    ASSERT_TRUE(PerlWorker::shared().run("$leak = 'L'; @more = (1); print 'a';").has_value());
    EXPECT_EQ(PerlWorker::shared().run("$x = \"b$leak@more\"; print $x;"), QStringLiteral("b"));
}

TEST(Worker, RunawayProgramsFailAndTheWorkerRecovers)
{
    PerlWorker worker(500);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(worker.run("$x = 'a' x 30 . 'b'; $x =~ s/(a|aa)+c/x/g; 1 while 1; print $x;"), std::nullopt);
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_EQ(worker.run("$x = 'ok'; print $x;"), QStringLiteral("ok"));
    EXPECT_EQ(worker.failureOf("this is not perl ("), QStringLiteral("syntax error, at EOF"));
    EXPECT_EQ(worker.run("print 'still'"), QStringLiteral("still"));
}

TEST(Worker, ABatchAnswersEachProgramInOrderEvenPastARunawayOne)
{
    PerlWorker worker(500);
    const QStringList programs = {
        GrepReplace::program("IMG_1", "(\\d)", "<$1>", true), // the reused substitution
        "1 while 1; print 'never';",                           // runs past the limit
        GrepReplace::program("a$b", "a", "c", true),           // a whole program: $b interpolates
        "not perl (",                                          // does not compile
        GrepReplace::program("ΣΟΦΙΑ_2", "(\\d)", "<$1>", true), // after a fresh worker
    };
    const auto answers = worker.answersOf(programs);
    ASSERT_EQ(answers.size(), size_t(programs.size()));
    EXPECT_EQ(answers[0].output, QStringLiteral("IMG_<1>"));
    EXPECT_EQ(answers[1].output, std::nullopt);
    EXPECT_EQ(answers[1].failure, QStringLiteral("Perl gave no answer in time"));
    EXPECT_EQ(answers[2].output, QStringLiteral("c"));
    EXPECT_EQ(answers[3].output, std::nullopt);
    EXPECT_EQ(answers[4].output, QStringLiteral("ΣΟΦΙΑ_<2>"));
}

// A program that fails for one name leaves that row as it was and says
// why; the other rows are renamed.
TEST(GrepFailures, ARowWhoseProgramFailsKeepsItsNameWithPerlsReason)
{
    NameComposer composer;
    composer.rule.includeOriginal = true;
    composer.rule.prefix.text = QStringLiteral("P-");
    composer.rule.searchKind = RenameRule::Search::Grep;
    composer.rule.search = QStringLiteral("(\\d+)");
    composer.rule.replace = QStringLiteral("${\\ (100 % $1)}");
    composer.rule.considerCase = true;
    std::vector<ItemRecord> rows(3);
    const QStringList names = {QStringLiteral("a4.txt"), QStringLiteral("b0.txt"), QStringLiteral("c7.txt")};
    for (size_t i = 0; i < rows.size(); ++i) {
        rows[i].name = names[qsizetype(i)];
        rows[i].location = QStringLiteral("/t/");
        rows[i].include = true;
    }
    composer.grep = GrepPrefetch::replacementFor(composer.rule, names);
    const Composed composed = BatchPass::newNames(composer, rows, PassRequest(), ClampedDates());
    EXPECT_EQ(composed.names, QStringList({"P-a0.txt", "b0.txt", "P-c2.txt"}));
    EXPECT_EQ(composed.grepFailures, QStringList({"", "Illegal modulus zero", ""}));
    EXPECT_EQ(GrepPrefetch::patternError(composer.rule), QString()) << "it compiles; only one name fails";
    composer.rule.search = QStringLiteral("IMG_(\\d");
    EXPECT_TRUE(GrepPrefetch::patternError(composer.rule).startsWith(QStringLiteral("Unmatched ( in regex")));
}

TEST(RunPerl, OutputOrNo)
{
    EXPECT_EQ(GrepReplace::runPERL({QStringLiteral("-e"), QStringLiteral("print \"a\\n\\n\"")}), QStringLiteral("a"));
    EXPECT_EQ(GrepReplace::runPERL({QStringLiteral("-e"), QStringLiteral("exit 3")}), std::nullopt);
    EXPECT_EQ(GrepReplace::runPERL({QStringLiteral("-e"), QString::fromUtf8("print \"é\"")}), QString::fromUtf8("é"));
}

} // namespace
