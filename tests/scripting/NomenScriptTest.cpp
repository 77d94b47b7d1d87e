#include "MethodTable.h"
#include "TestPrinting.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct ScriptRun {
    int exitCode;
    QString out;
    QString err;
};

ScriptRun nomenScript(const QStringList &arguments, const QString &timeZone = QStringLiteral("UTC"))
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TZ"), timeZone);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(NOMEN_SCRIPT_PATH), arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(30000))
        return {-1, QString(), QStringLiteral("timed out")};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QString readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// Every selector of the text toolkit, spelled exactly as scripts call it.
const QStringList textSelectors = {
    "log", "isBlankString", "characters", "characterCount", "charAtIndex:", "firstCharacter", "words", "wordCount",
    "wordAtIndex:", "paragraphs", "paragraphCount", "paragraphAtIndex:", "tokensSeparatedByCharactersFromSet:",
    "reverse", "titleCaseString", "stripDiacritical", "clean:", "cleanWithReplace:withCharacter:", "trimFromStart:",
    "trimFromEnd:", "trimFromBoth:", "hasCaseInsensitivePrefix:", "hasCaseInsensitiveSuffix:", "deprefix:",
    "desuffix:", "deprefixCaseInsensitive:", "desuffixCaseInsensitive:", "snr:replaceWith:",
    "snrBatch:replaceArray:", "containsString:consideringCase:", "substringToDelim:", "substringFromDelim:toDelim:",
    "validateWithRegEx:", "grep:options:", "substringsMatchingRegularExpression:count:options:ranges:error:"};

struct ClassSelectors {
    const char *subsystem; // which golden run calls them
    MethodKind kind;
    const char *className;
    QStringList selectors;
};

// Every selector scripts may call, by class, spelled exactly as they call it.
const QList<ClassSelectors> scriptSelectors = {
    {"text", MethodKind::Instance, "NSString", textSelectors},
    {"text", MethodKind::Class, "NSCharacterSet", {"allWhitespaceCharacterSet", "newlineCharacterSet"}},
    {"bridge", MethodKind::Instance, "NSAppleEventDescriptor",
     {"aeDescriptorValue", "objCObjectValue", "logDescriptorType", "isMissingValue", "int16Value",
      "unsignedInt32Value", "float32Value", "float64Value", "longDateTimeValue"}},
    {"bridge", MethodKind::Class, "NSAppleEventDescriptor",
     {"descriptorWithInt16:", "descriptorWithUnsignedInt32:", "descriptorWithFloat32:", "descriptorWithFloat64:",
      "descriptorWithLongDateTime:", "registerConversionSubroutine:selector:forDescriptorTypes:"}},
    {"bridge", MethodKind::Instance, "NSNumber",
     {"aeDescriptorValue", "ROZ_DescriptorValueWithSignedIntP:byteCount:",
      "ROZ_DescriptorValueWithUnsignedIntP:byteCount:", "ROZ_DescriptorValueWithFloatP:byteCount:"}},
    {"bridge", MethodKind::Class, "NSNumber",
     {"numberWithAEDesc:", "ROZ_NumberWithSignedIntP:byteCount:", "ROZ_NumberWithUnsignedIntP:byteCount:",
      "ROZ_NumberWithFloatP:byteCount:"}},
    {"bridge", MethodKind::Instance, "NSString", {"aeDescriptorValue"}},
    {"bridge", MethodKind::Instance, "NSArray", {"aeDescriptorValue"}},
    {"bridge", MethodKind::Instance, "NSDictionary", {"aeDescriptorValue"}},
    {"bridge", MethodKind::Instance, "NSDate", {"aeDescriptorValue"}},
    {"bridge", MethodKind::Class, "NSArray", {"arrayWithAEDesc:"}},
    {"bridge", MethodKind::Class, "NSDictionary", {"dictionaryWithAEDesc:"}},
    {"bridge", MethodKind::Class, "NSString", {"stringWithAEDesc:"}},
    {"bridge", MethodKind::Class, "NSNull", {"nullWithAEDesc:"}},
    {"bridge", MethodKind::Class, "NSDate", {"dateWithAEDesc:"}},
    {"bridge", MethodKind::Instance, "NSData", {"offsetOfData:"}},
    {"bridge", MethodKind::Instance, "NSAppleScript",
     {"ROZ_runScriptSubroutine:", "ROZ_runScriptSubroutine:withParameter:", "ROZ_runScriptSubroutine:withParameters:",
      "ROZ_runScriptSubroutine:withParametersFromArray:",
      "ROZ_ExecuteWithoutTranslationSubroutine:error:withParametersDesc:", "ROZ_HandleASError:"}},
    {"bridge", MethodKind::Class, "NSAppleScript", {"ROZ_subroutinesInScriptFile:", "ROZ_validSubroutinesFromArray:inScriptFile:"}},
    {"bridge", MethodKind::Class, "ROZ_MiscMethods", {"runScript:", "runScriptFile:"}},
    {"desktop", MethodKind::Class, "ROZ_MiscMethods",
     {"runTask:withArguments:onData:atWorkingDirectory:", "returnOSVersion", "return104Plus", "return105Plus",
      "returnHostName", "returnShortUserName", "returnFullUserName", "returnFullUserNameInits",
      "returnClipboardString", "returnClipboard", "setClipboard:", "resetClipboard:", "pasteAndRestore:",
      "returnStartupItem", "setStartupItem:"}},
};

