#pragma once

#include "RenameRule.h"

#include <QString>
#include <QStringList>

// The four case transformations of a rule.
namespace CaseChange {

QString changeCase(const QString &text, RenameRule::Case theCase, const QStringList &sentenceEndings);
// Each white-space separated word with its first letter raised as a
// title and the rest lowered.
QString capitalized(const QString &text);

} // namespace CaseChange
