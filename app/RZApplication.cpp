#include "RZApplication.h"

#include "DefaultsBindings.h"
#include "GrepReplace.h"
#include "MiscMethods.h"
#include "NamedException.h"
#include "ResourceFolder.h"
#include "ScriptSubroutines.h"
#include "UiStrings.h"
#include "WindowStyle.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <QThreadPool>

namespace {

std::unique_ptr<CompiledScript> loadHelper(const MethodRegistry &methods, const QString &name)
{
    QVariantMap error;
    std::unique_ptr<CompiledScript> script(CompiledScript::fromFile(
        methods, RZApplication::resourceDirectory() + QStringLiteral("/Scripts/") + name + QStringLiteral(".scpt"), &error));
    if (!script)
        throw NamedException(NSGenericException, QStringLiteral("Error loading \"%1.scpt\".").arg(name));
    return script;
}

} // namespace

RZApplication::RZApplication(int &argc, char **argv) : QApplication(argc, argv), m_table(new FileTableModel(this))
{
    setApplicationName(QStringLiteral("Nomen"));
    setOrganizationName(QStringLiteral("Nomen"));
    // Scripts know the table's data source by this class name.
    m_table->setProperty("nomenClassName", QStringLiteral("ASKDataSource"));
}

RZApplication::~RZApplication()
{
    // Previews and conflict checks still running aside report back to the
    // window's controller.
    QThreadPool::globalInstance()->waitForDone();
}

RZApplication *RZApplication::instance()
{
    return qobject_cast<RZApplication *>(QCoreApplication::instance());
}

QString RZApplication::resourceDirectory()
{
    return ResourceFolder::path();
}

namespace {

// The icon drawn at the sizes window managers and task bars ask for; none
// when its file is missing.
QIcon applicationIcon()
{
    QSvgRenderer drawing(RZApplication::resourceDirectory() + QStringLiteral("/nomen.svg"));
    QIcon icon;
    if (!drawing.isValid())
        return icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

void RZApplication::init(const MethodRegistry &methods)
{
    UiStrings::install(*this);
    setStyle(new WindowStyle);
    setWindowIcon(applicationIcon());
    m_engine = std::make_unique<RenameEngine>();
    m_mainWindow = std::make_unique<MainWindowController>(*m_engine, *m_table,
                                                          resourceDirectory() + QStringLiteral("/MainWindow.ui"));
    DefaultsBindings::bind(window());
    systemIsRelease104OrLater = MiscMethods::return104Plus();
    m_perl = loadHelper(methods, QStringLiteral("perl"));
    m_exifInfo = loadHelper(methods, QStringLiteral("exif_info"));
    ScriptSubroutines::runScriptSubroutine(*m_exifInfo, QStringLiteral("init"));
}

QString RZApplication::snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase)
{
    // The helper's answer replaces the text only when it is a string: a
    // failed call answers the error pair.
    return GrepReplace::snrGrep(text, pattern, replacement, consideringCase, [this](const QString &program) {
        const QVariant answer = ScriptSubroutines::runScriptSubroutine(*m_perl, QStringLiteral("execute_perl"), program);
        return answer.typeId() == QMetaType::QString ? std::optional(answer.toString()) : std::nullopt;
    });
}

QVariant RZApplication::getEXIFDate(const QVariant &path)
{
    return ScriptSubroutines::runScriptSubroutine(*m_exifInfo, QStringLiteral("get_exif_image_created_date"), path);
}
