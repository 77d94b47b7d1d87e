// Calls every collection, date-helper and user-defaults selector once by
// its exact name; the printed lines are compared with
// collections_and_defaults.expected. Run with a private configuration
// folder, en_US dates and UTC; TSV_FILE names a table to read.
var M = "ROZ_MiscMethods", D = "ROZ_UserDefaults";
function show(selector, value) { print(selector, value); }
function misc(selector, args) { show(selector, callClassMethod(M, selector, args || [])); }
function defaults(selector, args) { show(selector, callClassMethod(D, selector, args || [])); }
var people = [{name: "bo", age: 7, tags: ["x"], born: new Date(2001, 0, 2)},
              {name: "Ann", age: 31, tags: ["y"], born: new Date(1990, 5, 1)},
              {name: "The Cure", age: 40, tags: ["x", "y"], born: new Date(1979, 0, 1)}];

misc("returnKeyValueIndex:forKey:", [["a", "b"], "b"]);
misc("reverseArray:", [[1, 2, 3]]);
misc("sortArray:", [["b", "C", "a"]]);
misc("sortArrayWithStringsAsNumbers:", [["x10", "x9", "X1"]]);
misc("sortArrayWithCleanedStringSort:", [["The Zoo", "an apple", "Moon"]]);
misc("sortArrayRemovingDuplicates:", [["b", "a", "b"]]);
misc("batchReturnArrayObject:atIndex:", [[[1, 2], [3, 4]], 1]);
misc("returnSomeObjectOfArray:", [["only"]]);
show("randomLongFrom:to:", callClassMethod(M, "randomLongFrom:to:", [3, 3]));
misc("sortDictionaries:usingKeys:", [people, ["name"]]);
misc("sortDictionariesByCleanedString:usingKey:", [people, "name"]);
misc("sortDictionariesByDate:usingKey:", [people, "born"]);
misc("sortDictionariesByNumber:usingKey:", [people, "age"]);
misc("batchReturnDictionaryObject:forKey:", [people, "age"]);
misc("batchReturnDictionaries:whoseArrayContains:forKey:", [people, "y", "tags"]);
misc("batchReturnDictionaries:containedIn:forKey:", [people, ["bo", "Ann"], "name"]);
misc("batchReturnDictionaries:notContainedIn:forKey:", [people, ["bo", "Ann"], "name"]);
misc("batchReturnDictionaries:withObject:forKey:", [people, 31, "age"]);
misc("batchReturnObjectFromObjects:forKey:", [["two words", 5, "one"], "wordCount"]);
misc("batchCleanString:forChars:", [["a-b c", "d!e"], "abcde"]);
misc("uis:", ["no such key"]);
misc("uisR:replaceWith:", ["Item %1 of %2", [3, 7]]);
misc("dictionaryArrayFromTSVFile:", [TSV_FILE]);
misc("dictionaryArrayFromTSVFile:", [TSV_FILE + ".missing"]);

var fonts = callClassMethod(M, "returnAllFonts");
show("returnAllFonts", fonts.length > 0 && fonts.indexOf("DejaVu Sans") >= 0);
var field = callMethod(application, "outlet:", ["prefix"]);
callClassMethod(M, "setFont:toFont:", [field, "DejaVu Serif"]);
callClassMethod(M, "setSize:toSize:", [field, 12.5]);
misc("returnFontInfo:", [field]);

misc("testDate:", ["12/21/2002"]);
misc("testDate:", ["21/12/2002"]);
misc("returnDateFormat:withWeekday:asNumeric:", [true, true, false]);
misc("returnDateFormat:withWeekday:asNumeric:", [false, false, true]);
misc("makeLocalDate:withMonth:withDay:withYear:withTime:", [true, 7, 4, 2010, "10:00 AM"]);
misc("makeLocalDate:withMonth:withDay:withYear:withTime:", [false, 7, 4, 2010, "10:00 PM"]);
misc("relativeDescriptionForDate:withFormat:", [new Date(), "%Y"]);
misc("relativeDescriptionForDate:withFormat:", ["2001-02-03 04:05:06 +0000", "%d %B %Y"]);

defaults("registerDefaults:", [{shown: "fallback", n: 1}]);
defaults("registerDefault:forKey:", [2, "n"]);
defaults("readDefault:", ["n"]);
defaults("writeDefault:forKey:", [[1, "two", {three: true}], "shown"]);
defaults("readDefault:", ["shown"]);
defaults("removeDefault:", ["shown"]);
defaults("defaultExists:", ["shown"]);
defaults("readDefault:", ["shown"]);
defaults("writeArchivedDataDefault:forKey:", [{when: new Date(0), list: [1.5]}, "archived"]);
defaults("readArchivedDataDefault:", ["archived"]);
defaults("updateValue:forKey:", ["kept", "plain"]);
defaults("readDefault:", ["plain"]);
defaults("synchronizeDefaults");
defaults("writeDefault:forKey:", [["Paris", "", "", "", "fr"], "com.apple.TimeZonePref.Last_Selected_City"]);
defaults("returnUserCountryCode");
defaults("touchBundleDate");
defaults("returnPlistValue:", ["CFBundleIdentifier"]);
defaults("returnPlistValue:forKey:", [TSV_FILE, "name"]);
