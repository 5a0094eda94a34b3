#include "app/selectallkey.h"

#include <QKeyEvent>

bool SelectAllKey::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent *>(event)->matches(QKeySequence::SelectAll)) {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
