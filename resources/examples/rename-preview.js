// Shows what the text toolkit does to a few file names, the way the name
// composer will: trimmed, cleaned, title-cased and stripped of accents.
var names = ["  the lord of the rings.mkv", "Crème brûlée - recette.pdf", "IMG_0042.JPG", "002-rock-n-roll.mp3"];
var digits = "0123456789".split("");
names.map(function (name) {
    var base = callMethod(name, "substringToDelim:", ["."]);
    base = callMethod(base, "trimFromBoth:", [[" "]]);
    base = callMethod(base, "trimFromStart:", [digits.concat(["-"])]);
    base = callMethod(base, "deprefix:", ["IMG"]);
    base = callMethod(callMethod(base, "stripDiacritical"), "titleCaseString");
    return name + "  ->  " + base;
}).join("\n");
