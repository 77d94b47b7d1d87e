// Every selector of the application object, called by name from
// nomen-script, where `application` is the object with the window's
// interface file loaded on the offscreen platform.

#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>

namespace {

QString nomenScript(const QString &script, const QString &language = QStringLiteral("en_US.UTF-8"))
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LANG"), language);
    environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(NOMEN_SCRIPT_PATH), {QStringLiteral("-e"), script});
    process.waitForFinished(60000);
    // Standard output only: perl, run directly, may warn about the locale.
    return QString::fromUtf8(process.readAllStandardOutput());
}

// Read back through the bridge, the formatter answers [YES, number] or
// [NO, error text], in the units of the user's language.
TEST(ApplicationScript, TheByteFormatterReadsBackInTheUsersUnits)
{
    const QString script = QStringLiteral(R"JS(
        var f = "ROZ_ByteFormatter", r = [];
        r.push(callClassMethod(f, "stringForObjectValue:", [12]));
        ["1.5 KB", "12 Byte", "12 B", "12B"].forEach(function (text) {
            r.push(callClassMethod(f, "getObjectValue:forString:errorDescription:", [null, text, null]));
        });
        var styled = callClassMethod(f, "attributedStringForObjectValue:withDefaultAttributes:", [1536, {"NSFont": "x"}]);
        r.push(callMethod(styled, "string", []), callMethod(styled, "attributes", []));
        print(JSON.stringify(r));
    )JS");
    EXPECT_EQ(nomenScript(script).trimmed(),
              R"(["12 B",[true,1536],[false,"Couldn't find unit designation"],[true,12],[false,"Couldn't find unit designation"],"1.5 KB",{"NSFont":"x"}])");
    EXPECT_EQ(nomenScript(script, QStringLiteral("de_DE.UTF-8")).trimmed(),
              R"(["12 Byte",[true,1536],[true,12],[false,"Keine Maßeinheit gefunden"],[false,"Keine Maßeinheit gefunden"],"1.5 KB",{"NSFont":"x"}])");
}

