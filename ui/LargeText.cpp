#include "LargeText.h"

#include "UserDefaults.h"
#include "WindowConstruction.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QGraphicsDropShadowEffect>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>

namespace LargeText {

namespace {

QFont boldFont(float size)
{
    QFont font = QApplication::font();
    font.setBold(true);
    font.setPixelSize(std::max(1, int(size)));
    return font;
}

std::optional<float> largestFromDefaults()
{
    const QString key = QStringLiteral("maxLargeTypeFontSize");
    if (!UserDefaults::defaultExists(key))
        return std::nullopt;
    return UserDefaults::readDefault(key).toFloat();
}

void setText(QWidget *field, const QString &text, const QFont &font)
{
    field->setFont(font);
    QPalette palette = field->palette();
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::Text, Qt::white);
    field->setPalette(palette);
    // Offset 4 right and 4 down, blurred by 2, in the usual shadow colour.
    auto *shadow = new QGraphicsDropShadowEffect(field);
    shadow->setOffset(4, 4);
    shadow->setBlurRadius(2);
    shadow->setColor(QColor(0, 0, 0, 85));
    field->setGraphicsEffect(shadow);
    if (auto *label = qobject_cast<QLabel *>(field)) {
        label->setText(text);
        label->adjustSize();
    } else if (auto *line = qobject_cast<QLineEdit *>(field)) {
        line->setText(text);
        const QMargins margins = line->textMargins() + line->contentsMargins();
        line->resize(int(std::ceil(QFontMetricsF(font).horizontalAdvance(text))) + margins.left() + margins.right() + 8,
                     line->sizeHint().height());
    }
}

} // namespace

Limits limitsFor(const QRect &visible, std::optional<float> largestDefault)
{
    return {visible.width() - 200, visible.height() - 200, largestDefault.value_or(1000.0f)};
}

Choice chooseSize(const std::function<QSizeF(float)> &measure, const Limits &limits)
{
    Choice choice;
    float size = 24.0f;
    QSizeF measured = measure(size);
    ++choice.measurements;
    const bool widthGoverns = measured.width() > measured.height();
    const auto governing = [&](QSizeF s) { return widthGoverns ? s.width() : s.height(); };
    const auto other = [&](QSizeF s) { return widthGoverns ? s.height() : s.width(); };
    const qreal limit = widthGoverns ? limits.width : limits.height;
    const qreal otherLimit = widthGoverns ? limits.height : limits.width;
    float result = 24.0f;
    if (limit > governing(measured)) {
        do {
            size += 1.0f;
            measured = measure(size);
            ++choice.measurements;
        } while (!(other(measured) > otherLimit) && governing(measured) < limit);
        result = size - 1.0f;
    } else if (governing(measured) > limit) {
        // Down to size 1 at most: no text is measured at nothing.
        do {
            size -= 1.0f;
            measured = measure(size);
            ++choice.measurements;
        } while (governing(measured) > limit && size > 1.0f);
        result = size + 1.0f;
    }
    choice.size = std::min(result, limits.largest);
    return choice;
}

QSizeF measure(const QString &text, float size)
{
    return QFontMetricsF(boldFont(size)).size(0, text);
}

float show(const QString &text, QWidget *field, QWidget *window)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!field || !window || !screen)
        return 0;
    const Limits limits = limitsFor(screen->availableGeometry(), largestFromDefaults());
    const float size = chooseSize([&](float s) { return measure(text, s); }, limits).size;
    setText(field, text, boldFont(size));
    const QSize fieldSize = field->size();
    const QSize windowSize(fieldSize.width() + 70, fieldSize.height() + 25);
    WindowConstruction::setFrame(window, QRectF(QPointF(0, 0), QSizeF(windowSize)));
    field->move((windowSize.width() - fieldSize.width()) / 2, (windowSize.height() - fieldSize.height()) / 2);
    window->update();
    return size;
}

} // namespace LargeText
