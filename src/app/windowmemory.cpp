#include "app/windowmemory.h"

#include "app/mainlayout.h"
#include "common/settingsstore.h"
#include "remote/filepane.h"
#include "remote/paneview.h"

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
    window.resize(QSize(1080, 720).boundedTo(room).expandedTo(window.minimumSize()));
    layout.parts->setSizes({ 440, 220 });
    layout.lower->setSizes({ 500, 500 });
}

} // namespace

void WindowMemory::save(const QMainWindow &window, const MainLayout &layout, FilePane &local,
                        FilePane &remote) const
{
    m_store.setBytes(group, u"Geometry"_s, window.saveGeometry());
    for (const QSplitter *splitter : { layout.panes, layout.lower, layout.parts }) {
        m_store.setBytes(group, splitter->objectName(), splitter->saveState());
    }
    for (FilePane *pane : { &local, &remote }) {
        if (pane->columnsAreSized()) {
            m_store.setBytes(group, pane->view().objectName(), pane->view().header()->saveState());
        }
    }
    m_store.sync();
}

void WindowMemory::restore(QMainWindow &window, const MainLayout &layout, FilePane &local,
                           FilePane &remote) const
{
    if (!window.restoreGeometry(m_store.bytes(group, u"Geometry"_s))) {
        firstSize(window, layout);
    }
    for (QSplitter *splitter : { layout.panes, layout.lower, layout.parts }) {
        splitter->restoreState(m_store.bytes(group, splitter->objectName()));
    }
    restoreColumns(local);
    restoreColumns(remote);
}

void WindowMemory::restoreColumns(FilePane &pane) const
{
    if (pane.view().header()->restoreState(m_store.bytes(group, pane.view().objectName()))) {
        pane.keepColumns();
    }
}
