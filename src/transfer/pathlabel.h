#pragma once

#include <QLabel>

/// A label for plain text with long paths: breaks lines at blanks and separators where it can, and
/// anywhere where it must, so that nothing is cut off. Of a text beyond reason the middle is left
/// out.
class PathLabel : public QLabel {
    Q_OBJECT

public:
    explicit PathLabel(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QString shownText() const;

    static constexpr int UsualWidth = 460;
};
