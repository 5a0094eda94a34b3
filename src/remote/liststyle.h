#pragma once

#include <QHeaderView>
#include <QProxyStyle>
#include <QTreeView>

/// The system's style with a little more air in the rows and cells of a list.
class ListStyle final : public QProxyStyle {
    Q_OBJECT

public:
    /// Gives a list and its header this style.
    static void apply(QTreeView &list)
    {
        auto *style = new ListStyle;
        style->setParent(&list);
        list.setStyle(style);
        list.header()->setStyle(style);
    }

    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        // The margins beside icon and text of a cell and of a header.
        const int width = QProxyStyle::pixelMetric(metric, option, widget);
        return metric == PM_FocusFrameHMargin || metric == PM_HeaderMargin ? width + 3 : width;
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override
    {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return type == CT_ItemViewItem ? size + QSize(0, 4) : size;
    }
};
