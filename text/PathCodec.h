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
// Text for a program that reads and writes UTF-8 as Perl keeps it inside,
// where a lone surrogate has three bytes of its own: a name's bytes that
// are not UTF-8 (U+DC80+byte) go across as characters and come back as
// themselves, and so does any other lone surrogate. Bytes that are not
// such UTF-8 come back as U+DC80+byte, as in `decode`.
QByteArray encodeKeepingSurrogates(const QString &text);
QString decodeKeepingSurrogates(const QByteArray &bytes);
// Whether a new name would hold half a character: a lone surrogate, or
// bytes that are not UTF-8 and did not stand, in that order, in the old
// name. Such a name would write bytes the user never had.
bool splitsCharacter(const QString &oldName, const QString &newName);
// The program's arguments after its name, each read as a name is.
QStringList arguments(int argc, char **argv);

} // namespace PathCodec
