#include "TextViews.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextEdit>

namespace TextViews {

namespace {

QTextDocument *documentOf(QWidget *view)
{
    if (auto *edit = qobject_cast<QTextEdit *>(view))
        return edit->document();
    if (auto *plain = qobject_cast<QPlainTextEdit *>(view))
        return plain->document();
    return nullptr;
}

} // namespace

void logEntry(QWidget *view, const QString &line, bool updateFont)
{
    QTextDocument *document = documentOf(view);
    if (!document)
        return;
    QTextCursor end(document);
    end.movePosition(QTextCursor::End);
    QTextCharFormat format = end.charFormat();
    if (updateFont) {
        QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        fixed.setPointSize(11);
        format.setFont(fixed);
    }
    end.insertText(line + u'\n', format);
    autoScroll(view);
}

void autoScroll(QWidget *view)
{
    if (auto *edit = qobject_cast<QTextEdit *>(view)) {
        edit->moveCursor(QTextCursor::End);
        edit->ensureCursorVisible();
        edit->viewport()->update();
    } else if (auto *plain = qobject_cast<QPlainTextEdit *>(view)) {
        plain->moveCursor(QTextCursor::End);
        plain->ensureCursorVisible();
        plain->viewport()->update();
    }
}

} // namespace TextViews
