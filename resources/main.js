// Nomen's main script: what each control of the window does. Native code
// does the work (listing, composing, renaming); this script decides the flow
// and talks to the user.

// The items the table lists: null for the folder in "source_folder", or the
// folders and files dropped on the window.
var droppedItems = null;
var rowCount = 0;

// Dates taken are read while listing, so the box lists again.
var listingControls = ["update", "type_filter", "ext_filter", "descend", "folder_rows", "long_names", "list_unmatched",
                       "dates_taken"];

function call(selector, params) {
    return callMethod(application, selector, params || []);
}

function contents(outlet) {
    return call("contentsOfOutlet:", [outlet]);
}

function setContents(outlet, value) {
    call("setContents:ofOutlet:", [value, outlet]);
}

function setEnabled(outlet, enabled) {
    call("setEnabled:ofOutlet:", [enabled, outlet]);
}

// Errors go to the error alert, which logs them too. Its message is read
// as a format, so a "%" in a file name is doubled to be shown as it is.
function showError(title, text) {
    callClassMethod("ROZ_MiscMethods", "displayError:withError:", [title, String(text).replace(/%/g, "%%")]);
}

function ask(title, text, buttons) {
    return call("askQuestion:informativeText:buttons:", [title, text, buttons]);
}

function listOf(text) {
    return text.split(",").map(function (entry) { return entry.trim(); })
        .filter(function (entry) { return entry !== ""; });
}

function plural(count, one, many) {
    return count + " " + (count === 1 ? one : many);
}

// The rule the controls show, under a name the user gives; a rule of that
// name is replaced only when the user says so.
function saveRule() {
    var name = call("askForText:informativeText:defaultText:", ["Save Rule", "Save the rule as:", ""]).trim();
    if (name === "")
        return;
    if (call("savedRuleNames").indexOf(name) >= 0
        && ask("Replace the rule \u201c" + name + "\u201d?", "A rule of that name is saved already.",
               ["Replace", "Cancel"]) !== "Replace")
        return;
    var problem = call("saveRuleNamed:", [name]);
    if (problem !== "")
        showError("The rule was not saved", problem);
}

// Window events.

function launched(paths) {
    call("restoreInterfaceState");
    updateRuleControls();
    offerToFinishInterruptedRename();
    if (paths && paths.length > 0)
        dropped(paths);
    else if (contents("source_folder") !== "")
        listItems();
    updateButtons();
    call("refreshPreview");
}

// Dates taken replace the creation date: a prefix or suffix that showed
// the current date (the popups' first choice) now shows the creation date,
// so the box does what it says; one that chose another date keeps it.
// Answers what was changed, for the status line.
function dateTokensFollowDatesTaken() {
    if (!contents("dates_taken"))
        return "";
    var moved = [];
    ["prefix", "suffix"].forEach(function (part) {
        var popup = part + "_date_to_use";
        if (call("indexOfSelectedItemOfOutlet:", [popup]) === 0) {
            setContents(popup, "Creation date");
            moved.push(part === "prefix" ? "The prefix's" : "the suffix's");
        }
    });
    if (moved.length === 0)
        return "";
    var whose = moved.join(" and ");
    return whose.charAt(0).toUpperCase() + whose.slice(1) + " Date " + (moved.length === 1 ? "is" : "are") +
        " now \u201cCreation date\u201d: the date each photograph was taken.";
}

function clicked(name) {
    if (name === "choose_folder")
        chooseFolder();
    else if (name === "dates_taken") {
        var moved = dateTokensFollowDatesTaken();
        listItems();
        if (moved !== "")
            setContents("status_line", contents("status_line") + ". " + moved);
    }
    else if (name === "source_folder") {
        droppedItems = null;
        listItems();
    } else if (listingControls.indexOf(name) >= 0)
        listItems();
    else if (name === "update_preview")
        workOutNewNames();
    else if (name === "rename")
        renameFiles();
    else {
        // Choosing from a popup chooses what it belongs to.
        if (name === "the_case")
            setContents("change_case", true);
        else if (name === "extension_popup")
            setContents("extension_matrix", 2);
        else if (name === "ext_case")
            setContents("extension_matrix", 3);
        updateRuleControls();
        call("refreshPreview"); // any rule control
    }
}

