#pragma once

#include <QProxyStyle>

// The desktop's own style, with one change: a group of controls is a
// bold heading over its controls, without a frame drawn below the heading.
class WindowStyle final : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget = nullptr) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget = nullptr) const override;
};
