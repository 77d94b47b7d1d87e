#include "RenameEngine.h"

#include "CalendarFormat.h"
#include "GrepReplace.h"
#include "MiscMethods.h"
#include "NamedException.h"
#include "ScriptSubroutines.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

std::unique_ptr<CompiledScript> loadHelper(const MethodRegistry &methods, const QString &directory, const QString &name)
{
    QVariantMap error;
    std::unique_ptr<CompiledScript> script(
        CompiledScript::fromFile(methods, directory + u'/' + name + QStringLiteral(".scpt"), &error));
    if (!script)
        throw NamedException(NSGenericException, QStringLiteral("Error loading \"%1.scpt\".").arg(name));
    return script;
}

QDateTime midnight(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(0, 0), Qt::LocalTime);
}

} // namespace

RenameEngine::RenameEngine(const MethodRegistry &methods, const QString &scriptsDirectory)
{
    is104Plus = ROZ_MiscMethods::return104Plus();
    m_perl = loadHelper(methods, scriptsDirectory, QStringLiteral("perl"));
    m_exifInfo = loadHelper(methods, scriptsDirectory, QStringLiteral("exif_info"));
    ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_exifInfo, QStringLiteral("init"));

    date1904 = midnight(1904, 1, 1);
    date1970 = midnight(1970, 1, 1);
    date1970GMT = QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC);
    date2040 = QDateTime(QDate(2040, 2, 6), QTime(5, 28, 15), Qt::UTC);
    const QFileInfo exiftimeResource(scriptsDirectory + QStringLiteral("/../exiftime"));
    exiftime = exiftimeResource.exists() ? exiftimeResource.absoluteFilePath() : QString();
    localTimeZone = CalendarFormat::format(QDateTime::currentDateTime(), QStringLiteral("%z"));

    composer.tokens = LocalizedDateTokens::fromUiTable();
    composer.sentenceEndings = QCoreApplication::translate("ui", "sentenceEndings").split(u'|');
    composer.grep = [this](const QString &text, const QString &pattern, const QString &replacement, bool consideringCase) {
        return snrGrep(text, pattern, replacement, consideringCase);
    };
}

RenameEngine::~RenameEngine() = default;

QString RenameEngine::snrGrep(const QString &text, const QString &pattern, const QString &replacement,
                              bool consideringCase)
{
    return GrepReplace::snrGrep(text, pattern, replacement, consideringCase, [this](const QString &program) {
        const auto known = m_grepAnswers.constFind(program);
        if (known != m_grepAnswers.constEnd())
            return *known;
        return ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_perl, QStringLiteral("execute_perl"), program);
    });
}

void RenameEngine::prefetchGrep(const QStringList &names)
{
    m_grepAnswers.clear();
    const RenameSettings &s = settings();
    if (s._search_type_1 != QLatin1String("GREP") || s._filename_search_1.isEmpty() || !s._inc_original_name)
        return;
    QVariantList programs;
    for (const QString &name : names)
        programs.append(GrepReplace::program(NameComposer::baseNameOf(name), s._filename_search_1,
                                             s._filename_replace_1, s._snr_consider_case_1));
    const QVariant answers =
        ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_perl, QStringLiteral("execute_perl_batch"), programs);
    const QVariantList list = answers.toList();
    // An error pair, or any answer of the wrong size, is no answer: each
    // name then asks on its own.
    if (answers.typeId() != QMetaType::QVariantList || list.size() != programs.size())
        return;
    for (qsizetype i = 0; i < programs.size(); ++i)
        m_grepAnswers.insert(programs[i].toString(), list[i]);
}

FolderListing RenameEngine::listing()
{
    FolderListing listing({date1904, date1970, date1970GMT, date2040}, stopProgressBool);
    if (use_exif_date)
        listing.exifDate = [this](const QString &path) { return getEXIFDate(path); };
    return listing;
}

QVariant RenameEngine::getEXIFDate(const QVariant &path)
{
    return ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_exifInfo, QStringLiteral("get_exif_image_created_date"), path);
}
