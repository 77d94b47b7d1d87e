// Window, menu-side and key selectors through nomen-script, the way the main
// script calls them, on a bare server: Qt's offscreen screen, no display.

#include "JsonString.h"
#include "NomenScriptRun.h"
#include "TestPrinting.h"

#include <QImage>
#include "TemporaryFolder.h"

namespace {

// Runs the script with M = "MiscMethods", W(args) making a window and
// P(args) a panel; answers what the last expression printed.
QString run(const QString &script)
{
    const ScriptRun result = nomenScript(
        {QStringLiteral("-e"),
         QStringLiteral("var M = 'ROZ_MiscMethods';\n"
                        "function W(a) { return callClassMethod(M, 'makeWindow:useBorder:useTexture:isCloseable:"
                        "isMiniaturizable:isResizable:isUnified:', a); }\n"
                        "function P(a) { return callClassMethod(M, 'makePanelWindow:useBorder:useTexture:isCloseable:"
                        "isMiniaturizable:isResizable:isUnified:', a); }\n"
                        "function style(w) { return callMethod(w, 'styleMask'); }\n") +
             script},
        {{QStringLiteral("DISPLAY"), QString()}, {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen")}});
    EXPECT_EQ(result.exitCode, 0) << result.err.toStdString();
    return result.out.trimmed();
}

TEST(WindowSelectors, ComposeTheStyleBitsScriptsReadBack)
{
    // Border off keeps only the decoration bits; a panel never takes the
    // unified bit.
    EXPECT_EQ(run("var r = [0, 0, 100, 100];\n"
                  "[style(W([r, false, false, false, false, true, false])), style(W([r, true, true, true, true, true, true])),\n"
                  " style(W([r, false, false, false, false, false, true])), style(W([r, true, false, false, false, false, true])),\n"
                  " style(P([r, true, true, true, true, true, true])), style(P([r, true, true, true, true, true, false])),\n"
                  " style(P([r, false, false, true, false, false, true])),\n"
                  " callMethod(callClassMethod(M, 'makeBorderlessWindow:', [r]), 'styleMask')]"),
              "[8,4367,0,4097,271,271,2,0]");
}

TEST(WindowSelectors, SetLevelsByExactNameAndKeepTransparencyShadowAndFrame)
{
    EXPECT_EQ(run("var w = W([{x: 40, y: 30, width: 320, height: 200}, true, false, true, false, true, false]);\n"
                  "var levels = [callMethod(w, 'level')];\n"
                  "for (var name of ['NSFloatingWindowLevel', 'NSModalPanelWindowLevel', 'nsnormalwindowlevel',\n"
                  "                  'NSScreenSaverWindowLevel', 'kCGDesktopWindowLevel', 'NSTornOffMenuWindowLevel']) {\n"
                  "  callClassMethod(M, 'setWindowLevel:toLevel:', [w, name]); levels.push(callMethod(w, 'level')); }\n"
                  "callClassMethod(M, 'setWindowTransparency:toAlphaValue:', [w, 0.5]);\n"
                  "callClassMethod(M, 'setWindowShadow:useMainShadow:', [w, false]);\n"
                  "var f = callMethod(w, 'frame');\n"
                  "[levels, callMethod(w, 'alphaValue'), callMethod(w, 'hasShadow'), [f.x, f.y, f.width, f.height]]"),
              "[[4,5,5,5,13,2,6],0.5,false,[40,30,320,200]]");
}

TEST(WindowSelectors, RejectRectanglesOfTheWrongShapeAndKeyStrokesThatAreNoRecords)
{
    for (const auto &[call, expected] :
         {std::pair{"callClassMethod('ROZ_MiscMethods', 'makeBorderlessWindow:', [[1, 2, 3]])", "a rectangle"},
          std::pair{"callClassMethod('ROZ_MiscMethods', 'typeAsUser:', [[{key_code: 4}, 1]])", "key stroke records"}}) {
        const ScriptRun result = nomenScript({QStringLiteral("-e"), QString::fromLatin1(call)},
                                             {{QStringLiteral("DISPLAY"), QString()}});
        EXPECT_NE(result.exitCode, 0) << call;
        EXPECT_TRUE(result.err.contains(QLatin1String(expected))) << result.err.toStdString();
    }
}

// A window that is not resizable still takes every frame the script gives
// it; selectors given a nil window or menu change nothing else.
TEST(WindowSelectors, AFixedWindowTakesItsFrameAndNilWindowsAreLeftAlone)
{
    EXPECT_EQ(run("var w = W([[0, 0, 50, 50], true, false, false, false, false, false]);\n"
                  "for (var call of [['setWindowLevel:toLevel:', [null, 'NSFloatingWindowLevel']],\n"
                  "                  ['setWindowTransparency:toAlphaValue:', [null, 0.5]],\n"
                  "                  ['setWindowShadow:useMainShadow:', [null, false]], ['removeView:', [null]],\n"
                  "                  ['attachChildWindow:toParentWindow:', [null, w]], ['attachChildWindow:toParentWindow:', [w, w]],\n"
                  "                  ['insertItem:withTitle:atIndex:shouldEnable:', [null, 'x', 0, true]],\n"
                  "                  ['insertSeparator:atIndex:', [null, -1]], ['removeMenuItems:shouldRelease:', [null, true]]])\n"
                  "  callClassMethod(M, call[0], call[1]);\n"
                  "callMethod(w, 'setFrameOrigin:', [[5, 5]]);\n"
                  "var f = callMethod(w, 'frame'); var moved = [f.x, f.y, f.width, f.height];\n"
                  "callMethod(w, 'setFrame:display:', [[100, 100, 300, 150], true]);\n"
                  "f = callMethod(w, 'frame'); [moved, [f.x, f.y, f.width, f.height]]"),
              "[[5,5,50,50],[100,100,300,150]]");
}

TEST(CustomWindowSelectors, StartBorderlessFloatingAndZoomThereAndBack)
{
    EXPECT_EQ(run("var w = callClassMethod('ROZ_CustomWindow', 'initWithContentRect:styleMask:backing:defer:',\n"
                  "                        [[50, 60, 200, 100], 15, 2, false]);\n"
                  "function frame() { var f = callMethod(w, 'frame'); return [f.x, f.y, f.width, f.height]; }\n"
                  "var start = [style(w), callMethod(w, 'level'), callMethod(w, 'snapTolerance'), callMethod(w, 'padding'),\n"
                  "             callMethod(w, 'snapsToEdges'), callMethod(w, 'canMove'), callMethod(w, 'canResize')];\n"
                  "var before = frame();\n"
                  "callMethod(w, 'setMaxWidth:', [500]); callMethod(w, 'setMaxHeight:', [300]);\n"
                  "callMethod(w, 'zoom:', [null]); var zoomed = frame();\n"
                  "callMethod(w, 'zoom:', [null]); var back = frame();\n"
                  "callMethod(w, 'setCanMove:', [false]);\n"
                  "var still = callMethod(w, 'windowWillUseStandardFrame:defaultFrame:', [w, [0, 0, 800, 600]]);\n"
                  "[start, before, zoomed, back, [still.x, still.y]]"),
              "[[0,5,15,0,false,true,true],[50,60,200,100],[0,0,500,300],[50,60,200,100],[50,60]]");
}

TEST(DateFormatterSelectors, WriteAndReadTheirFormatAndRefuseImpossibleDates)
{
    EXPECT_EQ(run("var f = callClassMethod(M, 'makeDateFormatter:', ['%d.%m.%Y %I:%M %p']);\n"
                  "var d = callMethod(f, 'dateFromString:', ['22.11.2026 02:05 PM']);\n"
                  "[callMethod(f, 'stringFromDate:', [d]), callMethod(f, 'dateFromString:', ['31.02.2026 02:05 PM']),\n"
                  " callMethod(f, 'dateFromString:', ['2026-11-22 14:05:00 +0100']).toISOString(),\n"
                  " callMethod(callClassMethod(M, 'makeDateFormatter:', ['%e %B %Y']), 'dateFromString:', ['3 march 2025']).toISOString()]"),
              "[\"22.11.2026 02:05 PM\",null,\"2026-11-22T13:05:00.000Z\",\"2025-03-03T00:00:00.000Z\"]");
}

// A formatter reads dates written in words, as a person types them.
TEST(DateFormatterSelectors, ReadDatesInWords)
{
    EXPECT_EQ(run("var f = callClassMethod(M, 'makeDateFormatter:', ['%Y-%m-%d']);\n"
                  "function day(offset, hours, minutes) { var d = new Date(); d.setDate(d.getDate() + offset);\n"
                  "    d.setHours(hours, minutes, 0, 0); return d.getTime(); }\n"
                  "function read(text) { var d = callMethod(f, 'dateFromString:', [text]); return d === null ? null : d.getTime(); }\n"
                  "var friday = (5 - new Date().getDay() + 7) % 7 || 7;\n"
                  "[read('today') === day(0, 12, 0), read('Tomorrow') === day(1, 12, 0), read('yesterday') === day(-1, 12, 0),\n"
                  " read('tomorrow at 9:30 pm') === day(1, 21, 30), read('today 7:05') === day(0, 7, 5),\n"
                  " read('next friday') === day(friday, 12, 0), read('last friday') === day(friday - 7, 12, 0),\n"
                  " Math.abs(read('now') - Date.now()) < 60000, read('someday'), read('tomorrow at 13 pm')]"),
              "[true,true,true,true,true,true,true,true,null,null]");
}

TEST(ResourceAndKeySelectors, FindRtfResourcesAndAnswerNoWithoutADisplay)
{
    EXPECT_EQ(run("var p = callClassMethod(M, 'returnRTFPath:', ['Help']);\n"
                  "[p.endsWith('/resources/Help.rtf'), callClassMethod(M, 'returnRTFPath:', ['Missing']),\n"
                  " callClassMethod(M, 'returnRTFPath:', ['../resources/Help']),\n"
                  " ['isCommandKeyDown', 'isShiftKeyDown', 'isOptionKeyDown', 'isControlKeyDown'].map(\n"
                  "     function (s) { return callClassMethod('NSEvent', s); })]"),
              "[true,null,null,[false,false,false,false]]");
}

TEST(SwatchSelectors, WriteByTheExactExtensionAndReadBackAtTheirSizeAndColour)
{
    TemporaryFolder dir;
    const QString folder = JsonString::quoted(dir.path());
    EXPECT_EQ(run(QStringLiteral("var D = %1, c = 'swatchForColor:withWidth:withHeight:atPath:';\n"
                                 "[callClassMethod(M, c, ['#ff8000', 30, 20, D + '/a.png']),\n"
                                 " callClassMethod(M, c, [[0, 0, 1], 8, 6, D + '/b.tif']),\n"
                                 " callClassMethod(M, c, ['red', 8, 6, D + '/c.jpg']),\n"
                                 " callClassMethod(M, c, ['red', 8, 6, D + '/d.jpeg']),\n"
                                 " callClassMethod(M, c, ['red', 8, 6, D + '/e.PNG']),\n"
                                 " callClassMethod(M, c, ['red', 0, 6, D + '/f.png']),\n"
                                 " callClassMethod(M, 'swatchForGradient:atAngle:withWidth:withHeight:atPath:',\n"
                                 "                 [['black', 'white'], 0, 100, 10, D + '/g.png'])]")
                      .arg(folder)),
              "[true,true,true,false,false,false,true]");
    const QImage png(dir.filePath("a.png")), tif(dir.filePath("b.tif")), jpg(dir.filePath("c.jpg")), gradient(dir.filePath("g.png"));
    EXPECT_EQ(png.size(), QSize(30, 20));
    EXPECT_EQ(png.pixelColor(29, 19), QColor(255, 128, 0));
    EXPECT_EQ(tif.size(), QSize(8, 6));
    EXPECT_EQ(tif.pixelColor(0, 0), QColor(0, 0, 255));
    EXPECT_EQ(jpg.size(), QSize(8, 6));
    EXPECT_GT(jpg.pixelColor(4, 3).red(), 240);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).join(u' '), QStringLiteral("a.png b.tif c.jpg g.png"));
    // Black on the left, white on the right.
    EXPECT_LT(gradient.pixelColor(2, 5).lightness(), 20);
    EXPECT_GT(gradient.pixelColor(97, 5).lightness(), 235);
}

TEST(SizingSelectors, AnswerScriptsAndLeaveNilViewsAlone)
{
    EXPECT_EQ(run("callClassMethod(M, 'showLargeText:inTextField:inWindow:', ['42', null, null]);\n"
                  "callClassMethod(M, 'fitTextFieldToText:withOffset:smallestAllowableSize:adjustFromTop:', [null, 0, 40, true]);\n"
                  "callClassMethod(M, 'discloseWindow:toHeight:useAnimation:', [null, 100, false]);\n"
                  "callClassMethod(M, 'logEntry:toTextView:shouldUpdateFont:', ['line', null, true]);\n"
                  "callClassMethod(M, 'autoScroll:', [null]);\n"
                  "var w = W([[0, 0, 200, 100], true, false, false, false, true, false]);\n"
                  "callClassMethod(M, 'discloseWindow:toHeight:useAnimation:', [w, 150, false]);\n"
                  "var f = callMethod(w, 'frame');\n"
                  "[String(callClassMethod(M, 'makePI')).startsWith('QWidget('), f.height]"),
              // The offscreen window has no title bar yet, so one of 22 is counted.
              "[true,172]");
}

// A speech that could not return would stop the run at the script timeout;
// a key code no key has is refused even without a display.
TEST(InputAndSpeechSelectors, ListVoicesRefuseUnknownKeysAndReturnWithoutADisplayOrASoundDevice)
{
    EXPECT_EQ(run("var voices = callClassMethod(M, 'returnSpeechVoices');\n"
                  "callClassMethod(M, 'typeAsUser:', [[{key_code: 0, command_down: true}]]);\n"
                  "var refused; try { callClassMethod(M, 'typeAsUser:', [[{key_code: 52}]]); } catch (e) { refused = e.reason; }\n"
                  "callClassMethod(M, 'clickAsUserAtPointX:andY:', [10, 10]);\n"
                  "callClassMethod(M, 'moveMouseToPointX:andY:', [10, 10]);\n"
                  "for (var text of ['Hello there', '', ' ']) callClassMethod(M, 'speak:usingVoice:', [text, 'nobody']);\n"
                  "[voices.indexOf('slt') >= 0, callClassMethod(M, 'getCurrentMouseLocationAsNumbers'), refused]"),
              "[true,[0,0],\"typeAsUser: no key has the virtual key code 52\"]");
}

} // namespace
