#include "JsonString.h"
#include "NomenScriptRun.h"
#include "TestPrinting.h"

#include <QDeadlineTimer>
#include <QDir>
#include "TemporaryFolder.h"
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

namespace {

// A private set of desktop entries: a viewer that records what it is handed
// (one argument per line) and is the default for plain text and for the
// "nomentest" URL scheme.
class DesktopApplications : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("data/applications")));
        ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("config")));
        ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("bin")));
        recorder = dir.filePath(QStringLiteral("bin/recorder"));
        writeFile(recorder, "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done >> \"$0.log\"\n"
                            "[ $# -eq 0 ] && echo '(none)' >> \"$0.log\"\nexit 0\n");
        ASSERT_TRUE(QFile::setPermissions(recorder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        writeFile(dir.filePath(QStringLiteral("data/applications/nomen-test-viewer.desktop")),
                  "[Desktop Entry]\nType=Application\nName=Test Viewer\nExec=" + recorder.toUtf8() +
                      " %U\nMimeType=text/plain;x-scheme-handler/nomentest;\n");
        writeFile(dir.filePath(QStringLiteral("config/mimeapps.list")),
                  "[Default Applications]\ntext/plain=missing.desktop;nomen-test-viewer.desktop\n"
                  "x-scheme-handler/nomentest=nomen-test-viewer.desktop\n");
    }

    ScriptRun run(const QString &script)
    {
        return nomenScript({QStringLiteral("-e"),
                            QStringLiteral("var DIR = %1, M = \"ROZ_MiscMethods\";\n"
                                           "function call(s, a) { return callClassMethod(M, s, a); }\n")
                                    .arg(JsonString::quoted(dir.path())) +
                                script},
                           {{QStringLiteral("XDG_DATA_HOME"), dir.filePath(QStringLiteral("data"))},
                            {QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("config"))}});
    }

    // What the viewer was handed, in any order, once `count` lines arrived.
    QStringList recorded(int count)
    {
        QStringList lines;
        for (QDeadlineTimer deadline(10000); !deadline.hasExpired(); QThread::msleep(50)) {
            lines = readFile(recorder + QStringLiteral(".log")).split(u'\n', Qt::SkipEmptyParts);
            if (lines.size() >= count)
                break;
        }
        lines.sort();
        return lines;
    }

    TemporaryFolder dir;
    QString recorder;
};

TEST_F(DesktopApplications, AreFoundLaunchedAndChosenThroughDesktopEntries)
{
    // A name that a shell would act on, to show no shell reads it.
    const QString name = QStringLiteral("notes $(touch pwned).txt");
    writeFile(dir.filePath(name), "plain words\n");
    const ScriptRun result = run(QStringLiteral(R"JS(
var FILE = DIR + "/notes $(touch pwned).txt";
print(call("launchApplication:", ["test viewer"]), call("launchApplication:", ["nomen-test-viewer"]),
      call("launchApplication:", ["No Such Application"]));
print(call("openFile:withApplication:", [FILE, null]), call("openFile:withApplication:", [FILE, "Test Viewer"]),
      call("openFile:withApplication:", [DIR + "/missing.txt", null]),
      call("openFile:withApplication:", [FILE, "No Such Application"]));
print(call("returnDefaultAppForItem:", [FILE]) == DIR + "/bin/recorder", call("returnItemDefaultApp:", [FILE]));
print(call("returnDefaultAppForItem:", [DIR + "/missing.txt"]) === "");
print(call("returnDefaultAppForURLScheme:", ["nomentest:"]) == DIR + "/bin/recorder",
      call("returnDefaultAppForURLScheme:", ["nosuchscheme:"]) === "", call("returnDefaultAppForURLScheme:", [""]) === "");
call("openURL:", ["nomentest:hello"]);
call("openURLInBackground:", ["nomentest:quiet"]);
)JS"));
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    EXPECT_EQ(result.out, QStringLiteral("true true false\ntrue true false false\ntrue Test Viewer\ntrue\ntrue true true\nnull\n")) << "the openers answer nothing";
    // Local files reach the application as paths.
    const QString path = dir.filePath(name);
    EXPECT_EQ(recorded(6), QStringList({"(none)", "(none)", path, path, "nomentest:hello", "nomentest:quiet"}));
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("pwned"))));
}

// On a bare server: no display, no window manager, no service addresses.
TEST_F(DesktopApplications, EveryOtherSelectorAnswersOnABareServer)
{
    const ScriptRun result = nomenScript({QStringLiteral("-e"), QStringLiteral(R"JS(
var M = "ROZ_MiscMethods";
function call(s, a) { return callClassMethod(M, s, a || []); }
// Built here, so that our own command line does not hold the name.
var absent = ["nomen", "absent", "4711"].join("-");
print(call("pidForApplication:", [absent]), call("killApplication:", [absent]));
print(call("returnLaunchedApplicationsPaths").length > 0, JSON.stringify(call("returnLaunchedApplications")),
      call("returnCurrentApplication"), JSON.stringify(call("returnLaunchedApplicationProperty:forHFS:", ["NSApplicationPath", true])));
call("hideOtherApplications");
call("poof:", ["{10, 10}"]);
print(call("sendGoogleSMS:withSubject:toPhone:forCarrier:", ["hi", "", "5551234567", "ATT"]),
      call("returnCarrierForMobileNumber:", ["5551234567"]));
print(call("isNetworkAvailable:", ["localhost"]), JSON.stringify(call("returnProxyInfo")), JSON.stringify(call("returnProxyInfoRaw")));
)JS")},
                                         {{QStringLiteral("DISPLAY"), QString()},
                                          {QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("config"))},
                                          {QStringLiteral("http_proxy"), QString()}, {QStringLiteral("HTTP_PROXY"), QString()},
                                          {QStringLiteral("https_proxy"), QString()}, {QStringLiteral("HTTPS_PROXY"), QString()},
                                          {QStringLiteral("no_proxy"), QString()}, {QStringLiteral("NO_PROXY"), QString()},
                                          {QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("memory")}});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    EXPECT_EQ(result.out, QStringLiteral(
        "0 false\ntrue [] null []\nfalse null\n"
        "true {\"HTTPEnabled\":false,\"HTTPHost\":\"\",\"HTTPPort\":80,\"HTTPSEnabled\":false,\"HTTPSHost\":\"\",\"HTTPSPort\":443} "
        "{\"HTTPEnable\":0,\"HTTPSEnable\":0}\n"));
}

TEST_F(DesktopApplications, OpenAFileWhoseNameIsNotText)
{
    const QByteArray name = dir.path().toUtf8() + "/caf\xe9.txt";
    const int made = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    ASSERT_GE(made, 0) << name.constData();
    ::close(made);
    // The script finds the name as a user's script would, in a listing.
    const ScriptRun result = run(QStringLiteral(R"JS(
for (var item of call("returnFolderContents:", [DIR]))
    if (item.startsWith("caf")) print(call("openFile:withApplication:", [DIR + "/" + item, null]));
)JS"));
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    EXPECT_EQ(result.out, QStringLiteral("true\n"));
    QFile log(recorder + QStringLiteral(".log"));
    for (QDeadlineTimer deadline(10000); !deadline.hasExpired() && log.size() == 0; QThread::msleep(50)) {
    }
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_EQ(log.readAll(), name + '\n') << "the name's bytes as they are";
}

} // namespace
