#include "ApplicationMethods.h"

#include "DefaultsBindings.h"

#include "ChildOutput.h"
#include "ErrnoText.h"
#include "PathCodec.h"
#include "MetadataReader.h"
#include "ScriptRequests.h"
#include "Dialogs.h"
#include "OutletValues.h"
#include "FileMoves.h"
#include "FolderListing.h"
#include "ItemRecordValues.h"
#include "SystemLog.h"
#include "GrepReplace.h"
#include "NativeBinding.h"
#include "PerlWorker.h"
#include "RZApplication.h"
#include "RuleForm.h"
#include "SafeMover.h"
#include "SavedRules.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QSettings>

namespace {

using ArgumentConversion::convert;

RZApplication &applicationOf(const Invocation &invocation)
{
    auto *application = convert<RZApplication *>(invocation.receiver, -1);
    if (!application || !application->window())
        throw NamedException(NSInvalidArgumentException, QStringLiteral("the application has not started"));
    return *application;
}

// The edited field: the control itself, or its outlet name.
QObject *fieldOf(RZApplication &application, const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return application.outlet(value.toString());
    return convert<QObject *>(value, 0);
}

// The batches' journal lives in the user's data folder, shared with the
// command line through its lock.
SafeMover &sharedMover()
{
    static SafeMover mover;
    return mover;
}

std::vector<SafeMover::Move> movesFromScript(const QVariantList &rows)
{
    std::vector<SafeMover::Move> moves;
    for (const QVariant &row : rows) {
        const QVariantMap move = row.toMap();
        moves.push_back({move.value(QStringLiteral("from")).toString(), move.value(QStringLiteral("to")).toString()});
    }
    return moves;
}

QVariantList outcomesToScript(const std::vector<SafeMover::Outcome> &outcomes, const Batch::TableRows &table = {})
{
    static const char *const names[] = {"renamed", "unchanged", "conflict", "failed"};
    QVariantList list;
    for (const SafeMover::Outcome &outcome : outcomes) {
        const SafeMover::Move move = table.moveOf(outcome);
        QVariantMap answer{{QStringLiteral("from"), move.from},
                           {QStringLiteral("to"), move.to},
                           {QStringLiteral("status"), QString::fromLatin1(names[int(outcome.status)])},
                           {QStringLiteral("reason"), outcome.reason},
                           {QStringLiteral("warning"), outcome.warning}};
        if (outcome.row >= 0)
            answer.insert(QStringLiteral("row"), outcome.row);
        list.append(answer);
    }
    return list;
}

// The new names the last batch pass gave the table's rows.
QStringList tableNewNames(const std::vector<ItemRecord> &rows)
{
    QStringList names;
    names.reserve(qsizetype(rows.size()));
    for (const ItemRecord &row : rows)
        names.append(row.newName);
    return names;
}

// A tool's standard output and standard error, read together to the end
// and decoded as ASCII. Raises NSInvalidArgumentException when it cannot
// start; the tool is not waited for: the end of its output ends the call.
QString runCommand(const QString &launchPath, const QStringList &arguments)
{
    const ChildOutput tool = ChildOutput::read(launchPath, arguments, true);
    if (tool.launchError != 0)
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("launch path not accessible: %1: %2").arg(launchPath, errnoText(tool.launchError)));
    tool.reapAside();
    return QString::fromLatin1(tool.output);
}

// A batch that was refused moved nothing: the script hears why as an error.
QVariant reportToScript(const SafeMover::Report &report, const Batch::TableRows &table = {})
{
    if (report.refusal != SafeMover::Refusal::None)
        throw NamedException(NSGenericException, report.refusalText);
    if (!report.notice.isEmpty())
        SystemLog::write(report.notice);
    return outcomesToScript(report.outcomes, table);
}

