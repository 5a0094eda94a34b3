#include "app/windowmemory.h"

#include "app/mainlayout.h"
#include "common/settingsstore.h"
#include "remote/filepane.h"
#include "remote/paneview.h"

#include <QHeaderView>
#include <QMainWindow>
#include <QScreen>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace {

const QString group = QStringLiteral("Window");

/// First size: comfortable, but never larger than the screen.
void firstSize(QMainWindow &window, const MainLayout &layout)
{
    const QSize room = window.screen()->availableSize() * 9 / 10;
    window.resize(QSize(1180, 760).boundedTo(room).expandedTo(window.minimumSize()));
    layout.parts->setSizes({ 440, 220 });
    layout.lower->setSizes({ 500, 500 });
}

/// First widths of the queue's columns, in widths of a letter.
void firstColumns(QHeaderView &header)
{
    const int letter = header.fontMetrics().averageCharWidth();
    for (int column = 0; const int letters : { 18, 30, 12, 11, 30, 20 }) {
        header.resizeSection(column++, letters * letter);
    }
}

} // namespace

void WindowMemory::save(const RememberedParts &parts) const
{
    m_store.setBytes(group, u"Geometry"_s, parts.window.saveGeometry());
    for (const QSplitter *splitter :
         { parts.layout.panes, parts.layout.lower, parts.layout.parts }) {
        m_store.setBytes(group, splitter->objectName(), splitter->saveState());
    }
    for (FilePane *pane : { &parts.local, &parts.remote }) {
        if (pane->columnsAreSized()) {
            m_store.setBytes(group, pane->view().objectName(), pane->view().header()->saveState());
        }
    }
    m_store.setBytes(group, parts.queue.objectName(), parts.queue.header()->saveState());
    ignoreError(m_store.sync(), "the window is closing; the next one opens in its first size");
}

void WindowMemory::restore(const RememberedParts &parts) const
{
    if (!parts.window.restoreGeometry(m_store.bytes(group, u"Geometry"_s))) {
        firstSize(parts.window, parts.layout);
        firstColumns(*parts.queue.header());
    }
    for (QSplitter *splitter : { parts.layout.panes, parts.layout.lower, parts.layout.parts }) {
        splitter->restoreState(m_store.bytes(group, splitter->objectName()));
    }
    restoreColumns(parts.local);
    restoreColumns(parts.remote);
    parts.queue.header()->restoreState(m_store.bytes(group, parts.queue.objectName()));
}

void WindowMemory::restoreColumns(FilePane &pane) const
{
    if (pane.view().header()->restoreState(m_store.bytes(group, pane.view().objectName()))) {
        pane.keepColumns();
    }
}
