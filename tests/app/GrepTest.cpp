#include "GrepReplace.h"
#include "PathCodec.h"
#include "PerlWorker.h"
#include "GrepPrefetch.h"
#include "TestPrinting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QByteArray perlE(const QString &program)
{
    QProcess perl;
    perl.start(QStringLiteral("/usr/bin/perl"), {QStringLiteral("-e"), program});
    perl.waitForFinished(10000);
    return perl.readAllStandardOutput();
}

QVariant throughWorker(const QString &program)
{
    const auto printed = PerlWorker::shared().run(program.toUtf8());
    return printed ? QVariant(QString::fromUtf8(*printed)) : QVariant();
}

TEST(Escaping, SlashesAndQuotesForPatternsBackslashesTooForText)
{
    EXPECT_EQ(GrepReplace::escapeString(QStringLiteral("a/b\"c\\d")), QStringLiteral("a\\/b\\\"c\\d"));
    EXPECT_EQ(GrepReplace::escapeStringT(QStringLiteral("a/b\"c\\d$x@y")), QStringLiteral("a\\/b\\\"c\\\\d$x@y"));
    EXPECT_EQ(GrepReplace::program("t", "p", "r", true), QStringLiteral("$x = \"t\"; $x =~ s/p/r/g; print $x;"));
    EXPECT_EQ(GrepReplace::program("t", "p", "r", false), QStringLiteral("$x = \"t\"; $x =~ s/p/r/gi; print $x;"));
}

struct GrepCase {
    const char *name;
    QString text, pattern, replacement;
    bool consideringCase;
    friend void PrintTo(const GrepCase &c, std::ostream *os) { *os << c.name; }
};

class SameAsPerl : public testing::TestWithParam<GrepCase> {};

TEST_P(SameAsPerl, WorkerPrintsWhatPerlEPrints)
{
    const GrepCase &c = GetParam();
    const QString program = GrepReplace::program(c.text, c.pattern, c.replacement, c.consideringCase);
    const auto ours = PerlWorker::shared().run(program.toUtf8());
    ASSERT_TRUE(ours.has_value()) << program.toStdString();
    EXPECT_EQ(*ours, perlE(program)) << program.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Table, SameAsPerl,
    testing::Values(GrepCase{"captures", "IMG_0042 copy", "(\\d+)", "<$1>", true},
                    GrepCase{"case_insensitive", "Photo photo PHOTO", "photo", "pic", false},
                    GrepCase{"case_sensitive", "Photo photo PHOTO", "photo", "pic", true},
                    GrepCase{"slash_in_pattern_is_literal", "a/b/c", "a/b", "x", true},
                    GrepCase{"quotes_and_backslashes_pass_through", "say \"hi\" \\o/", "hi", "bye", true},
                    GrepCase{"dollar_word_vanishes", "price $word here", "here", "there", true},
                    GrepCase{"at_array_vanishes", "mail@home", "mail", "post", true},
                    GrepCase{"non_ascii_as_bytes", "crème brûlée", "\\w+", "[$&]", true},
                    GrepCase{"anchors_and_classes", "  spaced  out  ", "^\\s+|\\s+$", "", true},
                    GrepCase{"backreference_swap", "Smith, John", "(\\w+), (\\w+)", "$2 $1", true},
                    GrepCase{"uc_escape_in_replacement", "lower", "(\\w)", "\\U$1", true}),
    [](const auto &info) { return info.param.name; });

