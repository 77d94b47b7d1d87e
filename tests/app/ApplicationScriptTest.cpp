// Every selector of the application object, called by name from
// nomen-script, where `application` is the object with the window's
// interface file loaded on the offscreen platform.

#include "TestPrinting.h"

#include <QProcess>
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

} // namespace
