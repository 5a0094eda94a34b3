#pragma once

#include <QProxyStyle>

/// Qt's own style with check boxes and options that show on a dark desktop, where it draws their
/// edges in black.
class FusionStyle final : public QProxyStyle {
    Q_OBJECT

public:
    FusionStyle();
    /// Takes the place of Qt's own style; the style of a desktop stays.
    static void install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
};
