#include "DataAdditions.h"
#include "JsonString.h"
#include "MethodTable.h"
#include "ScriptCoertions.h"
#include "ScriptSubroutines.h"
#include "TestPrinting.h"

#include <QFile>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>
#include <unistd.h>

using namespace ScriptSubroutines;

namespace {

const char *helperSource = R"JS(
function execute_perl(program) { return "ran " + program; }
function echo_all() { return Array.prototype.slice.call(arguments); }
function shapes() { return [1, 2.5, "t", true, null, undefined, new Date(2024, 0, 2, 3, 4, 5), {k: [1]}]; }
function fails() { var e = new Error("it broke"); e.number = -2753; throw e; }
function fails_plainly() { throw "just text"; }
)JS";

class ScriptCalls : public testing::Test {
protected:
    ScriptCalls() : methods(buildMethodTable()), script(methods, QString::fromUtf8(helperSource), "helper.js") {}

    MethodRegistry methods;
    CompiledScript script;
};

TEST_F(ScriptCalls, HandlerNamesAreMatchedInLowerCase)
{
    EXPECT_EQ(runScriptSubroutine(script, QStringLiteral("Execute_Perl"), QStringLiteral("s/a/b/")),
              QVariant(QStringLiteral("ran s/a/b/")));
    EXPECT_EQ(runScriptSubroutine(script, QStringLiteral("EXECUTE_PERL"), QStringLiteral("x")),
              QVariant(QStringLiteral("ran x")));
}

