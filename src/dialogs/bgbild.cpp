#include "dialogs/bgbild.h"

#include <QMouseEvent>
#include <QPainter>

#include <utility>

using namespace Qt::StringLiterals;

bgbild::bgbild(QWidget *parent)
    : QWidget(parent)
{
    Q_INIT_RESOURCE(dialogs);
    setObjectName(u"bgbild"_s);
    setAccessibleName(u"Tarvelo FTP"_s);
    setFixedSize(sizeHint());
    setCursor(Qt::PointingHandCursor);
    m_picture.load(u":/dialogs/info.svg"_s);
}

QSize bgbild::sizeHint() const { return { 540, 288 }; }

void bgbild::mousePressEvent(QMouseEvent *event) { m_pressed = event->button() == Qt::LeftButton; }

void bgbild::mouseReleaseEvent(QMouseEvent *event)
{
    const bool pressed = event->button() == Qt::LeftButton && std::exchange(m_pressed, false);
    if (pressed && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
}

void bgbild::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_picture.render(&painter, QRectF(rect()));
}