function choseMenuItem(name) {
    if (name === "action_open")
        chooseFolder();
    else if (name === "action_update")
        listItems();
    else if (name === "action_rename")
        renameFiles();
    else if (name === "action_undo")
        undoRename();
    else if (name === "action_save_rule")
        saveRule();
    else if (name === "action_quit")
        call("terminate:", [null]);
}

// Saved rules: the Rules menu lists them; a rule chosen there replaces what
// the controls show, listing included.
function choseRule(name) {
    var problem = call("useRuleNamed:", [name]);
    if (problem !== "") {
        showError("The rule \u201c" + name + "\u201d cannot be used", problem);
        return;
    }
    updateRuleControls();
    if (rowCount > 0 || contents("source_folder") !== "")
        listItems();
    else
        call("refreshPreview");
}

function choseRuleToDelete(name) {
    if (ask("Delete the rule \u201c" + name + "\u201d?", "Its file is removed from the rules folder.",
            ["Delete", "Cancel"]) !== "Delete")
        return;
    var problem = call("deleteRuleNamed:", [name]);
    if (problem !== "")
        showError("The rule \u201c" + name + "\u201d was not deleted", problem);
}

// One folder dropped is the folder to rename; files or several items are
// listed as they are.
function dropped(paths) {
    if (paths.length === 1 && callClassMethod("ROZ_MiscMethods", "returnItemIsFolder:", [paths[0]])) {
        droppedItems = null;
        setContents("source_folder", paths[0]);
    } else {
        droppedItems = paths;
        setContents("source_folder", callMethod(application, "containerAndItemName:", [paths[0]])[1]);
    }
    listItems();
}

// The table's new names follow the rules again: they can be given.
function previewed() {
    updateButtons();
}

function willQuit() {
    call("saveInterfaceState");
}

// The flow.

// Case is considered only by a GREP search; a literal one always matches
// case exactly.
function updateRuleControls() {
    setEnabled("snr_consider_case_1", call("indexOfSelectedItemOfOutlet:", ["snr_type_1"]) === 1);
}

function updateButtons() {
    setEnabled("rename", rowCount > 0);
    setEnabled("update_preview", rowCount > 0);
    setEnabled("update", contents("source_folder") !== "");
}

function chooseFolder() {
    var folder = call("chooseFolder:", ["Choose the folder whose files to rename"]);
    if (folder === "")
        return;
    droppedItems = null;
    setContents("source_folder", folder);
    listItems();
}

function listItems() {
    var folder = contents("source_folder");
    if (droppedItems === null && folder === "") {
        showError("No folder chosen", "Choose a folder, or drop folders or files on the window.");
        return;
    }
    var paths = droppedItems || [folder];
    call("setUseEXIFDate:", [contents("dates_taken")]);
    setContents("progress_label_super", "Listing");
    setContents("progress_label", folder);
    // Straight into the table, in the order its header shows.
    var listed = call("listIntoTable:", [[paths, listOf(contents("type_filter")), listOf(contents("ext_filter")),
                                          contents("long_names"), contents("descend"), contents("folder_rows"),
                                          contents("list_unmatched"), true, folder]]);
    if (listed.rows === 0 && !listed.stopped && droppedItems === null
        && !callClassMethod("ROZ_MiscMethods", "returnItemIsFolder:", [paths[0]]))
        showError("The folder cannot be listed", folder + " is not a folder that can be read.");
    rowCount = listed.rows;
    setContents("status_line", plural(rowCount, "item", "items") + (listed.stopped ? " (listing stopped)" : ""));
    updateButtons();
    call("refreshPreview");
}

// The batch pass: every new name, duplicates within the list numbered, with
// the progress panel.
function workOutNewNames() {
    call("getConstantData");
    var rows = call("makeReplacementNames:", [["names", new Date(), "Working out new names", "%d of %d %@",
                                                call("indexOfSelectedItemOfOutlet:", ["prefix_date_to_use"]) + 1,
                                                call("indexOfSelectedItemOfOutlet:", ["suffix_date_to_use"]) + 1,
                                                rowCount, false]]);
    call("setTableRows:", [rows]);
    setContents("progress_label_super", "");
    setContents("progress_label", "");
    return rows;
}

