#pragma once

#include <QString>
#include <QStringList>

// The four case transformations, named exactly "UPPERCASE", "lowercase",
// "Title Case" and "Sentence case"; any other name leaves the text as it is.
namespace CaseChange {

QString changeCase(const QString &text, const QString &theCase, const QStringList &sentenceEndings);
// First letter of each white-space separated word upper case, the rest lower.
QString capitalized(const QString &text);

} // namespace CaseChange
