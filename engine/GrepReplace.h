#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <functional>

// Regular-expression replace handed to Perl, and running perl directly.
namespace GrepReplace {

// "/" and the double quote escaped; backslashes left for the pattern's own
// escapes.
QString escapeString(const QString &text);
// For a double-quoted Perl literal: backslashes doubled first, then "/" and
// the double quote escaped. "$" and "@" are left alone on purpose, so Perl
// interpolates them (a name's "$word" vanishes).
QString escapeStringT(const QString &text);
// The one-line program: $x = "TEXT"; $x =~ s/PATTERN/REPLACEMENT/g[i]; print $x;
QString program(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase);

// Runs the program through `executePerl` (the helper script's
// "execute_perl"); its answer replaces the text only when there is one.
QString snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase,
                const std::function<std::optional<QString>(const QString &program)> &executePerl);

// /usr/bin/perl with these arguments: its output less trailing line feeds,
// or nothing when it cannot start or exits with a failure.
std::optional<QString> runPERL(const QStringList &arguments);

} // namespace GrepReplace
