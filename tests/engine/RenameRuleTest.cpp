// Saved rules: every field survives the file, a short file takes the
// defaults, and a file a person got wrong is refused with the key named.

#include "RenameRule.h"
#include "SavedRules.h"

#include "TemporaryFolder.h"
#include <gtest/gtest.h>

namespace {

RenameRule everyFieldChanged()
{
    RenameRule rule;
    rule.prefix = {QStringLiteral("«#» "), 7, 2, false, 3, RenameRule::Created};
    rule.suffix = {QStringLiteral(" «YYYY»"), -1, 5, true, 4, RenameRule::Modified};
    rule.includeOriginal = false;
    rule.search = QStringLiteral("IMG_(\\d+)");
    rule.replace = QStringLiteral("p$1");
    rule.searchKind = RenameRule::Search::Grep;
    rule.considerCase = false;
    rule.trimStart = 1;
    rule.trimEnd = -2;
    rule.nameCase = RenameRule::Case::Title;
    rule.stripAccents = true;
    rule.newExtension = QString(); // dropped, which is not "kept"
    rule.extensionCase = RenameRule::Case::Upper;
    rule.types = QStringList{QStringLiteral("JPEG")};
    rule.extensions = QStringList{QStringLiteral("jpg"), QStringLiteral("heic")};
    rule.descend = rule.folders = rule.longNames = rule.datesTaken = true;
    return rule;
}

TEST(RenameRule, EveryFieldSurvivesTheFileAndAShortFileTakesTheDefaults)
{
    const auto back = RenameRule::fromJson(everyFieldChanged().toJson());
    ASSERT_TRUE(back) << back.reason().toStdString();
    EXPECT_TRUE(*back == everyFieldChanged());

    const auto shortRule = RenameRule::fromJson(R"({"prefix": {"text": "x "}, "extension": {"new": "txt"}})");
    ASSERT_TRUE(shortRule);
    RenameRule expected;
    expected.prefix.text = QStringLiteral("x ");
    expected.newExtension = QStringLiteral(".txt");
    EXPECT_TRUE(*shortRule == expected) << "a rule file's extension gains its stop";
}

TEST(RenameRule, AMistakeIsRefusedWithItsKeyNamed)
{
    const std::pair<const char *, const char *> mistakes[] = {
        {R"({"prefix": {"strat": 3}})", "\"prefix.strat\" is not a key of a rule"},
        {R"({"prefix": {"start": 1.5}})", "\"prefix.start\" must be a whole number"},
        {R"({"name": {"grep": "yes"}})", "\"name.grep\" must be true or false"},
        {R"({"name": {"case": "Shouting"}})", "\"name.case\" must be one of: UPPERCASE, lowercase, Title Case, Sentence case"},
        {R"({"suffix": {"date": "tomorrow"}})", "\"suffix.date\" must be one of: none, now, created, modified"},
        {R"({"listing": {"extensions": "jpg"}})", "\"listing.extensions\" must be a list of texts"},
        {R"({"listing": []})", "\"listing\" must be an object"},
        {R"([1])", "not a JSON object"},
    };
    for (const auto &[json, expected] : mistakes) {
        const auto read = RenameRule::fromJson(json);
        EXPECT_FALSE(read) << json;
        EXPECT_EQ(read.reason(), QString::fromUtf8(expected)) << json;
    }
}

TEST(SavedRules, NamesBecomeFilesAndBadNamesAreRefused)
{
    TemporaryFolder home;
    const SavedRules rules(home.path() + QStringLiteral("/deep/rules"));
    EXPECT_TRUE(rules.names().isEmpty()) << "no folder yet";
    EXPECT_TRUE(rules.save(QStringLiteral("Trip & Beach"), everyFieldChanged()));
    EXPECT_TRUE(rules.save(QStringLiteral("trip 10"), RenameRule()));
    EXPECT_TRUE(rules.save(QStringLiteral("trip 9"), RenameRule()));
    EXPECT_EQ(rules.names(), QStringList({"Trip & Beach", "trip 9", "trip 10"}));
    EXPECT_TRUE(*rules.load(QStringLiteral("Trip & Beach")) == everyFieldChanged());

    for (const char *bad : {"", "  ", "a/b", ".hidden"})
        EXPECT_FALSE(rules.save(QString::fromUtf8(bad), RenameRule()).reason().isEmpty()) << bad;
    EXPECT_EQ(rules.load(QStringLiteral("none")).reason(),
              QStringLiteral("there is no rule named \"none\" (%1/none.json)").arg(rules.folder()));
    EXPECT_TRUE(rules.remove(QStringLiteral("trip 9")));
    EXPECT_TRUE(rules.remove(QStringLiteral("trip 9")).reason().startsWith(rules.pathOf(QStringLiteral("trip 9"))));
    EXPECT_EQ(rules.names(), QStringList({"Trip & Beach", "trip 10"}));
}

} // namespace
