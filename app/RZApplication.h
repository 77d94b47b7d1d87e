#pragma once

#include "CompiledScript.h"
#include "FileTableModel.h"
#include "InterfaceFile.h"
#include "MethodRegistry.h"
#include "PreviewScheduler.h"
#include "ProgressPanel.h"
#include "RenameEngine.h"

#include <QApplication>
#include <memory>

class QWidget;

// The application object: starts up (the "ui" string table, the interface
// file, the engine, the helper scripts) and answers the main script's
// engine selectors. Without a display it runs on Qt's offscreen platform
// with the same interface file, so scripts compose exactly what the window
// would.
class RZApplication : public QApplication {
    Q_OBJECT
public:
    RZApplication(int &argc, char **argv);
    ~RZApplication() override;

    // Raises NSGenericException when a helper script is missing or does not
    // compile.
    void init(const MethodRegistry &methods);

    static RZApplication *instance();
    static QString resourceDirectory();

    RenameEngine &engine() { return *m_engine; }
    // The helper scripts: "execute_perl" and the EXIF date reader, as
    // scripts call them.
    CompiledScript &perl() { return *m_perl; }
    CompiledScript &exif_info() { return *m_exifInfo; }
    QString snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase);
    QVariant getEXIFDate(const QVariant &path);

    QWidget *window() const { return m_form ? m_form->window() : nullptr; }
    // A control by its outlet name; nullptr when the interface file lacks it.
    QWidget *outlet(const QString &name) const { return m_form ? m_form->outlet(name) : nullptr; }
    const InterfaceFile &form() const { return *m_form; }
    FileTableModel &fileTableDataSource() { return *m_table; }
    ProgressPanel &progress() { return *m_progress; }
    PreviewScheduler &preview() { return *m_preview; }

    // The rule from the controls as they stand, into the engine.
    void getConstantData();
    QString generateNewName(const CompositionRequest &request);
    void textDidChange(QObject *field);
    // The preview of the first name and of the whole table, from the
    // controls as they stand (what an edit of a rule field does).
    void refreshPreview();

    // Listing and batch pass, as scripts ask for them.
    QVariant parseItems(const QVariantList &request);
    // The listing straight into the table, in the order its header shows:
    // {rows, stopped}. The rows need not cross to the script and back.
    QVariantMap listIntoTable(const QVariantList &request);
    QVariantList makeReplacementNames(const QVariantList &request);

    // The table's rows in the order its header shows, if it shows one.
    void sortTableRows();

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
    void loadInterface();
    void connectInterfaceEvents();
    void sortByColumn(int column);
    // A listing just put in the table: its order, columns and scrolling.
    void showNewListing();
    void showPatternError(const QString &error);

    std::unique_ptr<RenameEngine> m_engine;
    std::unique_ptr<CompiledScript> m_perl;
    std::unique_ptr<CompiledScript> m_exifInfo;
    std::unique_ptr<InterfaceFile> m_form;
    std::unique_ptr<ProgressPanel> m_progress;
    FileTableModel *m_table = nullptr;
    PreviewScheduler *m_preview = nullptr;
    bool m_sorting = false;
    RenameRule m_capturedRule;      // as last read from the controls
    bool m_advanceExcluded = false;  // as the batch pass was last asked
};

// Whether the system counts as release 10.4 or later, set once at start-up.
inline bool systemIsRelease104OrLater = false;
