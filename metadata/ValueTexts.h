#pragma once

#include <QString>
#include <QStringView>
#include <cstddef>

// How recorded values read in a name: the forms photographers and music
// players use, and the rules that make any value safe in a file name.
namespace ValueTexts {

// Text as a tag holds it: UTF-8 when it is valid UTF-8, else Latin-1 (old
// cameras write their own code page in "ASCII" fields); it ends at the first
// NUL, and blanks around it go.
QString decoded(const char *bytes, size_t size);

// The model with the make said once: "Canon" and "Canon EOS 40D" give
// "Canon EOS 40D", "Apple" and "iPhone 13 Pro Max" "Apple iPhone 13 Pro Max";
// a maker's corporate words are left out ("NIKON CORPORATION" is "NIKON").
QString camera(const QString &make, const QString &model);

QString aperture(double fNumber);    // "f2.8", "f8"
QString exposure(double seconds);    // "1/250", "0.5", "2"
QString focalLength(double mm);      // "35mm", "4.2mm"
QString duration(qint64 milliseconds); // "4.07", "1.02.05": whole seconds
QString track(const QString &text);  // "01" from "1/12": at least two digits
QString disc(const QString &text);   // "1" from "1/2"
QString year(const QString &text);   // "2004" from "2004-05-01"

// A value as it may stand in a file name: "/" becomes "_", NUL and other
// control characters go, and blanks around it are trimmed.
QString forName(QStringView value);

} // namespace ValueTexts
