#pragma once

#include <QKeyEvent>
#include <QTest>
#include <QWidget>

/// Counts the F1 keys that a dialog gets: what its help button sends.
class HelpKeys : public QObject {
public:
    explicit HelpKeys(QWidget &dialog) { dialog.installEventFilter(this); }
    /// Waits for one; whether it was the only one.
    [[nodiscard]] bool one() const
    {
        return QTest::qWaitFor([this] { return m_count > 0; }) && m_count == 1;
    }
    bool eventFilter(QObject * /*dialog*/, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress) {
            m_count += static_cast<QKeyEvent *>(event)->key() == Qt::Key_F1 ? 1 : 0;
        }
        return false;
    }

private:
    int m_count = 0;
};
