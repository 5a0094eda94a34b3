#pragma once

#include <QProxyStyle>

/// The system's style with a little more air in the rows and cells of a list.
class ListStyle final : public QProxyStyle {
    Q_OBJECT

public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        // The margin beside icon and text of a cell.
        const int width = QProxyStyle::pixelMetric(metric, option, widget);
        return metric == PM_FocusFrameHMargin ? width + 3 : width;
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override
    {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return type == CT_ItemViewItem ? size + QSize(0, 4) : size;
    }
};
