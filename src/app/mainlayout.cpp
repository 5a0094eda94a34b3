#include "app/mainlayout.h"

#include "remote/icons.h"

#include <QLabel>
#include <QMainWindow>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int grid = 6;

QSplitter *newSplitter(Qt::Orientation orientation, const QString &name)
{
    auto *splitter = new QSplitter(orientation);
    splitter->setObjectName(name);
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(grid);
    return splitter;
}

/// A list with its caption above, as tall as the row of buttons above the list beside it.
QWidget *withCaption(QWidget *list, const QString &caption)
{
    auto *box = new QWidget;
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(grid);
    auto *label = new QLabel(caption);
    label->setBuddy(list);
    QToolButton button;
    button.setText(caption);
    button.setIcon(Icons::icon(u"cmd_log_clipboard"_s));
    button.setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    label->setFixedHeight(button.sizeHint().height());
    column->addWidget(label);
    column->addWidget(list, 1);
    return box;
}

} // namespace

MainLayout::MainLayout(QMainWindow &window, const MainLayoutParts &pieces)
    : panes(newSplitter(Qt::Horizontal, u"split_fenster"_s))
    , lower(newSplitter(Qt::Horizontal, u"split_unten"_s))
    , parts(newSplitter(Qt::Vertical, u"split_teile"_s))
{
    panes->addWidget(pieces.localPane);
    panes->addWidget(pieces.transferColumn);
    panes->addWidget(pieces.remotePane);
    panes->setStretchFactor(0, 1);
    panes->setStretchFactor(1, 0); // the column keeps its width
    panes->setStretchFactor(2, 1);

    lower->addWidget(withCaption(pieces.queue, u"Übertragungen"_s));
    lower->addWidget(pieces.log);
    lower->setStretchFactor(0, 1);
    lower->setStretchFactor(1, 1);

    auto *bottom = new QWidget;
    auto *rows = new QVBoxLayout(bottom);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(grid);
    rows->addWidget(pieces.progress);
    rows->addWidget(lower, 1);

    parts->addWidget(panes);
    parts->addWidget(bottom);
    parts->setStretchFactor(0, 3);
    parts->setStretchFactor(1, 1);

    auto *frame = new QWidget;
    auto *whole = new QVBoxLayout(frame);
    whole->setContentsMargins(2 * grid, grid, 2 * grid, 2 * grid);
    whole->addWidget(parts);
    window.setCentralWidget(frame);
}
