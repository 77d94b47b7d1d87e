#pragma once

#include <QString>

class QWidget;

// Log lines into a text view (a QTextEdit or QPlainTextEdit); any other
// widget is left alone.
namespace TextViews {

// Appends the line and a line feed; with updateFont the appended text is in
// the system's fixed-width font at 11 points. Then scrolls to the end.
void logEntry(QWidget *view, const QString &line, bool updateFont);
// Scrolls so that the end of the text is in view.
void autoScroll(QWidget *view);

} // namespace TextViews
