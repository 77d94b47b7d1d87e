// GLib's headers use names Qt defines as keywords, so they come first.
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include "DesktopEntries.h"
#include "GObjectOwner.h"

#include "PathCodec.h"

#include <memory>
#include <vector>

namespace DesktopEntries {

namespace {

struct FreeList {
    void operator()(GList *list) const { g_list_free_full(list, g_object_unref); }
};

QString text(const char *utf8) { return utf8 ? QString::fromUtf8(utf8) : QString(); }

// The identifier is the entry's file name, so it is bytes like any name.
GOwned<GDesktopAppInfo> entryNamed(const QString &identifier)
{
    if (identifier.isEmpty())
        return nullptr;
    QByteArray name = PathCodec::encode(identifier);
    if (!name.endsWith(".desktop"))
        name += ".desktop";
    return GOwned<GDesktopAppInfo>(g_desktop_app_info_new(name.constData()));
}

QString identifierOf(GAppInfo *info) { return info ? PathCodec::decode(QByteArray(g_app_info_get_id(info))) : QString(); }

QString pathOfProgram(const char *executable)
{
    if (!executable || !*executable)
        return QString();
    gchar *program = g_find_program_in_path(executable);
    if (!program)
        return QString();
    const QString answer = PathCodec::decode(QByteArray(program));
    g_free(program);
    return answer;
}

// Every installed entry that should be shown, in the order GIO lists them.
template <typename Match>
QString firstEntry(Match match)
{
    const std::unique_ptr<GList, FreeList> all(g_app_info_get_all());
    for (GList *item = all.get(); item; item = item->next) {
        GAppInfo *info = G_APP_INFO(item->data);
        if (match(info))
            return identifierOf(info);
    }
    return QString();
}

// The content type of the file ("text/plain"), or "" when it is missing.
QString contentTypeOf(const QString &path)
{
    const GOwned<GFile> file(g_file_new_for_path(PathCodec::encode(path).constData()));
    const GOwned<GFileInfo> info(g_file_query_info(file.get(), G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                                  G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    if (!info)
        return QString();
    gchar *mime = g_content_type_get_mime_type(g_file_info_get_content_type(info.get()));
    const QString answer = text(mime);
    g_free(mime);
    return answer;
}

} // namespace

QString programOf(const QString &identifier)
{
    const auto entry = entryNamed(identifier);
    return entry ? pathOfProgram(g_app_info_get_executable(G_APP_INFO(entry.get()))) : QString();
}

QString nameOf(const QString &identifier)
{
    const auto entry = entryNamed(identifier);
    return entry ? text(g_app_info_get_name(G_APP_INFO(entry.get()))) : QString();
}

QString find(const QString &nameOrIdentifier)
{
    if (const auto entry = entryNamed(nameOrIdentifier))
        return identifierOf(G_APP_INFO(entry.get()));
    return firstEntry([&](GAppInfo *info) {
        return nameOrIdentifier.compare(text(g_app_info_get_name(info)), Qt::CaseInsensitive) == 0 ||
               nameOrIdentifier.compare(text(g_app_info_get_display_name(info)), Qt::CaseInsensitive) == 0;
    });
}

QString findRunning(const QString &windowClass, const QString &program)
{
    if (!windowClass.isEmpty()) {
        if (const auto entry = entryNamed(windowClass.toLower()))
            return identifierOf(G_APP_INFO(entry.get()));
        const QString claimed = firstEntry([&](GAppInfo *info) {
            const char *wmClass = G_IS_DESKTOP_APP_INFO(info)
                                      ? g_desktop_app_info_get_startup_wm_class(G_DESKTOP_APP_INFO(info))
                                      : nullptr;
            return wmClass && windowClass.compare(text(wmClass), Qt::CaseInsensitive) == 0;
        });
        if (!claimed.isEmpty())
            return claimed;
    }
    if (program.isEmpty())
        return QString();
    return firstEntry([&](GAppInfo *info) { return pathOfProgram(g_app_info_get_executable(info)) == program; });
}

bool launch(const QString &identifier, const QStringList &paths)
{
    const auto entry = entryNamed(identifier);
    if (!entry)
        return false;
    // Files go as URIs made from their bytes, so a name that is not UTF-8
    // reaches the application unchanged; a relative name is taken from the
    // working folder.
    std::vector<std::unique_ptr<gchar, decltype(&g_free)>> uris;
    for (const QString &path : paths) {
        const GOwned<GFile> file(g_file_new_for_path(PathCodec::encode(path).constData()));
        uris.emplace_back(g_file_get_uri(file.get()), &g_free);
        if (!uris.back())
            return false;
    }
    GList *items = nullptr;
    for (auto it = uris.rbegin(); it != uris.rend(); ++it)
        items = g_list_prepend(items, it->get());
    const GOwned<GAppLaunchContext> context(g_app_launch_context_new());
    GError *error = nullptr;
    const bool started = g_app_info_launch_uris(G_APP_INFO(entry.get()), items, context.get(), &error);
    g_list_free(items);
    g_clear_error(&error);
    return started;
}

bool openUri(const QString &uri)
{
    if (uri.isEmpty())
        return false;
    GError *error = nullptr;
    const bool opened = g_app_info_launch_default_for_uri(uri.toUtf8().constData(), nullptr, &error);
    g_clear_error(&error);
    return opened;
}

QString defaultForContentType(const QString &type)
{
    if (type.isEmpty())
        return QString();
    const GOwned<GAppInfo> info(g_app_info_get_default_for_type(type.toUtf8().constData(), false));
    return identifierOf(info.get());
}

QString defaultForFile(const QString &path)
{
    return defaultForContentType(contentTypeOf(path));
}

QString defaultForScheme(const QString &scheme)
{
    if (scheme.isEmpty())
        return QString();
    const GOwned<GAppInfo> info(g_app_info_get_default_for_uri_scheme(scheme.toUtf8().constData()));
    return identifierOf(info.get());
}

QString execWord(const QString &program)
{
    QString quoted = QStringLiteral("\"");
    for (const QChar c : program) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            quoted += u'\\';
        quoted += c == u'%' ? QStringLiteral("%%") : QString(c);
    }
    quoted += u'"';
    // GIO looks for the program before it turns "%%" back into "%", so a
    // path holding "%" is started through env, which it finds.
    if (program.contains(u'%'))
        quoted.prepend(QStringLiteral("env "));
    // The value is a string of the file: its backslashes doubled again.
    QString written;
    for (const QChar c : quoted)
        written += c == u'\\' ? QStringLiteral("\\\\") : c == u'\n' ? QStringLiteral("\\n") : c == u'\t' ? QStringLiteral("\\t")
                   : c == u'\r' ? QStringLiteral("\\r") : QString(c);
    return written;
}

QString programOfExec(const QString &line)
{
    QString value;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] != u'\\' || i + 1 == line.size()) {
            value += line[i];
            continue;
        }
        const QChar next = line[++i];
        value += next == u's' ? u' ' : next == u'n' ? u'\n' : next == u't' ? u'\t' : next == u'r' ? u'\r' : next;
    }
    // The words, quoted ones with their escapes undone.
    QStringList words;
    for (qsizetype i = 0; i < value.size();) {
        if (value[i] == u' ') {
            ++i;
            continue;
        }
        QString word;
        if (value[i] == u'"') {
            for (++i; i < value.size() && value[i] != u'"'; ++i)
                word += value[i] == u'\\' && i + 1 < value.size() ? value[++i] : value[i];
            ++i;
        } else {
            for (; i < value.size() && value[i] != u' '; ++i)
                word += value[i];
        }
        words.append(word.replace(QStringLiteral("%%"), QStringLiteral("%")));
    }
    return words.value(words.value(0) == QLatin1String("env") ? 1 : 0);
}

} // namespace DesktopEntries
