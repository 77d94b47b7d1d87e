// A whole rename as the window does it: list the folder, compose the new
// names, then move each file. ROOT is set by the test.
var app = application;
var rows = callMethod(app, "parseItems:", [[[ROOT], [""], ["jpg"], false, true, false, true, true, ROOT]]);
// Sorted by path, as the table shows it, so counters follow that order.
rows.sort(function (a, b) { var x = a.location + a.original, y = b.location + b.original; return x < y ? -1 : x > y ? 1 : 0; });
callMethod(app, "setTableRows:", [rows]);
callMethod(app, "setConstantData:", [["«ƒ»_«#»_", 1, 1, true, 3, true, "^IMG_(\\d+)", "shot $1", "GREP", false,
                                      0, 0, true, "Title Case", true, "", 0, 0, false, 0, ".jpg", true, false, ""]]);
var result = callMethod(app, "makeReplacementNames:", [["photos", new Date(), "Renaming", "%d of %d %@", 0, 0, rows.length, false]]);
var moved = 0, refused = 0;
result.forEach(function (r) {
    if (!r.include || r.original === r["new"])
        return;
    if (callMethod(app, "renameFile:toPath:", [r.location + r.original, r.location + r["new"]]))
        moved++;
    else
        refused++;
});
"moved " + moved + ", refused " + refused
