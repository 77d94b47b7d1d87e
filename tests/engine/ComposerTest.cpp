#include "NameComposer.h"
#include "NameCorpus.h"
#include "StringAdditions.h"
#include "TestPrinting.h"

#include <QProcess>
#include <QSet>

#include <gtest/gtest.h>

namespace {

// A rule with nothing but the original name: each case changes what it needs.
RenameRule plainRule()
{
    RenameRule rule = RenameRule::blank();
    rule.includeOriginal = true;
    return rule;
}

struct CompositionCase {
    const char *name;
    std::function<void(RenameRule &)> rules;
    QStringList originals; // composed one after another, in one pass
    QStringList expected;
    qint32 rows = 10;
    bool numberDuplicates = false;
    friend void PrintTo(const CompositionCase &c, std::ostream *os) { *os << c.name; }
};

class Compositions : public testing::TestWithParam<CompositionCase> {};

TEST_P(Compositions, ComposeInOrder)
{
    const CompositionCase &c = GetParam();
    NameComposer composer;
    RenameRule rule = plainRule();
    c.rules(rule);
    composer.useRule(rule);
    composer.grep = [](const QString &text, const QString &pattern, const QString &replacement, bool) {
        // A stand-in: the real one is Perl.
        return NameComposer::GrepResult{text == pattern ? replacement : text, {}};
    };
    QStringList names;
    for (const QString &original : c.originals)
        names.append(composer.generateNewName({original, c.rows, c.numberDuplicates, QStringLiteral("/p/Holiday/"), {}, {}}));
    EXPECT_EQ(names, c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Compositions,
    testing::Values(
        CompositionCase{"counter_padded_to_row_count_width",
                        [](RenameRule &s) { s.prefix.text = "IMG_«#»"; s.prefix.start = 1; s.prefix.step = 1; s.includeOriginal = false; },
                        {"a.jpg", "b.jpg"}, {"IMG_001.jpg", "IMG_002.jpg"}, 250},
        CompositionCase{"counter_with_few_rows_unpadded",
                        [](RenameRule &s) { s.prefix.text = "IMG_«#»"; s.prefix.start = 9; s.prefix.step = 1; s.includeOriginal = false; },
                        {"a.jpg", "b.jpg"}, {"IMG_9.jpg", "IMG_10.jpg"}, 9},
        CompositionCase{"minimum_digits", [](RenameRule &s) { s.prefix.text = "«#»-"; s.prefix.start = 3; s.prefix.digits = 4; },
                        {"x.png"}, {"0003-x.png"}, 12},
        CompositionCase{"increment_zero_and_negative",
                        [](RenameRule &s) { s.prefix.text = "«#»"; s.prefix.start = 5; s.prefix.step = 0; s.suffix.text = "_«#»"; s.suffix.start = 2; s.suffix.step = -1; },
                        {"a", "b", "c"}, {"5a_2", "5b_1", "5c_0"}, 9},
        CompositionCase{"counter_advances_without_token",
                        [](RenameRule &s) { s.prefix.text = "P"; s.prefix.start = 1; s.prefix.step = 1; s.suffix.text = "«#»"; s.suffix.start = 1; s.suffix.step = 10; },
                        {"a", "b"}, {"Pa1", "Pb11"}, 9},
        CompositionCase{"folder_token", [](RenameRule &s) { s.prefix.text = "«ƒ» - "; s.suffix.text = " («ƒ»)"; }, {"beach.jpg"},
                        {"Holiday - beach (Holiday).jpg"}},
        CompositionCase{"tokens_adjacent_and_nested",
                        [](RenameRule &s) { s.prefix.text = "«ƒ«#»»«#»«ƒ»«Ƒ»|"; s.prefix.start = 7; s.prefix.step = 0; },
                        {"a", "b"}, {"«ƒ7»7Holiday«Ƒ»|a", "«ƒ7»7Holiday«Ƒ»|b"}, 9},
        CompositionCase{"duplicates_with_a_slash_compared_as_whole_paths",
                        [](RenameRule &s) { s.prefix.text = "x/"; s.includeOriginal = false; }, {"a.jpg", "b.jpg"},
                        {"x/.jpg", "x/ 1.jpg"}, 10, true},
        CompositionCase{"duplicates_numbered_before_extension",
                        [](RenameRule &s) { s.includeOriginal = false; }, {"a.jpg", "b.jpg", "c.jpg", "d.png"},
                        {".jpg", " 1.jpg", " 2.jpg", ".png"}, 10, true},
        CompositionCase{"duplicates_not_numbered_when_not_asked", [](RenameRule &s) { s.includeOriginal = false; },
                        {"a.jpg", "b.jpg"}, {".jpg", ".jpg"}},
        CompositionCase{"only_last_extension_goes", [](RenameRule &) {}, {"archive.tar.gz", ".profile", "README"},
                        {"archive.tar.gz", ".profile", "README"}},
        CompositionCase{"literal_replace_all", [](RenameRule &s) { s.search = "_"; s.replace = " "; },
                        {"a_b_c.txt"}, {"a b c.txt"}},
        CompositionCase{"grep_goes_to_the_replacer",
                        [](RenameRule &s) { s.searchKind = RenameRule::Search::Grep; s.search = "old"; s.replace = "new"; },
                        {"old.txt", "older.txt"}, {"new.txt", "older.txt"}},
        CompositionCase{"trim_start_past_length_empties", [](RenameRule &s) { s.trimStart = 3; }, {"ab.txt", "abcd.txt"},
                        {".txt", "d.txt"}},
        CompositionCase{"negative_trim_start_always_empties", [](RenameRule &s) { s.trimStart = -1; }, {"abcdef.txt"}, {".txt"}},
        CompositionCase{"negative_trim_end_keeps_last", [](RenameRule &s) { s.trimEnd = -2; }, {"abcdef.txt", "a.txt"},
                        {"ef.txt", "a.txt"}},
        CompositionCase{"negative_trim_end_longer_keeps_all", [](RenameRule &s) { s.trimEnd = -10; }, {"abc.txt"}, {"abc.txt"}},
        CompositionCase{"trim_end", [](RenameRule &s) { s.trimEnd = 2; }, {"abcdef.txt", "ab.txt"}, {"abcd.txt", ".txt"}},
        CompositionCase{"case_then_diacritics",
                        [](RenameRule &s) { s.nameCase = RenameRule::Case::Upper; s.stripAccents = true; },
                        {"crème.txt"}, {"CREME.txt"}},
        CompositionCase{"new_extension_even_blank",
                        [](RenameRule &s) { s.newExtension = QStringLiteral(""); }, {"photo.jpeg"}, {"photo"}},
        CompositionCase{"new_extension", [](RenameRule &s) { s.newExtension = QStringLiteral(".jpg"); },
                        {"photo.jpeg", "noext"}, {"photo.jpg", "noext.jpg"}},
        CompositionCase{"extension_case", [](RenameRule &s) { s.extensionCase = RenameRule::Case::Lower; },
                        {"IMG.JPG"}, {"IMG.jpg"}},
        CompositionCase{"names_with_percent_signs", [](RenameRule &s) { s.includeOriginal = true; },
                        {"50%3 off.txt", "50%3 off.txt"}, {"50%3 off.txt", "50%3 off 1.txt"}, 10, true}),
    [](const auto &info) { return info.param.name; });

TEST(Composer, CountersAndTheDuplicateListAfterAPass)
{
    NameComposer composer;
    RenameRule rule = plainRule();
    rule.prefix.start = 1;
    rule.prefix.step = 2;
    rule.suffix.start = 10;
    rule.suffix.step = -3;
    composer.useRule(rule);
    composer.generateNewName({"a.jpg", 5, true, "/f/", {}, {}});
    composer.generateNewName({"a.jpg", 5, true, "/f/", {}, {}});
    composer.generateNewName({"a.jpg", 5, false, "/f/", {}, {}});
    EXPECT_EQ(composer.prefixCounter, 7);
    EXPECT_EQ(composer.suffixCounter, 1);
    EXPECT_EQ(composer.duplicate_check_list.toList(), QStringList({"/f/a.jpg", "/f/a 1.jpg"}))
        << "a pass without numbering leaves the list alone";
}

// The list against a plain model (full paths in a list and a set), over
// thousands of names in a few folders, so its index grows many times; a
// folder given without its "/" or a name holding one is the same path.
TEST(Composer, TheDuplicateListAnswersAsAListOfFullPathsWould)
{
    DuplicateList list;
    QStringList given;
    QSet<QString> held;
    const QStringList folders = {"/a/", "/a/b/", "/c/", "/"};
    for (int i = 0; i < 5000; ++i) {
        const QString folder = folders[(i * 7) % folders.size()];
        const QString name = QStringLiteral("n%1.jpg").arg((i * 13) % 1700);
        const QString path = folder + name;
        // Asked three ways that name one path: as split, without the
        // folder's "/", and with part of the folder in the name.
        const qsizetype cut = path.lastIndexOf(u'/', -2 - name.size());
        ASSERT_EQ(list.contains(folder, name), held.contains(path)) << path.toStdString();
        if (folder.size() > 1) {
            ASSERT_EQ(list.contains(folder.chopped(1), u'/' + name), held.contains(path)) << path.toStdString();
        }
        ASSERT_EQ(list.contains(path.left(cut + 1), path.mid(cut + 1)), held.contains(path)) << path.toStdString();
        if (i % 5 == 0) {
            list.append(folder, name); // given out again or not, it is listed
            given.append(path);
            held.insert(path);
        } else {
            ASSERT_EQ(list.appendNew(folder, name), !held.contains(path)) << path.toStdString();
            if (!held.contains(path))
                given.append(path);
            held.insert(path);
        }
    }
    EXPECT_EQ(list.toList(), given);
    list.clear();
    EXPECT_FALSE(list.contains("/a/", "n0.jpg"));
    EXPECT_TRUE(list.appendNew("/a/", "n0.jpg")) << "a cleared list starts again";
}

TEST(Composer, PaddingFollowsTheControlNotItsCheckBox)
{
    RenameRule rule = RenameRule::blank();
    rule.prefix.text = "«#»";
    rule.prefix.start = 7;
    rule.prefix.leadingZeros = false; // not consulted
    NameComposer composer;
    composer.useRule(rule);
    EXPECT_EQ(composer.generateNewName({"", 120, false, "", {}, {}}), QStringLiteral("007"));
    composer.prefixZerosControlConnected = false;
    EXPECT_EQ(composer.generateNewName({"", 120, false, "", {}, {}}), QStringLiteral("7"));
}

struct ZerosCase {
    qint32 counter, rows, minimum;
    const char *expected;
};

TEST(Composer, LeadingZeros)
{
    for (const ZerosCase &c : {ZerosCase{7, 120, 0, "007"}, ZerosCase{3, 12, 4, "0003"}, ZerosCase{1234, 10, 2, "1234"},
                               ZerosCase{-5, 100, 0, "0-5"}, ZerosCase{1, 10, 0, "01"}})
        EXPECT_EQ(NameComposer::addLeadingZeros(c.counter, c.rows, c.minimum), QString::fromLatin1(c.expected))
            << c.counter << " " << c.rows << " " << c.minimum;
    EXPECT_EQ(NameComposer::addLeadingZeros(5, 0, -1), QString(254, u'0') + u'5') << "a negative minimum stops at 255";
}

struct CaseCase {
    const char *name;
    QString text;
    QString theCase;
    QString expected;
    friend void PrintTo(const CaseCase &c, std::ostream *os) { *os << c.name; }
};

class CaseChanges : public testing::TestWithParam<CaseCase> {};

TEST_P(CaseChanges, ByExactName)
{
    NameComposer composer;
    composer.sentenceEndings = {".", "!", "?"};
    EXPECT_EQ(composer.changeCase(GetParam().text, *RenameRule::caseNamed(GetParam().theCase)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CaseChanges,
    testing::Values(CaseCase{"upper", "straße", "UPPERCASE", "STRASSE"}, CaseCase{"lower", "ÉTÉ", "lowercase", "été"},
                    CaseCase{"title", "hello wORLD", "Title Case", "Hello World"},
                    CaseCase{"title_keeps_spacing", "a  b\tc", "Title Case", "A  B\tC"},
                    CaseCase{"sentence", "hello. world", "Sentence case", "Hello. World"},
                    CaseCase{"sentence_runs", "A. b! c? d e", "Sentence case", "A. B! C? D e"},
                    CaseCase{"sentence_lowers_the_rest", "HELLO WORLD", "Sentence case", "Hello world"},
                    CaseCase{"sentence_empty", "", "Sentence case", ""},
                    CaseCase{"sentence_final_sigma", "ΟΔΟΣ ΚΑΙ ΣΥ. ΟΔΟΣ", "Sentence case", "Οδος και συ. Οδος"},
                    CaseCase{"sentence_sharp_s_raised_whole", "ßtraße", "Sentence case", "SStraße"},
                    CaseCase{"sentence_supplementary_letter", "𐐨𐑉 𐐨", "Sentence case", "𐐀𐑉 𐐨"},
                    CaseCase{"title_digraph_and_sharp_s", "ǆungla ßa", "Title Case", "ǅungla Ssa"},
                    CaseCase{"title_first_character_only", "(hello) 1st", "Title Case", "(hello) 1st"},
                    CaseCase{"a_byte_that_is_not_utf8_has_no_case", QStringLiteral("caf") + QChar(0xDCE9) + u'e', "UPPERCASE",
                             QStringLiteral("CAF") + QChar(0xDCE9) + u'E'}),
    [](const auto &info) { return info.param.name; });

// What ICU's own transforms make of every name, one name a line.
QStringList icu(const QString &transform, const QStringList &lines)
{
    QProcess uconv;
    uconv.start(QStringLiteral("uconv"), {"-f", "utf-8", "-t", "utf-8", "-x", transform});
    uconv.write(lines.join(u'\n').toUtf8() + '\n');
    uconv.closeWriteChannel();
    uconv.waitForFinished(30000);
    QStringList out = QString::fromUtf8(uconv.readAllStandardOutput()).split(u'\n');
    out.removeLast();
    return out;
}

// Case and accents in every script, as ICU's case mapping and
// decomposition make them: ß, final sigma, dotted and dotless I, ǆ,
// ligatures, combining marks, Greek, Cyrillic, Deseret.
TEST(CaseInEveryScript, AsIcuMakesIt)
{
    NameComposer composer;
    // The names where ours and ICU's differ, with both answers.
    const auto differences = [](const QStringList &texts, const std::function<QString(const QString &)> &change,
                                const QString &transform) {
        const QStringList theirs = icu(transform, texts);
        QStringList differ;
        for (qsizetype i = 0; i < texts.size(); ++i)
            if (const QString ours = change(texts[i]); ours != theirs.value(i))
                differ.append(QStringLiteral("%1 (%2): ours %3, ICU %4").arg(texts[i], transform, ours, theirs.value(i)));
        return differ.join(u'\n').toStdString();
    };
    const QStringList names = NameCorpus::utf8Names(300);
    EXPECT_EQ(differences(names, [&](const QString &t) { return composer.changeCase(t, RenameRule::Case::Upper); }, "Any-Upper"), "");
    EXPECT_EQ(differences(names, [&](const QString &t) { return composer.changeCase(t, RenameRule::Case::Lower); }, "Any-Lower"), "");
    // Accents go as the decomposition's marks go; the rest stays decomposed.
    EXPECT_EQ(differences(names, &StringAdditions::stripDiacritical, "::NFD; [:M:] > ;"), "");
    // ICU titles a word at its first letter; here every word starts with one.
    QStringList sentences;
    const QStringList &words = NameCorpus::letterWords();
    for (qsizetype i = 0; i < words.size(); ++i)
        sentences.append(words[i] + u' ' + words[(i * 7 + 3) % words.size()] + u' ' + words[(i * 5 + 1) % words.size()]);
    EXPECT_EQ(differences(sentences, [&](const QString &t) { return composer.changeCase(t, RenameRule::Case::Title); }, "Any-Title"), "");
}


} // namespace
