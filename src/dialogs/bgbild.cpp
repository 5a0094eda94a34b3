#include "dialogs/bgbild.h"

#include <QMouseEvent>
#include <QPainter>

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

void bgbild::mouseReleaseEvent(QMouseEvent *event)
{
    if (rect().contains(event->position().toPoint())) {
        emit clicked();
    }
}

void bgbild::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_picture.render(&painter, QRectF(rect()));
}
