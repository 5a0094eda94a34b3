#pragma once

#include <QLabel>

/// A label for plain text with long paths, one to a line. What does not fit is left out in the
/// middle, so that where a path begins and the file's name stay in sight; the tool tip has it
/// whole.
class PathLabel : public QLabel {
    Q_OBJECT

public:
    explicit PathLabel(QWidget *parent = nullptr);

    /// The text is the lines with blanks between them.
    void setLines(const QStringList &lines);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QStringList m_lines;
};
