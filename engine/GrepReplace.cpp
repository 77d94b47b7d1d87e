#include "GrepReplace.h"
#include "ErrnoText.h"

#include "ChildOutput.h"
#include "StringAdditions.h"
#include "SystemLog.h"

#include <cstring>

using StringAdditions::snr;

namespace GrepReplace {

QString escapeString(const QString &text)
{
    return snr(snr(text, QStringLiteral("/"), QStringLiteral("\\/")), QStringLiteral("\""), QStringLiteral("\\\""));
}

QString escapeStringT(const QString &text)
{
    const QString backslashes = snr(text, QStringLiteral("\\"), QStringLiteral("\\\\"));
    return escapeString(backslashes);
}

QString program(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase)
{
    // Joined piece by piece: the pieces may hold "%" of their own.
    return QStringLiteral("$x = \"") + escapeStringT(text) + QStringLiteral("\"; $x =~ s/") + escapeString(pattern)
           + u'/' + escapeString(replacement) + QStringLiteral("/g") + (consideringCase ? QString() : QStringLiteral("i"))
           + QStringLiteral("; print $x;");
}

QString snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase,
                const std::function<std::optional<QString>(const QString &)> &executePerl)
{
    return executePerl(program(text, pattern, replacement, consideringCase)).value_or(text);
}

std::optional<QString> runPERL(const QStringList &arguments)
{
    const ChildOutput perl = ChildOutput::read(QStringLiteral("/usr/bin/perl"), arguments, false);
    if (perl.launchError != 0) {
        SystemLog::write(QStringLiteral("runTask Error: NSInvalidArgumentException: launch path not accessible: "
                                        "/usr/bin/perl: ")
                         + errnoText(perl.launchError));
        return std::nullopt;
    }
    if (perl.wait() != 0)
        return std::nullopt;
    return StringAdditions::trimFromEnd(QString::fromUtf8(perl.output), {QStringLiteral("\n")});
}

} // namespace GrepReplace