TEST(ApplicationScript, EverySelectorByName)
{
    const QString out = nomenScript(QStringLiteral(R"JS(
        var a = application, r = [];
        function show(label, value) { r.push(label + " " + JSON.stringify(value)); }
        callMethod(a, "setConstantData:", [["IMG_«#»_", 1, 1, true, 0, true, "(\\d+)", "<$1>", "GREP", false, 0, 0,
                                            true, "Title Case", true, "_«YYYY-MM-DD»", 1, 1, false, 0, "", false, false, "lowercase"]]);
        show("generateNewName:", [1, 2].map(function (i) {
            return callMethod(a, "generateNewName:", [["crème " + i + ".JPG", 120, true, "/x/", null, new Date(Date.UTC(2005, 2, 7, 12))]]); }));
        show("addLeadingZeros:", callMethod(a, "addLeadingZeros:", [[7, 120, 0]]));
        show("changeCase:theCase:", callMethod(a, "changeCase:theCase:", ["hello. world", "Sentence case"]));
        show("replaceInsertConstants:withDate:", callMethod(a, "replaceInsertConstants:withDate:", ["«date %Y%m%d» «DD-MM»", new Date(Date.UTC(2005, 2, 7, 12))]));
        show("snrGrep:searchFor:replaceWith:consideringCase:", callMethod(a, "snrGrep:searchFor:replaceWith:consideringCase:", ["Photo photo", "PHOTO", "pic", false]));
        show("escapeString:", callMethod(a, "escapeString:", ["a/b\"c\\d"]));
        show("escapeStringT:", callMethod(a, "escapeStringT:", ["a/b\"c\\d"]));
        show("runPERL:", [callMethod(a, "runPERL:", [["-e", "print 6*7, qq(\\n)"]]), callMethod(a, "runPERL:", [["-e", "exit 1"]])]);
        show("getEXIFDate:", callMethod(a, "getEXIFDate:", ["/nonexistent.jpg"]));
        callMethod(a, "setUseEXIFDate:", [true]);
        callMethod(a, "getConstantData");
        callMethod(a, "setDisplayRealtimePreview:", [true]);
        callMethod(a, "textDidChange:", ["prefix"]);
        show("textDidChange:", "done");
        r.join("\n")
    )JS"));
    EXPECT_EQ(out, QStringLiteral(
        "generateNewName: [\"IMG_001_Creme <1>_2005-03-07.JPG\",\"IMG_002_Creme <2>_2005-03-07.JPG\"]\n"
        "addLeadingZeros: \"007\"\n"
        "changeCase:theCase: \"Hello. World\"\n"
        "replaceInsertConstants:withDate: \"20050307 07-03\"\n"
        "snrGrep:searchFor:replaceWith:consideringCase: \"pic pic\"\n"
        "escapeString: \"a\\\\/b\\\\\\\"c\\\\d\"\n"
        "escapeStringT: \"a\\\\/b\\\\\\\"c\\\\\\\\d\"\n"
        "runPERL: [\"42\",false]\n"
        "getEXIFDate: false\n"
        "textDidChange: \"done\"\n"));
}

TEST(ApplicationScript, TheWindowsControlsDecideTheSettings)
{
    // Filled as a person would fill the window, then composed as the window would.
    const QString out = nomenScript(QStringLiteral(R"JS(
        var w = application;
        callMethod(w, "getConstantData");
        callMethod(w, "generateNewName:", [["holiday.jpeg", 5, false, "/p/Trip/", null, null]])
    )JS"));
    EXPECT_EQ(out, QStringLiteral("holiday.jpeg\n")) << "the interface file's defaults keep names as they are";
}

TEST(ApplicationScript, GermanTokensAreWhatAGermanUserTypes)
{
    const QString out = nomenScript(QStringLiteral(R"JS(
        callMethod(application, "replaceInsertConstants:withDate:", ["«JJJJ-MM-TT»|«TT-MM»|«YYYY-MM-DD»", new Date(Date.UTC(2005, 2, 7, 12))])
    )JS"), QStringLiteral("de_DE.UTF-8"));
    EXPECT_EQ(out, QStringLiteral("2005-03-07|07-03|«YYYY-MM-DD»\n"));
}

TEST(ApplicationScript, EveryListingTableAndBatchSelectorByName)
{
    TemporaryFolder dir;
    QDir().mkpath(dir.filePath("Sub"));
    for (const char *name : {"a.jpg", "b.png", "Sub/c.jpg"}) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x");
    }
    const QString out = nomenScript(QStringLiteral(R"JS(
        var a = application, R = "%1", r = [];
        function show(label, value) { r.push(label + " " + JSON.stringify(value).split(R).join("R")); }
        var rows = callMethod(a, "parseItems:", [[[R], [""], ["jpg"], false, true, false, true, false, R]]);
        rows.sort(function (x, y) { return (x.location + x.original) < (y.location + y.original) ? -1 : 1; });
        show("parseItems:", rows.map(function (x) { return (x.include ? "+" : "-") + x.location + x.original; }));
        show("listFolder:", callMethod(a, "listFolder:", [R]).sort());
        show("directoryContents:withInvisibles:", callMethod(a, "directoryContents:withInvisibles:", [R, true]).sort());
        show("getFileInfo:", Object.keys(callMethod(a, "getFileInfo:", [R + "/a.jpg"])).sort());
        show("getFolderInfo:", Object.keys(callMethod(a, "getFolderInfo:", [R + "/Sub"])).sort());
        show("containerAndItemName:", callMethod(a, "containerAndItemName:", [R + "/Sub/c.jpg"]));
        show("fileTypeCode:inSet:", callMethod(a, "fileTypeCode:inSet:", [0x54455854, ["JPEG", "TEXT"]]));
        callMethod(a, "setTableRows:", [rows]);
        show("tableRows", callMethod(a, "tableRows").length);
        callMethod(a, "setValue:atColumn:atRow:", [false, "include", 1]);
        show("getValueForColumn:atRow:", [callMethod(a, "getValueForColumn:atRow:", ["include", 1]), callMethod(a, "getValueForColumn:atRow:", ["original", 0])]);
        callMethod(a, "setConstantData:", [["N«#»", 1, 1, true, 0, false, "", "", "literal", false, 0, 0, false, "", false, "", 0, 0, false, 0, "", false, false, ""]]);
        var result = callMethod(a, "makeReplacementNames:", [["files", new Date(), "Renaming", "%d of %d %@", 0, 0, 3, true]]);
        show("makeReplacementNames:", result.map(function (x) { return x["new"]; }));
        show("renameFile:toPath:", [callMethod(a, "renameFile:toPath:", [R + "/a.jpg", R + "/N1.jpg"]),
                                    callMethod(a, "renameFile:toPath:", [R + "/b.png", R + "/N1.jpg"])]);
        show("cleanData:", Object.keys(callMethod(a, "cleanData:", [[{original: "x"}]])[0]).sort());
        show("runCommand:withArguments:", callMethod(a, "runCommand:withArguments:", ["/bin/echo", ["hi"]]));
        callMethod(a, "stopIndeterminateProgress:", [10]);
        callMethod(a, "updateProgress:maxCount:withSuperMessage:withMessage:", [5, 10, "up", "down"]);
        callMethod(a, "updateStatus:", ["status line"]);
        callMethod(a, "stopProgressAction:", [null]);
        show("stopProgressAction:", callMethod(a, "parseItems:", [[[R], [""], [""], false, false, false, false, true, R]]));
        callClassMethod("ASKDataSource", "registerViewForDraggedTableRows:", [null]);
        r.join("\n")
    )JS").arg(dir.path()));
    EXPECT_EQ(out, QStringLiteral(
        "parseItems: [\"+R/Sub/c.jpg\",\"+R/a.jpg\",\"-R/b.png\"]\n"
        "listFolder: [\"R/Sub\",\"R/a.jpg\",\"R/b.png\"]\n"
        "directoryContents:withInvisibles: [\"Sub\",\"a.jpg\",\"b.png\"]\n"
        "getFileInfo: [\"creation\",\"file_size\",\"modification\",\"the_extension\",\"type_code\"]\n"
        "getFolderInfo: [\"creation\",\"modification\"]\n"
        "containerAndItemName: [\"c.jpg\",\"R/Sub/\"]\n"
        "fileTypeCode:inSet: true\n"
        "tableRows 3\n"
        "getValueForColumn:atRow: [false,\"c.jpg\"]\n"
        "makeReplacementNames: [\"N1.jpg\",\"a.jpg\",\"b.png\"]\n"
        "renameFile:toPath: [true,false]\n"
        "cleanData: [\"creation\",\"modification\",\"original\"]\n"
        "runCommand:withArguments: \"hi\\n\"\n"
        "stopProgressAction: false\n"));
}

TEST(ApplicationScript, SafeRenamingThroughTheScript)
{
    TemporaryFolder dir;
    TemporaryFolder data;
    for (const char *name : {"a.jpg", "b.jpg"}) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(name);
    }
    qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());
    const QString out = nomenScript(QStringLiteral(R"JS(
        var a = application, R = "%1";
        var swap = [{from: R + "/a.jpg", to: R + "/b.jpg"}, {from: R + "/b.jpg", to: R + "/a.jpg"}];
        var plan = callMethod(a, "planRenames:", [swap]).map(function (o) { return o.status; });
        var done = callMethod(a, "applyRenames:", [swap]).map(function (o) { return o.status; });
        var unfinished = callMethod(a, "hasUnfinishedRename");
        var undone = callMethod(a, "undoLastRename").length;
        [plan, done, unfinished, undone, callMethod(a, "planRenames:", [[{from: R + "/a.jpg", to: R + "/b.jpg"}]])[0].status].join("|")
    )JS").arg(dir.path()));
    qunsetenv("XDG_DATA_HOME");
    EXPECT_EQ(out, QStringLiteral("renamed,renamed|renamed,renamed|false|2|conflict\n"));
    QFile a(dir.filePath("a.jpg"));
    ASSERT_TRUE(a.open(QIODevice::ReadOnly));
    EXPECT_EQ(a.readAll(), QByteArray("a.jpg")) << "the swap was undone";
}

} // namespace