TEST(HelperScriptFile, LowerCaseHandlerAnswersAMixedCaseCall)
{
    const MethodRegistry methods = buildMethodTable();
    TemporaryFolder dir;
    QFile file(dir.filePath(QStringLiteral("perl.scpt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("function execute_perl(program) { return program.split('').reverse().join(''); }\n");
    file.close();
    QVariantMap error;
    std::unique_ptr<CompiledScript> script(CompiledScript::fromFile(methods, file.fileName(), &error));
    ASSERT_NE(script, nullptr) << error.value(QStringLiteral("NSAppleScriptErrorMessage")).toString().toStdString();
    EXPECT_EQ(runScriptSubroutine(*script, QStringLiteral("Execute_Perl"), QStringLiteral("abc")),
              QVariant(QStringLiteral("cba")));
    EXPECT_EQ(validSubroutinesFromArray({"execute_perl", "Execute_Perl"}, file.fileName()),
              QVariant(QVariantList{"execute_perl"}))
        << "the file scan is case-sensitive";
}

TEST_F(ScriptCalls, ParametersArriveInOrderAndStopAtTheFirstNil)
{
    EXPECT_EQ(runScriptSubroutine(script, QStringLiteral("echo_all")), QVariant(QVariantList()));
    EXPECT_EQ(runScriptSubroutineWithParameters(script, QStringLiteral("echo_all"),
                                                    {QStringLiteral("a"), QStringLiteral("b"), QVariant(),
                                                     QStringLiteral("c")}),
              QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(runScriptSubroutineWithParametersFromArray(script, QStringLiteral("echo_all"),
                                                             {1, QStringLiteral("x"), QVariantMap{{"k", true}}}),
              QVariant(QVariantList{1, QStringLiteral("x"), QVariantMap{{"k", true}}}));
    try {
        runScriptSubroutine(script, QStringLiteral("echo_all"), QVariant());
        FAIL() << "nil parameter accepted";
    } catch (const NamedException &e) {
        EXPECT_EQ(e.name(), NSInvalidArgumentException);
        EXPECT_EQ(e.reason(), QStringLiteral("Parameter cannot be nil."));
    }
}

TEST_F(ScriptCalls, ResultsComeBackThroughDescriptors)
{
    std::optional<QVariantMap> error;
    const auto raw = ExecuteWithoutTranslationSubroutine(script, QStringLiteral("shapes"), &error,
                                                             Descriptor::list());
    ASSERT_TRUE(raw.has_value());
    EXPECT_FALSE(error.has_value());
    QStringList types;
    for (qsizetype i = 1; i <= raw->numberOfItems(); ++i)
        types.append(fourCharString(raw->descriptorAtIndex(i)->descriptorType()));
    EXPECT_EQ(types, QStringList({"long", "doub", "utxt", "bool", "null", "type", "ldt ", "reco"}));
    EXPECT_TRUE(ScriptCoertions::isMissingValue(*raw->descriptorAtIndex(6)));
    const QVariantList values = ScriptCoertions::objCObjectValue(*raw).toList();
    EXPECT_EQ(values[1], QVariant::fromValue(2.5f));
    EXPECT_EQ(values[6].toDateTime(), QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::LocalTime));
    EXPECT_EQ(values[7], QVariant(QVariantMap{{"k", QVariantList{1}}}));
}

TEST_F(ScriptCalls, FailuresComeBackAsTheErrorPair)
{
    EXPECT_EQ(runScriptSubroutine(script, QStringLiteral("fails")),
              QVariant(QVariantList{-2753, QStringLiteral("helper.js:5: Error: it broke")}));
    const QVariantList plain = runScriptSubroutine(script, QStringLiteral("fails_plainly")).toList();
    ASSERT_EQ(plain.size(), 2);
    EXPECT_EQ(plain[0], QVariant(-2700));
    EXPECT_TRUE(plain[1].toString().contains(QStringLiteral("just text")));
    const QVariantList missing = runScriptSubroutine(script, QStringLiteral("No_Such")).toList();
    ASSERT_EQ(missing.size(), 2);
    EXPECT_EQ(missing[0], QVariant(-1708));
    EXPECT_TRUE(missing[1].toString().contains(QStringLiteral("no_such")));
}

TEST(HandleASError, PrefersTheFullMessageAndFallsBack)
{
    const QString number = QStringLiteral("NSAppleScriptErrorNumber");
    const QString full = QStringLiteral("NSAppleScriptErrorMessage");
    const QString brief = QStringLiteral("NSAppleScriptErrorBriefMessage");
    EXPECT_EQ(HandleASError(std::nullopt), QVariant(QString("")));
    EXPECT_EQ(HandleASError(QVariantMap{{number, -2753}, {full, "full"}, {brief, "brief"}}),
              QVariant(QVariantList{-2753, "full"}));
    EXPECT_EQ(HandleASError(QVariantMap{{number, 5}, {brief, "brief"}}), QVariant(QVariantList{5, "brief"}));
    EXPECT_EQ(HandleASError(QVariantMap{}), QVariant(QVariantList{0, "Unidentified AppleScript error."}));
}

TEST(HandlerCallEvent, IsAddressedToThisProcessWithTheLowerCasedName)
{
    const Descriptor parameters = ScriptCoertions::aeDescriptorValue(QVariantList{QStringLiteral("a")});
    const Descriptor event = handlerCallEvent(QStringLiteral("Get_EXIF_Image"), parameters);
    EXPECT_EQ(fourCharString(event.descriptorType()), QStringLiteral("aevt"));
    EXPECT_EQ(fourCharString(event.eventClass()), QStringLiteral("ascr"));
    EXPECT_EQ(fourCharString(event.eventID()), QStringLiteral("psbr"));
    EXPECT_EQ(event.returnID(), -1);
    EXPECT_EQ(event.transactionID(), 0);
    ASSERT_TRUE(event.target().has_value());
    EXPECT_EQ(fourCharString(event.target()->descriptorType()), QStringLiteral("kpid"));
    EXPECT_EQ(readData<qint32>(*event.target()), qint32(getpid()));
    EXPECT_EQ(event.descriptorForKeyword(fourCharCode("snam"))->stringValue(), QStringLiteral("get_exif_image"));
    EXPECT_EQ(event.descriptorForKeyword(DescType::DirectObject), parameters);
}

TEST(CompiledScriptLoading, ReportsMissingFilesAndSyntaxErrors)
{
    const MethodRegistry methods = buildMethodTable();
    QVariantMap error;
    EXPECT_EQ(CompiledScript::fromFile(methods, QStringLiteral("/nonexistent/perl.scpt"), &error), nullptr);
    EXPECT_EQ(error.value(QStringLiteral("NSAppleScriptErrorNumber")), QVariant(-43));

    TemporaryFolder dir;
    QFile broken(dir.filePath(QStringLiteral("broken.scpt")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("function ok() {}\nvar x = ;\n");
    broken.close();
    EXPECT_EQ(CompiledScript::fromFile(methods, broken.fileName(), &error), nullptr);
    EXPECT_EQ(error.value(QStringLiteral("NSAppleScriptErrorNumber")), QVariant(-2740));
    EXPECT_TRUE(error.value(QStringLiteral("NSAppleScriptErrorMessage")).toString().startsWith(broken.fileName() + ":2:"))
        << error.value(QStringLiteral("NSAppleScriptErrorMessage")).toString().toStdString();
    EXPECT_FALSE(error.value(QStringLiteral("NSAppleScriptErrorBriefMessage")).toString().isEmpty());
}

TEST(CompiledScriptLoading, TopLevelRunsOnceBeforeTheFirstHandler)
{
    const MethodRegistry methods = buildMethodTable();
    CompiledScript script(methods, QStringLiteral("var calls = 0; function count() { return ++calls; }"));
    EXPECT_EQ(runScriptSubroutine(script, QStringLiteral("count")), QVariant(1));
    EXPECT_EQ(runScriptSubroutine(script, QStringLiteral("count")), QVariant(2));
}

TEST(ScriptFiles, HandlerNamesAreFoundAsByteSubstrings)
{
    TemporaryFolder dir;
    QFile file(dir.filePath(QStringLiteral("helper.scpt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("function foo() {}\n");
    file.close();
    EXPECT_EQ(validSubroutinesFromArray({"foo", "fo", "bar", "Foo", QString::fromUtf8("fé")}, file.fileName()),
              QVariant(QVariantList{"foo", "fo", QString::fromUtf8("fé")}))
        << "a name with no ASCII form searches for nothing, which is found";
    EXPECT_EQ(subroutinesInScriptFile(file.fileName()), QVariant(QVariantList()));
    EXPECT_FALSE(validSubroutinesFromArray({"foo"}, dir.filePath(QStringLiteral("missing"))).isValid());
    EXPECT_FALSE(subroutinesInScriptFile(dir.filePath(QStringLiteral("missing"))).isValid());
    QFile empty(dir.filePath(QStringLiteral("empty.scpt")));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    EXPECT_FALSE(subroutinesInScriptFile(empty.fileName()).isValid());
}

TEST(ByteSearch, FindsTheFirstOccurrence)
{
    using DataAdditions::NotFound;
    using DataAdditions::offsetOfData;
    EXPECT_EQ(offsetOfData(QByteArray("abcabc"), QByteArray()), 0);
    EXPECT_EQ(offsetOfData(QByteArray(), QByteArray()), 0);
    EXPECT_EQ(offsetOfData(QByteArray("abcabc"), QByteArray("ca")), 2);
    EXPECT_EQ(offsetOfData(QByteArray("abcabc"), QByteArray("abcabc")), 0);
    EXPECT_EQ(offsetOfData(QByteArray("abc"), QByteArray("abcd")), NotFound);
    EXPECT_EQ(offsetOfData(QByteArray("abc"), QByteArray("bd")), NotFound);
    EXPECT_EQ(offsetOfData(QByteArray("a\0b", 3), QByteArray("\0b", 2)), 1);
    EXPECT_EQ(NotFound, 2147483647);
}

TEST(RunScript, AnswersTheLastValueOrNil)
{
    const MethodRegistry methods = buildMethodTable();
    EXPECT_EQ(ScriptRunner::runScript(methods, QStringLiteral("var a = 2; a * 21")), QVariant(42));
    EXPECT_EQ(ScriptRunner::runScript(methods, QStringLiteral("[1.5, 'x']")),
              QVariant(QVariantList{QVariant::fromValue(1.5f), QStringLiteral("x")}));
    EXPECT_FALSE(ScriptRunner::runScript(methods, QStringLiteral("1 +")).isValid());
    EXPECT_FALSE(ScriptRunner::runScript(methods, QStringLiteral("throw 1")).isValid());
    EXPECT_EQ(ScriptRunner::runScript(methods, QStringLiteral("callMethod('the end', 'titleCaseString')")),
              QVariant(QStringLiteral("The End")))
        << "scripts reach native code too";
    // A script that runs itself stops at the nesting limit instead of
    // exhausting the stack; each level counts the ones below it.
    TemporaryFolder selfFolder;
    QFile self(selfFolder.filePath(QStringLiteral("self.js")));
    ASSERT_TRUE(self.open(QIODevice::WriteOnly));
    self.write(QStringLiteral("var below = callClassMethod('ROZ_MiscMethods', 'runScriptFile:', [%1]);\n"
                              "below === null ? 1 : below + 1")
                   .arg(JsonString::quoted(self.fileName()))
                   .toUtf8());
    self.close();
    testing::internal::CaptureStderr();
    EXPECT_EQ(ScriptRunner::runScriptFile(methods, self.fileName()), QVariant(24));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("scripts nested more than 24 deep"), std::string::npos);

    TemporaryFolder dir;
    QFile file(dir.filePath(QStringLiteral("answer.js")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("'answer: ' + (40 + 2)");
    file.close();
    EXPECT_EQ(ScriptRunner::runScriptFile(methods, file.fileName()), QVariant(QStringLiteral("answer: 42")));
    EXPECT_FALSE(ScriptRunner::runScriptFile(methods, dir.filePath(QStringLiteral("missing.js"))).isValid());
}

} // namespace
