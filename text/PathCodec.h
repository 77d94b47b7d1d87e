#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// File names on Linux are bytes; any byte but "/" and NUL may appear. Names
// are read into text losslessly: valid UTF-8 as its characters, and each
// byte that is not part of valid UTF-8 as the lone surrogate U+DC80+byte.
// Writing a name back turns those surrogates into their bytes again, so a
// name that only passes through reaches the disk unchanged.
namespace PathCodec {

QString decode(const QByteArray &bytes);
QByteArray encode(const QString &text);
// The program's arguments after its name, each read as a name is.
QStringList arguments(int argc, char **argv);

} // namespace PathCodec
