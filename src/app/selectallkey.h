#pragma once

#include <QObject>

/// Leaves Ctrl+A to the widget that has the focus. The menu's command of that key counts everything
/// but the server's pane as the local pane.
class SelectAllKey : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
