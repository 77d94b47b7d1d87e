#pragma once

#include "FileTableModel.h"
#include "InterfaceFile.h"
#include "MetadataFill.h"
#include "PreviewScheduler.h"
#include "ProgressPanel.h"
#include "RenameEngine.h"
#include "ScriptRequests.h"

#include <QHash>
#include <QObject>
#include <memory>

class QTableView;
class ThumbnailLoader;

// The main window's flow: loads the interface file, wires its controls to
// the main script's handlers, keeps the table in the order its header shows,
// puts listings and composed names into the table, refreshes the preview as
// the rule is typed, and paints a search pattern's error beside its field.
// Requests arrive typed; script values are made and read by the selectors.
class MainWindowController : public QObject {
    Q_OBJECT
public:
    // The window from `interfaceFile`, its table showing `table`.
    MainWindowController(RenameEngine &engine, FileTableModel &table, const QString &interfaceFile,
                         QObject *parent = nullptr);
    ~MainWindowController() override;

    QWidget *window() const { return m_form->window(); }
    const InterfaceFile &form() const { return *m_form; }
    FileTableModel &table() { return m_table; }
    ProgressPanel &progress() { return *m_progress; }
    PreviewScheduler &preview() { return *m_preview; }

    // The rule from the controls as they stand, into the engine.
    void getConstantData();
    QString generateNewName(const CompositionRequest &request);
    void textDidChange(QObject *field);
    // The preview of the first name and of the whole table, from the
    // controls as they stand (what an edit of a rule field does).
    void refreshPreview();

    // A listing, under the progress panel.
    Listing list(const ListingRequest &request);
    // The listing straight into the table, in the order its header shows;
    // whether it was stopped.
    bool listIntoTable(const ListingRequest &request);
    // The table's first rows with the names the batch pass composes.
    std::vector<ItemRecord> makeReplacementNames(const ScriptRequests::BatchRequest &request);

    // The table's rows in the order its header shows, if it shows one.
    void sortTableRows();
    // Files were renamed (or put back): until the person types again,
    // Undo's shortcut undoes that, wherever focus is.
    void renamed() { m_renameUndoesFirst = true; }
    // Shows or hides a column of what files say (its values are read
    // aside) or the thumbnails (the person's choice, remembered).
    void showColumn(int column, bool shown);
    // What the shown columns ask of each file; with what the rule asks.
    Metadata::Request shownColumnsRequest() const;
    Metadata::Request metadataWanted() const;
    MetadataFill &metadataFill() { return *m_fill; }

signals:
    void tablePreviewApplied();
    void conflictsMarked();
    // Something happened in the window that the main script handles:
    // "clicked" (a control's name), "choseMenuItem" (a menu item's name),
    // "dropped" (paths), "previewed", "willQuit".
    void scriptEvent(const QString &handler, const QVariant &argument);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setUpTable();
    void connectInterfaceEvents();
    void sortByColumn(int column);
    // A listing just put in the table: its order, columns and scrolling.
    void showNewListing();
    void showPatternError(const QString &error);
    void showColumnMenu(const QPoint &at);
    void showThumbnails(bool shown);
    void useZerosControls();

    RenameEngine &m_engine;
    FileTableModel &m_table;
    std::unique_ptr<InterfaceFile> m_form;
    std::unique_ptr<ProgressPanel> m_progress;
    PreviewScheduler *m_preview = nullptr;
    MetadataFill *m_fill = nullptr;
    ThumbnailLoader *m_thumbnails = nullptr;
    QTableView *m_tableView = nullptr; // none when the interface file lacks it
    bool m_sorting = false;
    RenameRule m_capturedRule;      // as last read from the controls
    bool m_advanceExcluded = false;  // as the batch pass was last asked
    bool m_renameUndoesFirst = false;
    QHash<int, int> m_numberWidths; // the least width of each column of numbers
};
