#pragma once

#include <QString>
#include <QVariantList>

// printf-style formats as the platform reads them: "%@" and "%s" print an
// object's text, number directives their number with flags, width and
// precision, "%%" a percent sign. Arguments are taken in order; a directive
// with no argument left prints "(null)" for objects and zero for numbers,
// so nothing past the arguments is ever read. Text that is not a complete
// directive stays as it is.
namespace FormatString {
QString apply(const QString &format, const QVariantList &arguments);
}