// A batch of moves is a long pass of the window, its progress in the panel.
QVariant moving(RZApplication &app, const std::function<SafeMover::Report(SafeMover &)> &call,
               const Batch::TableRows &table = {})
{
    const ProgressPanel::LongPass pass(app.progress());
    SafeMover &mover = sharedMover();
    mover.progress = [&app](size_t done, size_t total) {
        if (done == 1)
            app.progress().stopIndeterminate(double(total));
        if (ProgressPanel::shows(double(done), double(total)))
            app.progress().update(double(done), double(total), QStringLiteral("Renaming"),
                                  QStringLiteral("%1 of %2").arg(done).arg(total));
    };
    const SafeMover::Report report = call(mover);
    mover.progress = nullptr;
    app.mainWindow().renamed();
    return reportToScript(report, table);
}

QVariant pendingToScript(const std::optional<SafeMover::Pending> &pending)
{
    if (!pending)
        return QVariant::fromValue(nullptr);
    static const char *const kinds[] = {"rename", "undo", "roll back"};
    return QVariantMap{{QStringLiteral("kind"), QString::fromLatin1(kinds[int(pending->kind)])},
                       {QStringLiteral("items"), qlonglong(pending->items)},
                       {QStringLiteral("folder"), pending->folder},
                       {QStringLiteral("problem"), pending->problem}};
}

template <typename Method>
void add(MethodRegistry &registry, const char *selector, Method method)
{
    registry.addInstanceMethod(QStringLiteral("RZApplication"), QString::fromLatin1(selector),
                               [method](Invocation &invocation) { return method(applicationOf(invocation), invocation.arguments); });
}

// The rule, composing names and the preview.
void addComposingMethods(MethodRegistry &registry)
{
    add(registry, "getConstantData", [](RZApplication &app, const QVariantList &) {
        app.mainWindow().getConstantData();
        return QVariant();
    });
    add(registry, "setConstantData:", [](RZApplication &app, const QVariantList &args) {
        app.engine().useRule(ScriptRequests::ruleFromSettings(convert<QVariantList>(args[0], 0)));
        return QVariant();
    });
    add(registry, "generateNewName:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(app.mainWindow().generateNewName(ScriptRequests::compositionRequest(convert<QVariantList>(args[0], 0))));
    });
    add(registry, "addLeadingZeros:", [](RZApplication &, const QVariantList &args) {
        const QVariantList numbers = convert<QVariantList>(args[0], 0);
        return QVariant(NameComposer::addLeadingZeros(convert<qint32>(numbers.value(0), 0), convert<qint32>(numbers.value(1), 0),
                                                      convert<qint32>(numbers.value(2), 0)));
    });
    add(registry, "changeCase:theCase:", [](RZApplication &app, const QVariantList &args) {
        // A case is named exactly; any other name leaves the text as it is.
        const QString text = convert<QString>(args[0], 0);
        const auto theCase = RenameRule::caseNamed(convert<QString>(args[1], 1));
        return QVariant(theCase ? app.engine().composer.changeCase(text, *theCase) : text);
    });
    add(registry, "replaceInsertConstants:withDate:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(app.engine().composer.replaceInsertConstants(convert<QString>(args[0], 0), convert<QDateTime>(args[1], 1)));
    });
    add(registry, "getEXIFDate:", [](RZApplication &app, const QVariantList &args) { return app.getEXIFDate(args[0]); });
    add(registry, "setUseEXIFDate:", [](RZApplication &app, const QVariantList &args) {
        app.engine().readsDatesTaken = convert<bool>(args[0], 0);
        return QVariant();
    });
    add(registry, "snrGrep:searchFor:replaceWith:consideringCase:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(app.snrGrep(convert<QString>(args[0], 0), convert<QString>(args[1], 1),
                                             convert<QString>(args[2], 2), convert<bool>(args[3], 3)));
    });
    add(registry, "escapeString:", [](RZApplication &, const QVariantList &args) {
        return QVariant(GrepReplace::escapeString(convert<QString>(args[0], 0)));
    });
    add(registry, "escapeStringT:", [](RZApplication &, const QVariantList &args) {
        return QVariant(GrepReplace::escapeStringT(convert<QString>(args[0], 0)));
    });
    add(registry, "runPERL:", [](RZApplication &, const QVariantList &args) {
        const std::optional<QString> output = GrepReplace::runPERL(convert<QStringList>(args[0], 0));
        return output ? QVariant(*output) : QVariant(false);
    });
    add(registry, "textDidChange:", [](RZApplication &app, const QVariantList &args) {
        app.mainWindow().textDidChange(fieldOf(app, args[0]));
        return QVariant();
    });
    add(registry, "setDisplayRealtimePreview:", [](RZApplication &app, const QVariantList &args) {
        app.engine().previewsAsTyped = convert<bool>(args[0], 0);
        return QVariant();
    });
}

