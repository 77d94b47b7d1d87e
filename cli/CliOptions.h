#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <optional>

// nomen-cli's options: declared, checked, and turned into the rule the
// window's controls would give.
namespace CliOptions {

void declare(QCommandLineParser &options);

// The first option whose value it cannot take, as an error line; "" when
// every value is good.
QString problem(const QCommandLineParser &options);

// The rename settings, as the window's controls would give them: the
// counter padded as with the full interface, the extension with its full
// stop. Only after problem() found none.
QVariantList settings(const QCommandLineParser &options);

// Date choice for date tokens: 0 none, 1 now, 2 created, 3 modified.
qint32 dateChoice(const QCommandLineParser &options);

// A folder or file named on the command line, as an absolute path; a folder
// (or a link to one) resolved to the folder itself. nullopt when nothing is
// there.
std::optional<QString> resolvedArgument(const QString &argument);

} // namespace CliOptions
