#pragma once

#include <QProxyStyle>

/// Qt's own style, with what it lacks: check boxes and options that show on a dark desktop, where
/// it draws their edges in black; buttons whose texts have room and that all look alike; a menu bar
/// without loose lines; the program's own icons in boxes.
class FusionStyle final : public QProxyStyle {
    Q_OBJECT

public:
    FusionStyle();
    /// Takes the place of Qt's own style; the style of a desktop stays.
    static void install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option,
                       const QWidget *widget) const override;
};