// Listing.
void addListingMethods(MethodRegistry &registry)
{
    add(registry, "parseItems:", [](RZApplication &app, const QVariantList &args) {
        return ItemRecordValues::toScript(app.mainWindow().list(ScriptRequests::listingRequest(convert<QVariantList>(args[0], 0))),
                                          app.engine().dates);
    });
    add(registry, "listIntoTable:", [](RZApplication &app, const QVariantList &args) {
        const bool stopped = app.mainWindow().listIntoTable(ScriptRequests::listingRequest(convert<QVariantList>(args[0], 0)));
        return QVariant(QVariantMap{{QStringLiteral("rows"), app.fileTableDataSource().rowCount()},
                                    {QStringLiteral("stopped"), stopped}});
    });
    add(registry, "listFolder:", [](RZApplication &, const QVariantList &args) {
        return QVariant(FolderListing::listFolder(convert<QString>(args[0], 0)));
    });
    add(registry, "directoryContents:withInvisibles:", [](RZApplication &, const QVariantList &args) {
        return QVariant(FolderListing::directoryContents(convert<QString>(args[0], 0), convert<bool>(args[1], 1)));
    });
    add(registry, "getFileInfo:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(ScriptRequests::fileInfo(app.engine().listing().fileInfo(convert<QString>(args[0], 0)), app.engine().dates));
    });
    add(registry, "getFolderInfo:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(ScriptRequests::folderInfo(app.engine().listing().folderInfo(convert<QString>(args[0], 0)), app.engine().dates));
    });
    add(registry, "containerAndItemName:", [](RZApplication &, const QVariantList &args) {
        return QVariant(FolderListing::containerAndItemName(convert<QString>(args[0], 0)));
    });
    add(registry, "fileTypeCode:inSet:", [](RZApplication &, const QVariantList &args) {
        return QVariant(FolderListing::fileTypeCode(convert<quint32>(args[0], 0), convert<QStringList>(args[1], 1)));
    });
}

// The file table.
void addTableMethods(MethodRegistry &registry)
{
    add(registry, "setTableRows:", [](RZApplication &app, const QVariantList &args) {
        app.fileTableDataSource().setRows(ItemRecordValues::fromScript(convert<QVariantList>(args[0], 0)));
        return QVariant();
    });
    add(registry, "tableRows", [](RZApplication &app, const QVariantList &) {
        return QVariant(ItemRecordValues::toScript(app.fileTableDataSource().rows(), app.engine().dates));
    });
    // The moves that give the table's included rows the new names of the
    // last batch pass: {from, to, row} for each row whose name changes.
    add(registry, "tableMoves", [](RZApplication &app, const QVariantList &) {
        const std::vector<ItemRecord> &rows = app.fileTableDataSource().rows();
        QVariantList moves;
        for (const BatchPlan::RowMove &rowMove : BatchPlan::movesOf(rows, tableNewNames(rows)))
            moves.append(QVariantMap{{QStringLiteral("from"), rowMove.move.from},
                                     {QStringLiteral("to"), rowMove.move.to},
                                     {QStringLiteral("row"), rowMove.row}});
        return QVariant(moves);
    });
    add(registry, "getValueForColumn:atRow:", [](RZApplication &app, const QVariantList &args) {
        return app.fileTableDataSource().valueForColumn(convert<QString>(args[0], 0), convert<int>(args[1], 1));
    });
    add(registry, "setValue:atColumn:atRow:", [](RZApplication &app, const QVariantList &args) {
        app.fileTableDataSource().setValue(args[0], convert<QString>(args[1], 1), convert<int>(args[2], 2));
        return QVariant();
    });
}

