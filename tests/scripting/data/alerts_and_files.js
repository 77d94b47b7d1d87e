// Calls every alert, logging, utility and file-operation selector once by
// its exact name; the printed lines are compared with
// alerts_and_files.expected. Run without a display, so each alert and
// dialog is written to standard error and answered with its default
// button; DIR names an empty folder to work in.
var M = "ROZ_MiscMethods";
function misc(selector, args) { print(selector, callClassMethod(M, selector, args || [])); }
function exists(path) { return callClassMethod(M, "itemExists:", [path]); }

misc("displayAlert:withMessage:", ["Title", "Message"]);
misc("displayAlert:withMessage:withButtons:", ["Save?", "100%% sure", ["Discard", "Cancel", "Save"]]);
misc("displayError:withError:", ["Rename failed", "Please try again."]);
misc("displayError:withError:attachedToWindow:", ["Disk", "Nomen will now quit", null]);
misc("displayInformational:withMessage:", ["Done", "All renamed"]);
misc("displayInformational:withMessage:withDefaultButton:", ["Done", "All renamed", "Fine"]);
misc("displayWarning:withButtons:withDefaultButton:shouldBeep:", ["Careful", ["Stop", "Go"], "Go", true]);
misc("displayMessage:withButtons:withDefaultButton:withIcon:attachedToWindow:", ["Sheet", ["No", "Yes"], "Yes", 1, true]);
misc("displayMessage:withButtons:withDefaultButton:withIcon:giveUpAfter:",
     ["He said \"hi\"\n${x} \\ </b>", ["A \"quoted\" one", "Cancel"], "A \"quoted\" one", 2, 0]);
misc("displayMessage:withButtons:withDefaultButton:withIcon:shouldGiveUp:", ["Waits", ["OK", "Cancel"], "Cancel", 0, false]);
misc("displayMessageWithTitle:withMessage:withButtons:withDefaultButton:withIcon:shouldGiveUp:",
     ["Titled", "Gives up", ["OK"], "OK", 1, true]);

misc("updateStatus:", ["status line"]);
misc("activate");
misc("toggleShowInDock");
misc("idleTimeInSeconds");
misc("wait:", [0.01]);
misc("extendPowerOffBy:", [1000]);
misc("toggleScreenUpdates:", [false]);
misc("toggleScreenUpdates:", [true]);
misc("leadingZeros:minimumNumber:", [7, 3]);
misc("leadingZeros:minimumNumber:", [1234, 3]);
misc("clearSudo");

misc("makeTargetFolder:", [DIR + "/a/b"]);
misc("writeToFile:withContent:shouldAppend:withCreatorCode:withFileType:shouldRandmize:",
     [DIR + "/a/x.txt", "one\n", false, "", "", false]);
misc("writeToFile:withContent:shouldAppend:withCreatorCode:withFileType:shouldRandmize:",
     [DIR + "/a/x.txt", "two\n", true, "ttxt", "TEXT", false]);
print("returnCreatorCode:", callClassMethod(M, "returnCreatorCode:", [DIR + "/a/x.txt"]));
misc("copyItem:toPath:withReplacing:", [DIR + "/a/x.txt", DIR + "/a/b/y.txt", false]);
misc("moveItem:toPath:withReplacing:", [DIR + "/a/x.txt", DIR + "/a/b", false]);
misc("returnUniquePath:", [DIR + "/a/b/x.txt"]);
misc("deleteItem:", [DIR + "/a"]);
print("gone", !exists(DIR + "/a"));
misc("returnAppPath:", ["ttxt"]);
misc("returnAppPathFromBundleID:", ["no.such.application"]);
misc("osType:", ["TEXT"]);
