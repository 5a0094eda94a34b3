#include "transfer/pathlabel.h"

#include <QPainter>

namespace {

/// A server's paths may be thousands of characters long; a tool tip must not be.
QString withinReason(const QString &text)
{
    constexpr qsizetype most = 600; // of each end
    return text.size() <= 2 * most ? text : text.left(most) + u'…' + text.right(most);
}

} // namespace

PathLabel::PathLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText); // names come from servers
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void PathLabel::setLines(const QStringList &lines)
{
    m_lines = lines;
    setText(lines.join(u' '));
    // Rich text, since that alone is broken into lines.
    setToolTip(QStringLiteral("<qt>") + withinReason(text()).toHtmlEscaped()
               + QStringLiteral("</qt>"));
}

QSize PathLabel::sizeHint() const
{
    constexpr int usualWidth = 520;
    return { usualWidth, static_cast<int>(m_lines.size()) * fontMetrics().lineSpacing() };
}

QSize PathLabel::minimumSizeHint() const { return sizeHint(); }

void PathLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    QRect place(0, 0, width(), fontMetrics().lineSpacing());
    for (const QString &line : m_lines) {
        painter.drawText(place, Qt::AlignLeft | Qt::TextSingleLine,
                         fontMetrics().elidedText(line, Qt::ElideMiddle, width()));
        place.translate(0, place.height());
    }
}