// Progress.
void addProgressMethods(MethodRegistry &registry)
{
    add(registry, "updateProgress:maxCount:withSuperMessage:withMessage:", [](RZApplication &app, const QVariantList &args) {
        app.progress().update(convert<double>(args[0], 0), convert<double>(args[1], 1), convert<QString>(args[2], 2),
                              convert<QString>(args[3], 3));
        return QVariant();
    });
    add(registry, "stopIndeterminateProgress:", [](RZApplication &app, const QVariantList &args) {
        app.progress().stopIndeterminate(convert<double>(args[0], 0));
        return QVariant();
    });
    add(registry, "stopProgressAction:", [](RZApplication &app, const QVariantList &) {
        app.progress().stop();
        return QVariant();
    });
    add(registry, "updateStatus:", [](RZApplication &, const QVariantList &args) {
        SystemLog::write(convert<QString>(args[0], 0));
        return QVariant();
    });
}

// The batch pass and the moves.
void addBatchMethods(MethodRegistry &registry)
{
    add(registry, "makeReplacementNames:", [](RZApplication &app, const QVariantList &args) {
        const auto rows = app.mainWindow().makeReplacementNames(ScriptRequests::batchRequest(convert<QVariantList>(args[0], 0)));
        return QVariant(ItemRecordValues::toScript(rows, app.engine().dates));
    });
    add(registry, "renameFile:toPath:", [](RZApplication &, const QVariantList &args) {
        return QVariant(FileMoves::moveWithoutReplacing(convert<QString>(args[0], 0), convert<QString>(args[1], 1)) == 0);
    });
    add(registry, "cleanData:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(ScriptRequests::cleanData(convert<QVariantList>(args[0], 0), app.engine().dates.date1904));
    });
    add(registry, "runCommand:withArguments:", [](RZApplication &, const QVariantList &args) {
        return QVariant(runCommand(convert<QString>(args[0], 0), convert<QStringList>(args[1], 1)));
    });
    registry.addClassMethod(QStringLiteral("ASKDataSource"), QStringLiteral("registerViewForDraggedTableRows:"),
                            [](Invocation &invocation) {
                                if (auto *view = qobject_cast<QAbstractItemView *>(convert<QObject *>(invocation.arguments[0], 0))) {
                                    view->setDragDropMode(QAbstractItemView::DragDrop);
                                    view->setDragEnabled(true);
                                    view->setAcceptDrops(true);
                                }
                                return QVariant();
                            });

    // Safe renaming of a whole batch: each row {from, to} as full paths; each
    // answer {from, to, status, reason, warning} with status "renamed",
    // "unchanged", "conflict" or "failed". A batch refused as a whole (another
    // run busy, a batch cut short waiting) raises NSGenericException.
    add(registry, "planRenames:", [](RZApplication &, const QVariantList &args) {
        return QVariant(outcomesToScript(SafeMover::plan(movesFromScript(convert<QVariantList>(args[0], 0)))));
    });
    add(registry, "applyRenames:", [](RZApplication &app, const QVariantList &args) {
        const std::vector<SafeMover::Move> moves = movesFromScript(convert<QVariantList>(args[0], 0));
        return moving(app, [&moves](SafeMover &mover) { return mover.apply(moves); });
    });
    // The table's ticked rows to the new names of the last batch pass,
    // planned and renamed as nomen-cli renames its rows; each answer also
    // names its "row".
    add(registry, "planTableRenames", [](RZApplication &app, const QVariantList &) {
        const std::vector<ItemRecord> &rows = app.fileTableDataSource().rows();
        const QStringList newNames = tableNewNames(rows);
        return QVariant(outcomesToScript(SafeMover::plan(rows, newNames), {&rows, &newNames}));
    });
    add(registry, "applyTableRenames", [](RZApplication &app, const QVariantList &) {
        const std::vector<ItemRecord> rows = app.fileTableDataSource().rows();
        const QStringList newNames = tableNewNames(rows);
        return moving(app, [&](SafeMover &mover) { return mover.apply(rows, newNames); }, {&rows, &newNames});
    });
    add(registry, "undoLastRename", [](RZApplication &app, const QVariantList &) {
        return moving(app, [](SafeMover &mover) { return mover.undoLast(); });
    });
    add(registry, "hasUnfinishedRename", [](RZApplication &, const QVariantList &) {
        return QVariant(sharedMover().pending().has_value());
    });
    add(registry, "unfinishedRename", [](RZApplication &, const QVariantList &) {
        return pendingToScript(sharedMover().pending());
    });
    add(registry, "finishUnfinishedRename", [](RZApplication &app, const QVariantList &) {
        return moving(app, [](SafeMover &mover) { return mover.finishPending(); });
    });
    add(registry, "rollBackUnfinishedRename", [](RZApplication &app, const QVariantList &) {
        return moving(app, [](SafeMover &mover) { return mover.rollBackPending(); });
    });
}

