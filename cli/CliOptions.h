#pragma once

#include "RenameRule.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <optional>

// nomen-cli's options: declared, checked, and turned into the rule the
// window's controls would give.
namespace CliOptions {

void declare(QCommandLineParser &options);

// The first option whose value it cannot take, as an error line; "" when
// every value is good.
QString problem(const QCommandLineParser &options);

// The rule to rename by: `base` (a saved rule, or the defaults) with every
// option given on the command line over its fields. Only after problem()
// found none.
RenameRule rule(const QCommandLineParser &options, RenameRule base);

// A folder or file named on the command line, as an absolute path; a folder
// (or a link to one) resolved to the folder itself. nullopt when nothing is
// there.
std::optional<QString> resolvedArgument(const QString &argument);

} // namespace CliOptions
