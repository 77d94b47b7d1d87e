#include "NamedException.h"
#include "ScriptRequests.h"
#include "TestPrinting.h"

#include <gtest/gtest.h>

namespace {

// The 24 entries scripts give the rule in: numbers and yes-or-no as the
// platform reads them from text, "GREP" alone choosing a regular
// expression, a case named exactly and only when its change is on.
TEST(ScriptRequests, TwentyFourSettingsBecomeTheRuleOrARangeError)
{
    const RenameRule rule = ScriptRequests::ruleFromSettings(
        {"p", "12", 3, true, "4x", false, "s", "r", "GREP", "YES", -1, "-2", 1, "Title Case", 0, "x", 5, 6, false, 7, "jpg",
         true, false, "lowercase"});
    EXPECT_EQ(rule.prefix.text, QStringLiteral("p"));
    EXPECT_EQ(rule.prefix.start, 12) << "text read as the platform reads numbers";
    EXPECT_EQ(rule.prefix.digits, 4);
    EXPECT_EQ(rule.searchKind, RenameRule::Search::Grep);
    EXPECT_TRUE(rule.considerCase);
    EXPECT_EQ(rule.trimEnd, -2);
    EXPECT_EQ(rule.nameCase, RenameRule::Case::Title);
    EXPECT_EQ(rule.newExtension, QStringLiteral("jpg")) << "put after the name as given";
    EXPECT_EQ(rule.extensionCase, std::nullopt) << "its change is off";
    EXPECT_EQ(rule.suffix.digits, 7);

    const RenameRule other = ScriptRequests::ruleFromSettings(
        {"", 0, 0, false, 0, true, "a", "b", "grep", false, 0, 0, true, "Upper Case", false, "", 0, 0, false, 0, "", false, false, ""});
    EXPECT_EQ(other.searchKind, RenameRule::Search::Literal) << "only \"GREP\" chooses GREP";
    EXPECT_EQ(other.nameCase, std::nullopt) << "a case named otherwise leaves the case";
    EXPECT_EQ(other.newExtension, std::nullopt);
    EXPECT_THROW(ScriptRequests::ruleFromSettings({"too", "short"}), NamedException);
}

TEST(ScriptRequests, CleanDataFillsMissingDates)
{
    const QDateTime date1904(QDate(1904, 1, 1), QTime(0, 0), Qt::LocalTime);
    const QVariantList cleaned = ScriptRequests::cleanData(
        {QVariantMap{{"original", "a"}}, QVariantMap{{"creation", date1904.addYears(100)}}}, date1904);
    EXPECT_EQ(cleaned[0].toMap().value("creation"), QVariant(date1904));
    EXPECT_EQ(cleaned[0].toMap().value("modification"), QVariant(date1904));
    EXPECT_EQ(cleaned[1].toMap().value("creation").toDateTime().date().year(), 2004);
}

} // namespace
