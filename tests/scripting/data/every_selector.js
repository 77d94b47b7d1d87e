// Calls every text selector once by its exact name, each with a case that
// shows its particular behaviour; the printed lines are compared with
// every_selector.expected.
var charsets = "NSCharacterSet";
var calls = [
    ["class", charsets, "allWhitespaceCharacterSet", []],
    ["class", charsets, "newlineCharacterSet", []],
    ["a %@ b", "log", []],
    [" ", "isBlankString", []],
    ["", "isBlankString", []],
    ["ab", "characters", []],
    ["ab", "characterCount", []],
    ["abc", "charAtIndex:", [-1]],
    ["abc", "charAtIndex:", [3]],
    ["xyz", "firstCharacter", []],
    ["rock-n-roll, baby", "words", []],
    ["abc123def", "wordCount", []],
    ["one two three", "wordAtIndex:", [1]],
    ["a\nb\n", "paragraphs", []],
    ["a\r\nb", "paragraphCount", []],
    ["a\nb", "paragraphAtIndex:", [-1]],
    [",a;;b,", "tokensSeparatedByCharactersFromSet:", [",;"]],
    ["abc", "reverse", []],
    ["the lord of the rings", "titleCaseString", []],
    ["Crème brûlée", "stripDiacritical", []],
    ["a-  b", "clean:", ["ab "]],
    ["a/b:c", "cleanWithReplace:withCharacter:", [["/", ":"], "_"]],
    ["0102", "trimFromStart:", [["0"]]],
    ["a..", "trimFromEnd:", [["."]]],
    ["__a__", "trimFromBoth:", [["_"]]],
    ["IMG_1", "hasCaseInsensitivePrefix:", ["img"]],
    ["a.JPG", "hasCaseInsensitiveSuffix:", [".jpg"]],
    ["Photo - Beach", "deprefix:", ["Photo"]],
    ["a.jpg", "desuffix:", [".jpg"]],
    ["img_0001", "deprefixCaseInsensitive:", ["IMG"]],
    ["a.jpg", "desuffixCaseInsensitive:", [".JPG"]],
    ["aaa", "snr:replaceWith:", ["aa", "b"]],
    ["abc", "snrBatch:replaceArray:", [["a", "b"], ["b", "c"]]],
    ["Photo", "containsString:consideringCase:", ["PHO", true]],
    ["Photo", "containsString:consideringCase:", ["PHO", false]],
    ["name.tar.gz", "substringToDelim:", ["."]],
    ["a[b]c", "substringFromDelim:toDelim:", ["[", ">"]],
    ["IMG_0042", "validateWithRegEx:", ["[A-Z]+_\\d{4}"]],
    ["abbbc", "grep:options:", ["b+", 0]],
    ["file42", "substringsMatchingRegularExpression:count:options:ranges:error:",
        ["([a-z]+)([0-9]+)", 2, 0, null, null]],
];
calls.forEach(function (call) {
    var result = call[0] === "class"
        ? callClassMethod(call[1], call[2], call[3])
        : callMethod(call[0], call[1], call[2]);
    print(call[call[0] === "class" ? 2 : 1], typeof result === "string" ? JSON.stringify(result) : result);
});
