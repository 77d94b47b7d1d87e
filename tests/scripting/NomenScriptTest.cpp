#include "JsonString.h"
#include "NomenScriptRun.h"
#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>

namespace {

// Each golden run calls its selectors by their exact names: a selector
// missing from the method table stops the run with an error.

TEST(NomenScript, AnswersEverySelectorByName)
{
    const QString script = QStringLiteral(NOMEN_TEST_DATA "/every_selector.js");
    const ScriptRun run = nomenScript({script});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, readFile(QStringLiteral(NOMEN_TEST_DATA "/every_selector.expected")));
    EXPECT_TRUE(run.err.contains(QStringLiteral("] a (null) b\n"))) << "log writes to the system log";
}

// A line or paragraph separator in a dialog's texts ends no string of the
// dialog's script: the dialog appears and answers.
TEST(NomenScript, ADialogWhoseTextsHoldLineSeparatorsAppears)
{
    const ScriptRun run = nomenScript({QStringLiteral("-e"),
                                       QStringLiteral("JSON.stringify(callClassMethod('ROZ_MiscMethods', "
                                                      "'displayMessage:withButtons:withDefaultButton:withIcon:giveUpAfter:', "
                                                      "['one\\u2028two\\u2029three', ['O\\u2028K'], 'O\\u2028K', 1, 0]))")});
    EXPECT_EQ(run.out, QStringLiteral("\"O\u2028K\"\n")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("dialog: : one\u2028two\u2029three [O\u2028K] -> O\u2028K"))) << run.err.toStdString();
}

// Without a display nobody can answer: each alert and dialog is written to
// standard error, answered with its default button, and the texts arrive
// unchanged through the dialog script.
TEST(NomenScript, AnswersEveryAlertUtilityAndFileOperationSelectorByName)
{
    TemporaryFolder folder;
    const QString script = readFile(QStringLiteral(NOMEN_TEST_DATA "/alerts_and_files.js"));
    const ScriptRun run =
        nomenScript({QStringLiteral("-e"), QStringLiteral("var DIR = %1;\n").arg(JsonString::quoted(folder.path())) + script});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(QString(run.out).replace(folder.path(), QStringLiteral("DIR")),
              readFile(QStringLiteral(NOMEN_TEST_DATA "/alerts_and_files.expected")));
    for (const char *line : {"alert: Save?: 100% sure [Save, Cancel, Discard] -> Save\n",
                             "] Disk: Nomen will now quit\nalert: Disk: Nomen will now quit [Quit] -> Quit\n",
                             "dialog: : He said \"hi\"\n${x} \\ </b> [A \"quoted\" one, Cancel] -> A \"quoted\" one\n",
                             "dialog: Titled: Gives up [OK] -> (gave up)\n", "] status line\n"})
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(line))) << line << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QStringLiteral("] Rename failed"))) << "a retry prompt is not logged";
}

TEST(NomenScript, AnswersEveryCollectionDateAndDefaultsSelectorByName)
{
    TemporaryFolder folder;
    const QString table = folder.filePath(QStringLiteral("people.tsv"));
    writeFile(table, "# who\r\nname\tage\r\nAnn\t31\r\n\r\nBo\n");
    const QString script = readFile(QStringLiteral(NOMEN_TEST_DATA "/collections_and_defaults.js"));
    const ScriptRun run =
        nomenScript({QStringLiteral("-e"), QStringLiteral("var TSV_FILE = %1;\n").arg(JsonString::quoted(table)) + script},
                    {{"XDG_CONFIG_HOME", folder.path()}, {"LC_ALL", "en_US.UTF-8"}});
    const QString &out = run.out;
    const QString &err = run.err;
    ASSERT_EQ(run.exitCode, 0) << err.toStdString();
    EXPECT_EQ(out, readFile(QStringLiteral(NOMEN_TEST_DATA "/collections_and_defaults.expected")));
    EXPECT_TRUE(err.contains(QStringLiteral("returnPlistValue error: ") + table)) << err.toStdString();
}

