#include "app/windowmemory.h"

#include "app/mainlayout.h"
#include "common/settingsstore.h"
#include "remote/filepane.h"
#include "remote/paneview.h"
#include "transfer/queueview.h"

#include <QHeaderView>
#include <QMainWindow>
#include <QScreen>

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
    }
    for (QSplitter *splitter : { parts.layout.panes, parts.layout.lower, parts.layout.parts }) {
        splitter->restoreState(m_store.bytes(group, splitter->objectName()));
    }
    restoreColumns(parts.local);
    restoreColumns(parts.remote);
    if (!parts.queue.header()->restoreState(m_store.bytes(group, parts.queue.objectName()))) {
        parts.queue.sizeColumns();
    }
}

void WindowMemory::restoreColumns(FilePane &pane) const
{
    if (pane.view().header()->restoreState(m_store.bytes(group, pane.view().objectName()))) {
        pane.keepColumns();
    }
}
