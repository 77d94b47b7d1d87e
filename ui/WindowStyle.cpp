#include "WindowStyle.h"

#include <QPainter>
#include <QStyleOptionGroupBox>

namespace {

QFont headingFont(const QWidget *widget)
{
    QFont font = widget ? widget->font() : QFont();
    font.setBold(true);
    return font;
}

} // namespace

QRect WindowStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                  const QWidget *widget) const
{
    QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
    // The heading is bold: room for it at that weight.
    if (const auto *group = qstyleoption_cast<const QStyleOptionGroupBox *>(option);
        control == CC_GroupBox && part == SC_GroupBoxLabel && group)
        rect.setWidth(std::max(rect.width(), QFontMetrics(headingFont(widget)).horizontalAdvance(group->text) + 4));
    return rect;
}

void WindowStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                     const QWidget *widget) const
{
    const auto *group = qstyleoption_cast<const QStyleOptionGroupBox *>(option);
    if (control != CC_GroupBox || !group) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    QStyleOptionGroupBox heading(*group);
    heading.subControls &= ~SC_GroupBoxFrame;
    painter->save();
    painter->setFont(headingFont(widget));
    QProxyStyle::drawComplexControl(control, &heading, painter, widget);
    painter->restore();
}