TEST(NomenScript, AnswersEveryScriptBridgeSelectorByName)
{
    const ScriptRun run = nomenScript({QStringLiteral(NOMEN_TEST_DATA "/script_bridge.js")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, readFile(QStringLiteral(NOMEN_TEST_DATA "/script_bridge.expected")));
    EXPECT_TRUE(run.err.contains(QStringLiteral("] typeAEList\n"))) << "logDescriptorType writes the type's name";
}

TEST(NomenScript, AnswersEveryDesktopSelectorByName)
{
    // Without a display: the clipboard lives in the process, and the paste
    // has no window to go to but the old contents still come back.
    TemporaryFolder config;
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
    const ScriptRun run = nomenScript({QStringLiteral("-e"), script},
                                      {{"XDG_CONFIG_HOME", config.path()}, {"DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}});
    EXPECT_EQ(run.out, QStringLiteral("fed|true|boolean|string|true|second|first|pasted|true|false\n"))
        << run.err.toStdString();
}

TEST(NomenScript, AnswersEveryFileItemSelectorByName)
{
    // One call per selector, against a folder of ours; each line is
    // "selector value" with the folder's path written as DIR.
    TemporaryFolder dir;
    QDir().mkpath(dir.filePath(QStringLiteral("Sub")));
    writeFile(dir.filePath(QStringLiteral("a.txt")), "text");
    const QString script = QStringLiteral(R"JS(
        var M = "ROZ_MiscMethods", D = "%1", f = D + "/a.txt", out = [];
        function show(selector, value) { out.push(selector + " " + JSON.stringify(value).split(D).join("DIR")); }
        function misc(selector, params) { show(selector, callClassMethod(M, selector, params)); }
        show("pathHFS", callMethod(callMethod(f, "pathHFS"), "pathPOSIX"));
        // An alias record is the path's bytes; a file reference is never set.
        show("alias", [callMethod(callMethod(f, "alias"), "objCObjectValue"), callMethod(f + "-gone", "alias")]);
        show("aliasData", [callMethod(f, "aliasData").byteLength === f.length, callMethod(f + "-gone", "aliasData")]);
        show("fsRef", new Uint8Array(callMethod(f, "fsRef")).filter(function (b) { return b === 0; }).length);
        show("stringWithFSRef:", callClassMethod("NSString", "stringWithFSRef:", [null]));
        show("stringAsNumberSort:", callMethod("file2", "stringAsNumberSort:", ["file10"]));
        var d = {};
        callMethod(d, "setBool:forKey:", [true, "b"]);
        callMethod(d, "setInteger:forKey:", [-3, "i"]);
        callMethod(d, "setUnsignedInteger:forKey:", [3, "u"]);
        callMethod(d, "setFloat:forKey:", [1.5, "f"]);
        show("setters", d);
        var strings = {s: "12", t: "yes", dd: new Date(0)};
        ["stringForKey:", "boolForKey:", "integerForKey:", "floatForKey:", "uintForKey:"].forEach(function (s) {
            show(s, [callMethod(strings, s, ["s"]), callMethod(d, s, ["i"])]); });
        show("dateForKey:", callMethod(strings, "dateForKey:", ["dd"]) !== null);
        show("colorForKey:", callMethod(d, "colorForKey:", ["b"]));
        var attrs = {NSFileType: "NSFileTypeRegular", NSFileSize: 4, NSFileOwnerAccountName: "ann", NSFilePosixPermissions: 420};
        ["size", "owner", "posixPermissions", "creationDate", "modificationDate", "type", "isDirectory", "isFile",
         "isSymbolicLink", "isSocket", "isCharacterSpecial", "isBlockSpecial", "isUnknownType", "isExtensionHidden",
         "hfsCreatorCode", "hfsTypeCode", "isReadOnly", "isAppendOnly"].forEach(function (s) { show(s, callMethod(attrs, s)); });
        show("isType:", callMethod(attrs, "isType:", ["NSFileTypeRegular"]));
        show("osType:", ["TEXT", "TXT"].map(function (code) {
            return [callClassMethod("NSDictionary", "osType:", [code]), callClassMethod("ROZ_MiscMethods", "osType:", [code])]; }));
        ["itemExists:", "returnItemName:", "returnItemDisplayedName:", "returnItemExtension:", "returnItemContainer:",
         "returnItemIsLocked:", "returnItemVisiblity:", "returnItemIsFolder:", "returnItemIsPackage:",
         "returnItemIsWritable:", "returnItemUTI:", "returnItemIsImage:", "returnCreatorCode:", "returnFileType:",
         "returnItemPermissions:", "returnImage:", "returnIcon:"].forEach(function (s) { misc(s, [f]); });
        show("dates", [typeof callClassMethod(M, "returnModificationDate:", [f]),
                       Object.keys(callClassMethod(M, "returnCreationAndModificationDate:", [f])).sort(),
                       callClassMethod(M, "returnCreationDate:", [D + "/none"])]);
        show("info", Object.keys(callClassMethod(M, "returnItemInfo:", [f])).sort());
        show("kind", [typeof callClassMethod(M, "returnItemDisplayKind:", [f]), typeof callClassMethod(M, "returnItemDefaultApp:", [f])]);
        show("owner", [typeof callClassMethod(M, "returnItemOwner:", [f]), typeof callClassMethod(M, "returnItemGroup:", [f])]);
        misc("returnFolderContents:", [D]);
        misc("returnCompleteFolderContents:withInvisibles:", [D, true]);
        misc("setModificationDate:toDate:", [f, "2005-03-14 09:05:00 +0100"]);
        misc("setCreationDate:toDate:", [f, "2005-03-14 09:05:00 +0100"]);
        misc("setCreationAndModificationDate:toDate:", [f, "2005-03-14 09:05:00 +0100"]);
        misc("randomizeDate:", [f]);
        misc("setCreatorCode:toCode:", [D + "/none", "ttxt"]);
        misc("setFileType:toType:", [D + "/none", "TEXT"]);
        misc("setItemOwner:toOwner:", [f, callClassMethod(M, "returnItemOwner:", [f])]);
        misc("setItemGroup:toGroup:", [f, callClassMethod(M, "returnItemGroup:", [f])]);
        misc("setItemPermissions:toPermissions:", [f, 384]);
        misc("setItemName:toName:", [f, "b.txt"]);
        misc("deleteKeyPressed:", ["127"]);
        misc("arrowKeyPressed:", [null]);
        misc("expandOutlineItem:atRow:", [null, 0]);
        misc("isOutlineItemExpanded:atRow:", [null, 0]);
        misc("uintForElement:", [-1]);
        misc("stringForElement:", [5]);
        misc("dateForElement:", ["x"]);
        ["isThisAString:", "isThisAnArray:", "isThisADictionary:", "isThisANumber:", "isThisADate:", "isThisABoolean:"]
            .forEach(function (s) { misc(s, [1]); });
        misc("superclassesForObject:", [1]);
        show("methods", [callClassMethod(M, "classMethodsForObject:", ["ROZ_MiscMethods"]).length > 50,
                         callClassMethod(M, "instanceMethodsForObject:", ["x"])[0].method_types.indexOf("@@:") === 0,
                         callClassMethod(M, "classMethodNamesForObject:", ["NSAppleScript"]).indexOf("scriptWithSource:") >= 0,
                         callClassMethod(M, "instanceMethodNamesForObject:", [[]]).length]);
        misc("ivarsForObject:", ["x"]);
        show("describeObject:", callClassMethod(M, "describeObject:", [{}]).replace(/0x[0-9a-f]+/, "0xADDR").split("\n").slice(0, 6));
        out.join("\n")
    )JS").arg(dir.path());
    const ScriptRun run = nomenScript({QStringLiteral("-e"), script});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, readFile(QStringLiteral(NOMEN_TEST_DATA "/file_items.expected")));
    if (qEnvironmentVariableIsSet("NOMEN_WRITE_GOLDEN")) {
        QFile golden(QStringLiteral(NOMEN_TEST_DATA "/file_items.expected"));
        ASSERT_TRUE(golden.open(QIODevice::WriteOnly));
        golden.write(run.out.toUtf8());
    }
}

TEST(NomenScript, PrintsTheCompletionValue)
{
    EXPECT_EQ(nomenScript({"-e", R"(callMethod("the lord of the rings", "titleCaseString", []))"}).out,
              QStringLiteral("The Lord of the Rings\n"));
    EXPECT_EQ(nomenScript({"-e", "var x = 1"}).out, QString());
    EXPECT_EQ(nomenScript({"-e", "({a: [1, 'b'], c: null})"}).out, QStringLiteral("{\"a\":[1,\"b\"],\"c\":null}\n"));
    EXPECT_EQ(nomenScript({"-e", "new Date(2024, 6, 14, 9, 30, 5)"}, {{"TZ", "Europe/Paris"}}).out,
              QStringLiteral("\"2024-07-14T09:30:05+02:00\"\n"));
    EXPECT_EQ(nomenScript({"-e", "new Date(2024, 0, 14, 9, 30, 5, 250)"}, {{"TZ", "America/New_York"}}).out,
              QStringLiteral("\"2024-01-14T09:30:05.250-05:00\"\n"));
    EXPECT_EQ(nomenScript({"-e", "print('a', 1, [true]); 'done'"}).out, QStringLiteral("a 1 [true]\ndone\n"));
}

TEST(NomenScript, ReportsErrorsWithFileAndLine)
{
    TemporaryFolder dir;
    const QString path = dir.filePath(QStringLiteral("broken.js"));
    writeFile(path, "var a = 1;\n\ncallMethod('x', 'noSuchSelector', []);\n");
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
