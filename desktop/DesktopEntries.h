#pragma once

#include <QString>
#include <QStringList>

// Applications are desktop entries, found, chosen and started by the
// freedesktop rules (installed entries, mimeapps.list defaults), never read
// by hand. An identifier is an entry's file name ("org.gnome.TextEditor",
// with or without ".desktop").
namespace DesktopEntries {

// The absolute path of the program the entry starts; "" when no such entry
// is installed or its program is not found.
QString programOf(const QString &identifier);
// The entry's display name, or "".
QString nameOf(const QString &identifier);
// The identifier (with ".desktop") of the installed entry whose identifier
// or name, without regard to case, is this; "" when none is.
QString find(const QString &nameOrIdentifier);
// The identifier of the entry that starts this program or claims this
// window class, or "".
QString findRunning(const QString &windowClass, const QString &program);

// Starts the entry, handing it the files; true when it started.
bool launch(const QString &identifier, const QStringList &paths);
// Opens the URI with its default handler; true when one started. The
// launch carries no startup notification, so whether the handler comes to
// the front is the window manager's choice.
bool openUri(const QString &uri);

// The identifier of the default entry for the file's content type; "" when
// the file is missing or no entry takes its type.
QString defaultForFile(const QString &path);
// The identifier of the default entry for a content type or for a URL
// scheme ("mailto"); "" when there is none.
QString defaultForContentType(const QString &type);
QString defaultForScheme(const QString &scheme);

// A program's path as the first word of an Exec line, as a desktop entry
// file holds it: in double quotes with ", `, $ and \ escaped, % doubled,
// and then the file's own escapes for backslashes and line breaks, so any
// path starts as itself (one holding "%" through env, for GIO's sake).
QString execWord(const QString &program);
// The program an Exec line (as the file holds it) starts: its first word
// (the second after env), every escape undone.
QString programOfExec(const QString &line);

} // namespace DesktopEntries
