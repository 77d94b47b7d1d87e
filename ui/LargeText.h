#pragma once

#include <QRect>
#include <QSizeF>
#include <QString>
#include <functional>
#include <optional>

class QWidget;

// A short text shown as large as the main screen allows: white bold type
// with a drop shadow, in a text field (a QLabel or QLineEdit) that fills a
// window of its own. Font sizes are in screen units, as the limits are.
namespace LargeText {

struct Limits {
    int width = 0;  // the visible width less 200, whole
    int height = 0; // the visible height less 200, whole
    float largest = 1000.0f;
};
// The limits for a visible screen area; `largest` from the
// "maxLargeTypeFontSize" default when it is set.
Limits limitsFor(const QRect &visible, std::optional<float> largestDefault);

struct Choice {
    float size = 24.0f;
    int measurements = 0;
};
// Grows from 24 in steps of 1 while the text stays below the limit of its
// longer side and within the other; shrinks while it is over that limit
// (ending one step above the first size that fits); stays at 24 when it is
// exactly at the limit. Capped by `largest`.
Choice chooseSize(const std::function<QSizeF(float)> &measure, const Limits &limits);

// The text's width and height in the bold system font at that size.
QSizeF measure(const QString &text, float size);

// Sizes the field to the text at the chosen size, the window to the field
// plus 70 by 25 at the screen's bottom-left corner, and centres the field;
// showing the window is the caller's part. Answers the size used.
float show(const QString &text, QWidget *field, QWidget *window);

} // namespace LargeText
