#pragma once

#include <QString>
#include <QStringList>

// The four case transformations, named exactly "UPPERCASE", "lowercase",
// "Title Case" and "Sentence case"; any other name leaves the text as it is.
namespace CaseChange {

QString changeCase(const QString &text, const QString &theCase, const QStringList &sentenceEndings);
// Each white-space separated word with its first letter raised as a
// title and the rest lowered.
QString capitalized(const QString &text);

} // namespace CaseChange
