#include "app/fusionstyle.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

using namespace Qt::StringLiterals;

FusionStyle::FusionStyle()
    : QProxyStyle(u"fusion"_s)
{
}

void FusionStyle::install()
{
    if (QApplication::style()->name() == "fusion"_L1) {
        QApplication::setStyle(new FusionStyle);
    }
}

void FusionStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                   QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool round = element == PE_IndicatorRadioButton;
    constexpr int dark = 128;
    if ((!round && element != PE_IndicatorCheckBox)
        || option->palette.window().color().lightness() >= dark) {
        return;
    }
    QColor edge = option->palette.windowText().color();
    edge.setAlphaF(0.55F);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, round);
    painter->setPen(edge);
    painter->setBrush(Qt::NoBrush);
    const QRectF place = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    round ? painter->drawEllipse(place) : painter->drawRect(place);
    painter->restore();
}