// The window, as the main script drives it.
void addWindowMethods(MethodRegistry &registry)
{
    registry.addClassMethod(QStringLiteral("ROZ_UserDefaults"), QStringLiteral("updateValue:forKey:"),
                            [](Invocation &invocation) {
                                RZApplication *app = RZApplication::instance();
                                DefaultsBindings::updateValue(app ? app->window() : nullptr, invocation.arguments[0],
                                                              convert<QString>(invocation.arguments[1], 1));
                                return QVariant();
                            });
    add(registry, "outlet:", [](RZApplication &app, const QVariantList &args) {
        QWidget *control = app.outlet(convert<QString>(args[0], 0));
        return control ? QVariant::fromValue<QObject *>(control) : QVariant();
    });
    add(registry, "contentsOfOutlet:", [](RZApplication &app, const QVariantList &args) {
        return OutletValues::contentsOf(app.outlet(convert<QString>(args[0], 0)));
    });
    add(registry, "indexOfSelectedItemOfOutlet:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(OutletValues::selectedIndexOf(app.outlet(convert<QString>(args[0], 0))));
    });
    add(registry, "setContents:ofOutlet:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(OutletValues::setContents(app.outlet(convert<QString>(args[1], 1)), args[0]));
    });
    add(registry, "setEnabled:ofOutlet:", [](RZApplication &app, const QVariantList &args) {
        QWidget *control = app.outlet(convert<QString>(args[1], 1));
        if (control)
            control->setEnabled(convert<bool>(args[0], 0));
        return QVariant(control != nullptr);
    });
    add(registry, "refreshPreview", [](RZApplication &app, const QVariantList &) {
        app.mainWindow().refreshPreview();
        return QVariant();
    });
    add(registry, "sortTableRows", [](RZApplication &app, const QVariantList &) {
        app.mainWindow().sortTableRows();
        return QVariant();
    });
    add(registry, "markConflicts:", [](RZApplication &app, const QVariantList &args) {
        app.fileTableDataSource().setConflicts(convert<QStringList>(args[0], 0));
        return QVariant();
    });
    add(registry, "showMessage:informativeText:", [](RZApplication &, const QVariantList &args) {
        Dialogs::showMessage(convert<QString>(args[0], 0), convert<QString>(args[1], 1));
        return QVariant();
    });
    add(registry, "showError:informativeText:", [](RZApplication &, const QVariantList &args) {
        Dialogs::showError(convert<QString>(args[0], 0), convert<QString>(args[1], 1));
        return QVariant();
    });
    add(registry, "askQuestion:informativeText:buttons:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(Dialogs::askQuestion(app.window(), convert<QString>(args[0], 0), convert<QString>(args[1], 1),
                                             convert<QStringList>(args[2], 2)));
    });
    add(registry, "chooseFolder:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(Dialogs::chooseFolder(app.window(), convert<QString>(args[0], 0),
                                              OutletValues::contentsOf(app.outlet(QStringLiteral("source_folder"))).toString()));
    });
    add(registry, "askForText:informativeText:defaultText:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(Dialogs::askText(app.window(), convert<QString>(args[0], 0), convert<QString>(args[1], 1),
                                         convert<QString>(args[2], 2)));
    });
}