function renameFiles() {
    if (rowCount === 0)
        return;
    var rows = workOutNewNames();
    // Each ticked row to its new name, planned as nomen-cli plans it: every
    // conflict is shown before anything moves.
    var planned = call("planTableRenames").filter(function (outcome) { return outcome.status !== "unchanged"; });
    if (planned.length === 0) {
        showError("Nothing to rename", "The new names are the same as the old ones.");
        return;
    }
    var reasons = rows.map(function () { return ""; });
    var refused = 0;
    planned.forEach(function (outcome) {
        if (outcome.status === "conflict" || outcome.status === "failed") {
            reasons[outcome.row] = outcome.reason;
            refused += 1;
        }
    });
    call("markConflicts:", [reasons]);
    if (refused > 0) {
        var choice = ask(plural(refused, "file", "files") + " of " + planned.length + " cannot be renamed",
                         "Their rows are marked in the table; point at one to see why. Rename the others?",
                         ["Rename Others", "Cancel"]);
        if (choice !== "Rename Others")
            return;
    }
    var outcomes;
    try {
        outcomes = call("applyTableRenames");
    } catch (refused) {
        showError("Nothing was renamed", refused.reason || String(refused));
        return;
    }
    report(outcomes, "renamed", true);
}

function undoRename() {
    var outcomes;
    try {
        outcomes = call("undoLastRename");
    } catch (refused) {
        showError("Nothing was put back", refused.reason || String(refused));
        return;
    }
    if (outcomes.length === 0) {
        showError("Nothing to undo", "No rename has been made since the last one was undone.");
        return;
    }
    report(outcomes, "put back", false);
}

// Tells what a batch did, then lists the items again under their names now.
// Conflicts the user has already seen and accepted are not told again.
function report(outcomes, verb, conflictsShown) {
    var done = 0;
    var problems = [];
    outcomes.forEach(function (outcome) {
        if (outcome.status === "renamed")
            done += 1;
        else if (outcome.status === "failed")
            problems.push(outcome.reason); // it names the files
        else if (outcome.status === "conflict" && !conflictsShown)
            problems.push(outcome.from.split("/").pop() + ": " + outcome.reason);
    });
    if (droppedItems !== null)
        droppedItems = droppedItems.map(function (path) {
            var moved = outcomes.filter(function (outcome) { return outcome.status === "renamed" && outcome.from === path; });
            return moved.length > 0 ? moved[0].to : path;
        });
    listItems();
    setContents("status_line", plural(done, "file", "files") + " " + verb);
    if (problems.length > 0)
        showError(plural(problems.length, "file was", "files were") + " not " + verb,
                  problems.slice(0, 10).join("\n") + (problems.length > 10 ? "\n…" : ""));
}

// A batch cut short (Nomen killed, the machine stopped) is dealt with
// before anything else is renamed: finished, or its files put back.
function offerToFinishInterruptedRename() {
    var waiting = call("unfinishedRename");
    if (waiting === null)
        return;
    if (waiting.problem !== "") {
        showError("A rename journal cannot be trusted",
                  "Nomen found the journal of an interrupted rename, but " + waiting.problem +
                  ". It is kept for inspection; nothing is renamed until it is moved out of the way.");
        return;
    }
    var choice = ask("A rename was interrupted",
                     "Nomen stopped while it was renaming " + plural(waiting.items, "item", "items") + " in " +
                     waiting.folder + ". Finish that rename, or put the files back under their old names?",
                     ["Finish", "Roll Back"]);
    var outcomes;
    try {
        outcomes = choice === "Finish" ? call("finishUnfinishedRename") : call("rollBackUnfinishedRename");
    } catch (refused) {
        showError("The interrupted rename could not be dealt with", refused.reason || String(refused));
        return;
    }
    var problems = outcomes.filter(function (outcome) { return outcome.status === "failed" || outcome.status === "conflict"; })
        .map(function (outcome) { return outcome.reason; });
    if (problems.length > 0)
        showError("Some files could not be moved",
                  problems.slice(0, 10).join("\n") + (problems.length > 10 ? "\n…" : ""));
}
