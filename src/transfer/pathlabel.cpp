#include "transfer/pathlabel.h"

#include <QPainter>
#include <QTextLayout>
#include <cmath>

namespace {

/// Breaks the text into lines of a width. @return the height of all
qreal arrange(QTextLayout &layout, qreal width)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
    }
    layout.endLayout();
    return height;
}

} // namespace

PathLabel::PathLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText); // names come from servers
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

/// A server's paths may be thousands of characters long: whole they would push the buttons off the
/// screen.
QString PathLabel::shownText() const
{
    constexpr qsizetype most = 600; // of each end
    const QString whole = text();
    return whole.size() <= 2 * most ? whole : whole.left(most) + u'…' + whole.right(most);
}

QSize PathLabel::sizeHint() const { return { UsualWidth, heightForWidth(UsualWidth) }; }

QSize PathLabel::minimumSizeHint() const { return sizeHint(); }

int PathLabel::heightForWidth(int width) const
{
    QTextLayout layout(shownText(), font());
    return static_cast<int>(std::ceil(arrange(layout, width)));
}

void PathLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    QTextLayout layout(shownText(), font());
    arrange(layout, width());
    layout.draw(&painter, QPointF(0, 0));
}
