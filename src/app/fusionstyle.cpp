#include "app/fusionstyle.h"

#include "remote/icons.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

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

QSize FusionStyle::sizeFromContents(ContentsType type, const QStyleOption *option,
                                    const QSize &contents, const QWidget *widget) const
{
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    if (type == CT_PushButton && button != nullptr && !button->text.isEmpty()) {
        constexpr int margin = 12;
        constexpr int least = 92; // "Abbrechen", so that its neighbours are as wide
        size.setWidth(std::max(contents.width() + 2 * margin, least));
    }
    if (type == CT_MenuBarItem) {
        // Every item draws the bar's lower edge, so it must reach down to it, also where a tool
        // button in a corner makes the bar taller.
        constexpr int toolButton = 23;
        size.setHeight(std::max(size.height(), toolButton));
    }
    return size;
}

int FusionStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                           QStyleHintReturn *data) const
{
    // Icons in the buttons of some boxes only, and a second text below a disabled one, are relics.
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons || hint == SH_EtchDisabledText) {
        return 0;
    }
    return QProxyStyle::styleHint(hint, option, widget, data);
}

QIcon FusionStyle::standardIcon(StandardPixmap icon, const QStyleOption *option,
                                const QWidget *widget) const
{
    if (icon == SP_MessageBoxWarning) {
        return Icons::icon(u"warnung"_s);
    }
    if (icon == SP_MessageBoxCritical) {
        return Icons::icon(u"abbrechen"_s);
    }
    return QProxyStyle::standardIcon(icon, option, widget);
}
