// The window's numbering of a recursive listing: the rows in the table's
// order (natural name order, folder by folder), then the batch pass.
var app = application;
var rows = callMethod(app, "parseItems:", [[[ROOT + "/Trip"], [], [], false, true, false, false, true, ROOT + "/Trip"]]);
callMethod(app, "setTableRows:", [rows]);
callMethod(app, "sortTableRows", []);
callMethod(app, "setConstantData:", [["«#» ", 1, 1, true, 0, true, "", "", "literal", true,
                                      0, 0, false, "", false, "", 1, 1, true, 0, "", false, false, ""]]);
var result = callMethod(app, "makeReplacementNames:", [["files", new Date(), "", "", 0, 0, rows.length, false]]);
result.map(function (r) { return (r.location + r.original).substring(ROOT.length + 1) + " -> " + r["new"]; }).join("\n")