TEST(Worker, HostileNamesRunNoCodeAndTouchNoFile)
{
    QTemporaryDir dir;
    const QString marker = dir.filePath(QStringLiteral("pwned"));
    const QStringList hostile = {
        QStringLiteral("x@{[ system(\"touch %1\") ]}").arg(marker),
        QStringLiteral("x${\\ `touch %1` }").arg(marker),
        QStringLiteral("x@{[ open(my $f, '>', '%1') ]}").arg(marker),
        QStringLiteral("x@{[ unlink('%1') ]}@{[ require POSIX ]}").arg(marker),
        QStringLiteral("x@{[ eval 'exec \"/bin/touch\", \"%1\"' ]}").arg(marker),
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
    EXPECT_EQ(PerlWorker::shared().run("$x = \"b$leak@more\"; print $x;"), QByteArray("b"));
}

TEST(Worker, RunawayProgramsFailAndTheWorkerRecovers)
{
    PerlWorker worker(500);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(worker.run("$x = 'a' x 30 . 'b'; $x =~ s/(a|aa)+c/x/g; 1 while 1; print $x;"), std::nullopt);
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_EQ(worker.run("$x = 'ok'; print $x;"), QByteArray("ok"));
    EXPECT_EQ(worker.run("this is not perl ("), std::nullopt);
    EXPECT_EQ(worker.run("print 'still'"), QByteArray("still"));
}

TEST(Worker, ABatchAnswersEachProgramInOrderEvenPastARunawayOne)
{
    PerlWorker worker(500);
    const std::vector<QByteArray> programs = {
        GrepReplace::program("IMG_1", "(\\d)", "<$1>", true).toUtf8(),  // the reused substitution
        "1 while 1; print 'never';",                                     // runs past the limit
        GrepReplace::program("a$b", "a", "c", true).toUtf8(),            // a whole program: $b interpolates
        "not perl (",                                                    // does not compile
        GrepReplace::program("IMG_2", "(\\d)", "<$1>", true).toUtf8(), // after a fresh worker
    };
    const auto answers = worker.runAll(programs);
    ASSERT_EQ(answers.size(), programs.size());
    EXPECT_EQ(answers[0], QByteArray("IMG_<1>"));
    EXPECT_EQ(answers[1], std::nullopt);
    EXPECT_EQ(answers[2], QByteArray("c"));
    EXPECT_EQ(answers[3], std::nullopt);
    EXPECT_EQ(answers[4], QByteArray("IMG_<2>"));
    EXPECT_EQ(*answers[2], perlE(QString::fromUtf8(programs[2])));
}

TEST(RunPerl, OutputOrNo)
{
    EXPECT_EQ(GrepReplace::runPERL({QStringLiteral("-e"), QStringLiteral("print \"a\\n\\n\"")}), QVariant(QStringLiteral("a")));
    EXPECT_EQ(GrepReplace::runPERL({QStringLiteral("-e"), QStringLiteral("exit 3")}), QVariant(false));
    EXPECT_EQ(GrepReplace::runPERL({QStringLiteral("-e"), QString::fromUtf8("print \"é\"")}), QVariant(QString::fromUtf8("é")));
}

} // namespace

namespace {

// A byte that is not UTF-8 reaches Perl as that byte and comes back as it
// was, whether the name was worked out ahead (a batch) or on its own.
TEST(GrepBytes, ANameThatIsNotUtf8KeepsItsBytesMatchedOrNot)
{
    RenameSettings settings;
    settings._filename_search_1 = QStringLiteral("^(\\w+)");
    settings._filename_replace_1 = QStringLiteral("P_$1");
    settings._snr_consider_case_1 = true;
    const QString odd = PathCodec::decode("bad\xffname");
    settings._search_type_1 = QStringLiteral("GREP");
    settings._inc_original_name = true;
    const NameComposer::GrepReplace grep = GrepPrefetch::replacementFor(settings, {odd + QStringLiteral(".jpg")});
    EXPECT_EQ(PathCodec::encode(grep(odd, settings._filename_search_1, settings._filename_replace_1, true)), "P_bad\xffname");
    EXPECT_EQ(PathCodec::encode(grep(odd, QStringLiteral("zzz"), QStringLiteral("q"), true)), "bad\xffname");
    EXPECT_EQ(PathCodec::encode(grep(odd, QStringLiteral("name$"), QStringLiteral("\xe9"), true)), "bad\xff\xc3\xa9");
}

} // namespace
