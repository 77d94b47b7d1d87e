#pragma once

#include "CompiledScript.h"
#include "FileTableModel.h"
#include "MainWindowController.h"
#include "MethodRegistry.h"
#include "RenameEngine.h"

#include <QApplication>
#include <memory>

class QWidget;

// The application object: starts up (the "ui" string table, the style,
// the engine, the main window's controller, the helper scripts) and holds
// them for the main script's selectors. Without a display it runs on Qt's
// offscreen platform with the same interface file, so scripts compose
// exactly what the window would.
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

    // The main window's flow: its controls, table, preview and progress.
    MainWindowController &mainWindow() { return *m_mainWindow; }
    QWidget *window() const { return m_mainWindow ? m_mainWindow->window() : nullptr; }
    // A control by its outlet name; nullptr when the interface file lacks it.
    QWidget *outlet(const QString &name) const { return m_mainWindow ? m_mainWindow->form().outlet(name) : nullptr; }
    const InterfaceFile &form() const { return m_mainWindow->form(); }
    FileTableModel &fileTableDataSource() { return *m_table; }
    ProgressPanel &progress() { return m_mainWindow->progress(); }

private:
    std::unique_ptr<RenameEngine> m_engine;
    std::unique_ptr<CompiledScript> m_perl;
    std::unique_ptr<CompiledScript> m_exifInfo;
    FileTableModel *m_table = nullptr;
    std::unique_ptr<MainWindowController> m_mainWindow;
};

// Whether the system counts as release 10.4 or later, set once at start-up.
inline bool systemIsRelease104OrLater = false;