TEST(MethodTable, RegistersEverySelectorByItsExactName)
{
    const MethodRegistry table = buildMethodTable();
    for (const ClassSelectors &expected : scriptSelectors) {
        const QStringList registered = table.selectors(expected.kind, QString::fromLatin1(expected.className));
        for (const QString &selector : expected.selectors)
            EXPECT_TRUE(registered.contains(selector))
                << MethodRegistry::methodName(expected.kind, expected.className, selector).toStdString();
    }
}

TEST(NomenScript, AnswersEverySelectorByName)
{
    const QString script = QStringLiteral(NOMEN_TEST_DATA "/every_selector.js");
    const ScriptRun run = nomenScript({script});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, readFile(QStringLiteral(NOMEN_TEST_DATA "/every_selector.expected")));
    // Each selector printed once, so none was skipped.
    for (const QString &selector : textSelectors)
        EXPECT_TRUE(run.out.contains(u'\n' + selector + u' ') || run.out.startsWith(selector + u' '))
            << selector.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("] a (null) b\n"))) << "log writes to the system log";
}

TEST(NomenScript, AnswersEveryScriptBridgeSelectorByName)
{
    const ScriptRun run = nomenScript({QStringLiteral(NOMEN_TEST_DATA "/script_bridge.js")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, readFile(QStringLiteral(NOMEN_TEST_DATA "/script_bridge.expected")));
    for (const ClassSelectors &group : scriptSelectors) {
        if (QLatin1String(group.subsystem) != QLatin1String("bridge"))
            continue;
        for (const QString &selector : group.selectors) {
            EXPECT_TRUE(run.out.contains(selector) || selector == QLatin1String("logDescriptorType"))
                << selector.toStdString();
        }
    }
    EXPECT_TRUE(run.err.contains(QStringLiteral("] typeAEList\n"))) << "logDescriptorType writes the type's name";
}

TEST(NomenScript, AnswersEveryDesktopSelectorByName)
{
    // Without a display: the clipboard lives in the process, and the paste
    // has no window to go to but the old contents still come back.
    QTemporaryDir config;
    const QString script = QStringLiteral(R"JS(
        var M = "ROZ_MiscMethods";
        var r = {};
        r.task = callClassMethod(M, "runTask:withArguments:onData:atWorkingDirectory:", ["/bin/cat", ["-"], "fed\n\n", ""]);
        r.version = callClassMethod(M, "returnOSVersion");
        r.plus = [callClassMethod(M, "return104Plus"), callClassMethod(M, "return105Plus")];
        r.names = [callClassMethod(M, "returnHostName"), callClassMethod(M, "returnShortUserName"),
                   callClassMethod(M, "returnFullUserName"), callClassMethod(M, "returnFullUserNameInits")];
        r.set = callClassMethod(M, "setClipboard:", ["first"]);
        var saved = callClassMethod(M, "returnClipboard");
        callClassMethod(M, "setClipboard:", ["second"]);
        r.second = callClassMethod(M, "returnClipboardString");
        callClassMethod(M, "resetClipboard:", [saved]);
        r.restored = callClassMethod(M, "returnClipboardString");
        callClassMethod(M, "pasteAndRestore:", ["pasted"]);
        r.duringPaste = callClassMethod(M, "returnClipboardString");
        callClassMethod(M, "setStartupItem:", [true]);
        r.startup = callClassMethod(M, "returnStartupItem");
        callClassMethod(M, "setStartupItem:", [false]);
        r.startupAfter = callClassMethod(M, "returnStartupItem");
        [r.task, /^\d+\.\d+\.\d+ \((Intel|PPC)\)$/.test(r.version), typeof r.plus[0], typeof r.names[0],
         r.set, r.second, r.restored, r.duringPaste, r.startup, r.startupAfter].join("|")
    )JS");
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(NOMEN_SCRIPT_PATH), {QStringLiteral("-e"), script});
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(QString::fromUtf8(process.readAllStandardOutput()),
              QStringLiteral("fed|true|boolean|string|true|second|first|pasted|true|false\n"))
        << process.readAllStandardError().toStdString();
}

