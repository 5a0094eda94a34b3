#pragma once

#include <QSvgRenderer>
#include <QWidget>

/// The clickable picture of the info screen.
class bgbild : public QWidget {
    Q_OBJECT
public:
    explicit bgbild(QWidget *parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override;

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QSvgRenderer m_picture;
    bool m_pressed = false;
};