// Saved rules: each answers "" or what went wrong, naming the file.
void addSavedRuleMethods(MethodRegistry &registry)
{
    add(registry, "savedRuleNames", [](RZApplication &, const QVariantList &) {
        return QVariant(SavedRules().names());
    });
    add(registry, "saveRuleNamed:", [](RZApplication &app, const QVariantList &args) {
        return QVariant(SavedRules().save(convert<QString>(args[0], 0), RuleForm::rule(app.form())).reason());
    });
    add(registry, "useRuleNamed:", [](RZApplication &app, const QVariantList &args) {
        const auto loaded = SavedRules().load(convert<QString>(args[0], 0));
        if (loaded)
            RuleForm::apply(app.form(), *loaded);
        return QVariant(loaded.reason());
    });
    add(registry, "deleteRuleNamed:", [](RZApplication &, const QVariantList &args) {
        return QVariant(SavedRules().remove(convert<QString>(args[0], 0)).reason());
    });
    add(registry, "saveInterfaceState", [](RZApplication &app, const QVariantList &) {
        QSettings settings;
        OutletValues::saveState(app.window(), settings);
        return QVariant();
    });
    add(registry, "restoreInterfaceState", [](RZApplication &app, const QVariantList &) {
        const QSettings settings;
        OutletValues::restoreState(app.window(), settings);
        return QVariant();
    });
    add(registry, "terminate:", [](RZApplication &app, const QVariantList &) {
        QMetaObject::invokeMethod(&app, &QCoreApplication::quit, Qt::QueuedConnection);
        return QVariant();
    });
}

// What the helper scripts call.
void addHelperMethods(MethodRegistry &registry)
{
    NativeBinding::addClassMethod(registry, QStringLiteral("NomenPerl"), QStringLiteral("execute:"),
                                  +[](const QString &program) { return PerlWorker::shared().run(program); });
    registry.addClassMethod(QStringLiteral("NomenPerl"), QStringLiteral("executeAll:"), [](Invocation &invocation) {
        QVariantList answers;
        for (const auto &printed : PerlWorker::shared().runAll(convert<QStringList>(invocation.arguments[0], 0)))
            answers.append(printed ? QVariant(*printed) : QVariant::fromValue(nullptr));
        return QVariant(answers);
    });
    NativeBinding::addClassMethod(registry, QStringLiteral("NomenExif"), QStringLiteral("imageCreatedDate:"),
                                  +[](const QString &path) {
                                      Metadata::Request request;
                                      request.dateTaken = true;
                                      const std::optional<DateTaken> taken = MetadataReader::read(PathCodec::encode(path), request).taken;
                                      return taken ? QVariant(taken->toDateTime()) : QVariant(false);
                                  });
}

} // namespace

void registerApplicationMethods(MethodRegistry &registry)
{
    addComposingMethods(registry);
    addListingMethods(registry);
    addTableMethods(registry);
    addProgressMethods(registry);
    addBatchMethods(registry);
    addWindowMethods(registry);
    addSavedRuleMethods(registry);
    addHelperMethods(registry);
}