TEST(NomenScript, PrintsTheCompletionValue)
{
    EXPECT_EQ(nomenScript({"-e", R"(callMethod("the lord of the rings", "titleCaseString", []))"}).out,
              QStringLiteral("The Lord of the Rings\n"));
    EXPECT_EQ(nomenScript({"-e", "var x = 1"}).out, QString());
    EXPECT_EQ(nomenScript({"-e", "({a: [1, 'b'], c: null})"}).out, QStringLiteral("{\"a\":[1,\"b\"],\"c\":null}\n"));
    EXPECT_EQ(nomenScript({"-e", "new Date(2024, 6, 14, 9, 30, 5)"}, QStringLiteral("Europe/Paris")).out,
              QStringLiteral("\"2024-07-14T09:30:05+02:00\"\n"));
    EXPECT_EQ(nomenScript({"-e", "new Date(2024, 0, 14, 9, 30, 5, 250)"}, QStringLiteral("America/New_York")).out,
              QStringLiteral("\"2024-01-14T09:30:05.250-05:00\"\n"));
    EXPECT_EQ(nomenScript({"-e", "print('a', 1, [true]); 'done'"}).out, QStringLiteral("a 1 [true]\ndone\n"));
}

TEST(NomenScript, ReportsErrorsWithFileAndLine)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("broken.js"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("var a = 1;\n\ncallMethod('x', 'noSuchSelector', []);\n");
    file.close();
    const ScriptRun run = nomenScript({path});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, QString());
    EXPECT_EQ(run.err, path + QStringLiteral(":3: NSInvalidArgumentException: -[NSString noSuchSelector]: "
                                             "unrecognized selector sent to instance\n"));

    const ScriptRun syntax = nomenScript({"-e", "1 +"});
    EXPECT_EQ(syntax.exitCode, 1);
    EXPECT_TRUE(syntax.err.startsWith(QStringLiteral("-e:1: SyntaxError"))) << syntax.err.toStdString();
}

TEST(NomenScript, RefusesBadCommandLines)
{
    EXPECT_EQ(nomenScript({}).exitCode, 2);
    EXPECT_EQ(nomenScript({"-e"}).exitCode, 2);
    EXPECT_EQ(nomenScript({"-x", "y"}).exitCode, 2);
    const ScriptRun missing = nomenScript({"/nonexistent/script.js"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("cannot read /nonexistent/script.js")));
}

} // namespace
