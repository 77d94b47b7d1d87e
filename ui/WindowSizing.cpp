#include "WindowSizing.h"

#include "WindowConstruction.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPropertyAnimation>
#include <QTextDocument>
#include <QTextEdit>

namespace WindowSizing {

namespace {

constexpr int assumedTitleBar = 22;
constexpr int animationMilliseconds = 200;

// What the window manager adds around the content, 0 for none.
int decorationHeight(const QWidget *window)
{
    return window->frameGeometry().height() - window->geometry().height();
}

// Changes the window's height to `frameHeight` (content and decoration),
// keeping the top edge or the bottom one.
void setFrameHeight(QWidget *window, int frameHeight, bool keepTop, bool animate)
{
    QRect target = window->geometry();
    const int contentHeight = frameHeight - decorationHeight(window);
    if (keepTop)
        target.setHeight(contentHeight);
    else
        target.setTop(target.bottom() + 1 - contentHeight);
    if (!animate || !window->isVisible()) {
        WindowConstruction::setGeometry(window, target);
        return;
    }
    // A fixed window is free while it grows or shrinks, and fixed again at
    // the size it reaches.
    const bool fixed = window->minimumSize() == window->maximumSize();
    if (fixed) {
        window->setMinimumSize(0, 0);
        window->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
    auto *animation = new QPropertyAnimation(window, "geometry", window);
    animation->setDuration(animationMilliseconds);
    animation->setEndValue(target);
    if (fixed)
        QObject::connect(animation, &QAbstractAnimation::finished, window, [window, target] {
            window->setFixedSize(target.size());
            window->setGeometry(target);
        });
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

} // namespace

int neededHeight(const QWidget *field)
{
    if (const auto *label = qobject_cast<const QLabel *>(field))
        return label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
    if (const auto *edit = qobject_cast<const QTextEdit *>(field)) {
        QTextDocument *document = edit->document()->clone();
        document->setTextWidth(edit->viewport()->width());
        const int height = int(std::ceil(document->size().height()));
        delete document;
        return height;
    }
    if (const auto *plain = qobject_cast<const QPlainTextEdit *>(field))
        return int(plain->document()->size().height()) * plain->fontMetrics().lineSpacing();
    return field->sizeHint().height();
}

void fitTextFieldToText(QWidget *field, int offset, int smallestAllowableSize, bool adjustFromTop)
{
    if (!field)
        return;
    QWidget *window = field->window();
    const int needed = neededHeight(field);
    const int content = smallestAllowableSize > needed ? smallestAllowableSize : needed + 4;
    const int newHeight = content + decorationHeight(window) + offset;
    if (newHeight == window->frameGeometry().height())
        return;
    setFrameHeight(window, newHeight, adjustFromTop, true);
}

void discloseWindow(QWidget *window, float height, bool useAnimation)
{
    if (!window)
        return;
    const int titleBar = decorationHeight(window) > 0 ? decorationHeight(window) : assumedTitleBar;
    setFrameHeight(window, int(height) + titleBar, true, useAnimation);
}

} // namespace WindowSizing
