#pragma once

#include <QTreeView>

class QRubberBand;

/// List in which a press beside the names draws a band, which selects the rows that it touches;
/// with Ctrl it adds them to the selection. A press on a name is left to whoever drags rows.
class BandView : public QTreeView {
    Q_OBJECT

public:
    using QTreeView::QTreeView;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    [[nodiscard]] bool startsRubberBand(const QPoint &position) const;
    void moveRubberBand(const QPoint &position);
    void endBand(); ///< nothing when none is drawn

    QRubberBand *m_band = nullptr;
    QPoint m_bandOrigin; ///< in the coordinates of the whole list
    QItemSelection m_bandBase; ///< what was selected before, kept with Ctrl
};
