#pragma once

#include <QCoreApplication>
#include <QKeyEvent>

/// Sends the F1 key to a window or control, as its help button does; whoever listens for the key
/// opens the help. Header only, so that every room may use it.
inline void postHelpKey(QObject *target)
{
    for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
        QCoreApplication::postEvent(target, new QKeyEvent(type, Qt::Key_F1, Qt::NoModifier));
    }
}
