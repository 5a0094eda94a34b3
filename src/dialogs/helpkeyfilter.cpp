#include "dialogs/helpkeyfilter.h"

#include "dialogs/frm_hilfe.h"
#include "dialogs/helpkey.h"
#include "dialogs/helppages.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTabWidget>
#include <QWidget>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

/// Page of the tab that a window shows: its help button, and all else outside its tabs, means what
/// the user looks at.
QString pageOfOpenTab(const QWidget &window)
{
    const auto *tabs = window.isWindow() ? window.findChild<QTabWidget *>() : nullptr;
    return tabs && tabs->currentWidget() ? helpPageOfControl(tabs->currentWidget()->objectName())
                                         : QString();
}

} // namespace

HelpKeyFilter::HelpKeyFilter(QObject *parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

HelpKeyFilter::~HelpKeyFilter() = default;

void HelpKeyFilter::openHelp(const QString &page)
{
    if (!m_window) {
        m_window = std::make_unique<frm_hilfe>();
    }
    m_window->openTopic(page);
    // A modal dialog blocks every window but those that belong to it.
    const QWidget *modal = QApplication::activeModalWidget();
    m_window->winId();
    m_window->windowHandle()->setTransientParent(modal ? modal->window()->windowHandle() : nullptr);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

bool HelpKeyFilter::eventFilter(QObject *watched, QEvent *event)
{
    // The native window gets the key first and passes it on to its widget; only that one knows
    // where the focus is.
    if (event->type() == QEvent::KeyPress && watched->isWidgetType()
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_F1) {
        openHelp(helpPageFor(static_cast<QWidget *>(watched)));
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void sendHelpKey(QWidget *target)
{
    if (!target) {
        target = QApplication::focusWidget();
    }
    if (!target) {
        target = QApplication::activeWindow();
    }
    if (!target && !QApplication::topLevelWidgets().isEmpty()) {
        target = QApplication::topLevelWidgets().constFirst();
    }
    if (target) {
        postHelpKey(target);
    }
}

QString helpPageFor(const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        const QString tab = pageOfOpenTab(*widget);
        const QString page = tab.isEmpty() ? helpPageOfControl(widget->objectName()) : tab;
        if (!page.isEmpty()) {
            return page;
        }
    }
    return contentsPage();
}
