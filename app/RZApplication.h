#pragma once

#include "CompiledScript.h"
#include "FileTableModel.h"
#include "MethodRegistry.h"
#include "RenameEngine.h"

#include <QApplication>
#include <QPointer>
#include <functional>
#include <memory>

class QAction;
class QWidget;

// The application object: owns the rename engine and the main window's
// controls (outlets), loaded from the interface file; the main script calls
// its methods by selector. Without a display it runs on Qt's offscreen
// platform with the same interface file, so scripts compose exactly what
// the window would.
class RZApplication : public QApplication {
    Q_OBJECT
public:
    RZApplication(int &argc, char **argv);
    ~RZApplication() override;

    // Start-up: the "ui" string table, the interface file and the two
    // helper scripts. Raises NSGenericException when a helper script is
    // missing or does not compile.
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
    QWidget *window() const { return m_window.get(); }
    // A control by its outlet name; nullptr when the interface file lacks it.
    QWidget *outlet(const QString &name) const;

    // The file table's data source: its rows are item records.
    FileTableModel &fileTableDataSource() { return *m_table; }

    void getConstantData();
    void setConstantData(const QVariantList &entries);
    QString generateNewName(const QVariantList &request);
    void textDidChange(QObject *field);
    // The preview of the first name and of the whole table, from the
    // controls as they stand (what an edit of a rule field does).
    void refreshPreview();

    // Listing, batch pass and progress.
    QVariant parseItems(const QVariantList &request);
    QVariantList makeReplacementNames(const QVariantList &request);
    void updateProgress(double current, double maximum, const QString &upper, const QString &lower);
    void stopIndeterminateProgress(double maximum);
    void stopProgressAction();

    // The whole table's new names follow the rules as the user types.
    void refreshTablePreview();
    // How long the last full-table preview took, and whether it ran aside.
    qint64 lastTablePreviewMs = 0;
    bool lastTablePreviewInBackground = false;
    // Tables up to this size are previewed at once, within about a frame
    // on the machine this was measured on; larger ones aside, so typing
    // never waits for them.
    int immediatePreviewRows = 10000;

    // The table's rows in the order its header shows, if it shows one.
    void sortTableRows();

    // Marks the rows whose new name cannot be given, worked out aside;
    // conflictsMarked follows.
    void checkConflicts();

    // A long pass (listing, batch pass, renaming) under way. The window
    // still repaints and its Stop button works, but it takes no other
    // input until the pass ends: nothing can change the rule under the
    // pass or start a second one inside it.
    class LongPass {
    public:
        explicit LongPass(RZApplication &application);
        ~LongPass();
        LongPass(const LongPass &) = delete;
        LongPass &operator=(const LongPass &) = delete;

    private:
        RZApplication &m_application;
    };
    bool inputFrozen() const { return m_frozen; }

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
    QVariantList capturedSettings() const;
    QString text(const QString &outletName) const;
    qint32 integer(const QString &outletName) const;
    bool checked(const QString &outletName) const;
    QString popupTitle(const QString &outletName) const;
    int popupIndex(const QString &outletName) const;
    int matrixSelection(const QString &outletName) const;
    void loadInterface();
    void connectInterfaceEvents();
    void sortByColumn(int column);

    // Lets the window repaint (and, in a long pass, the Stop button be
    // pressed) while a long loop runs, at most every few milliseconds.
    void keepResponsive();
    void freezeInput();
    void thawInput();

    std::unique_ptr<RenameEngine> m_engine;
    std::unique_ptr<CompiledScript> m_perl;
    std::unique_ptr<CompiledScript> m_exifInfo;
    std::unique_ptr<QWidget> m_window;
    FileTableModel *m_table = nullptr;
    quint64 m_previewGeneration = 0;
    quint64 m_conflictGeneration = 0;
    bool m_sorting = false;
    QVariantList m_capturedSettings; // as last read from the controls
    std::shared_ptr<NameComposer::BaseNameCache> m_previewBases = std::make_shared<NameComposer::BaseNameCache>();
    qint64 m_lastYield = 0;
    int m_passDepth = 0;
    bool m_frozen = false;
    QList<QPointer<QWidget>> m_frozenControls;
    QList<QPointer<QAction>> m_frozenActions;
    QPointer<QWidget> m_focusBeforeFreeze;
};

// Whether the system counts as release 10.4 or later, set once at start-up.
inline bool is104Plus = false;
