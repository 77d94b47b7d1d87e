#pragma once

#include "MethodRegistry.h"
#include "RenameEngine.h"

#include <QApplication>
#include <QPointer>
#include <functional>
#include <memory>

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
    QWidget *window() const { return m_window.get(); }
    // A control by its outlet name; nullptr when the interface file lacks it.
    QWidget *outlet(const QString &name) const;

    // The table the preview reads its first row from; empty until a file
    // table is attached.
    std::function<QVariantList()> tableRows = [] { return QVariantList(); };

    void getConstantData();
    void setConstantData(const QVariantList &entries);
    QString generateNewName(const QVariantList &request);
    void textDidChange(QObject *field);

private:
    QString text(const QString &outletName) const;
    qint32 integer(const QString &outletName) const;
    bool checked(const QString &outletName) const;
    QString popupTitle(const QString &outletName) const;
    int popupIndex(const QString &outletName) const;
    int matrixSelection(const QString &outletName) const;
    void loadTranslations();
    void loadInterface();

    std::unique_ptr<RenameEngine> m_engine;
    std::unique_ptr<QWidget> m_window;
};
