// GLib's headers use names Qt defines as keywords, so they come first.
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include "DesktopEntries.h"

#include "PathCodec.h"

namespace DesktopEntries {

namespace {

template <typename T>
struct Unref {
    void operator()(T *object) const { g_object_unref(object); }
};

} // namespace

QString programOf(const QString &identifier)
{
    if (identifier.isEmpty())
        return QString();
    // The identifier is the entry's file name, so it is bytes like any name.
    QByteArray name = PathCodec::encode(identifier);
    if (!name.endsWith(".desktop"))
        name += ".desktop";
    const std::unique_ptr<GDesktopAppInfo, Unref<GDesktopAppInfo>> entry(g_desktop_app_info_new(name.constData()));
    if (!entry)
        return QString();
    const char *executable = g_app_info_get_executable(G_APP_INFO(entry.get()));
    if (!executable || !*executable)
        return QString();
    gchar *program = g_find_program_in_path(executable);
    if (!program)
        return QString();
    const QString answer = PathCodec::decode(QByteArray(program));
    g_free(program);
    return answer;
}

} // namespace DesktopEntries
