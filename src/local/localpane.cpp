#include "local/localpane.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/workingfolders.h"
#include "remote/icons.h"
#include "remote/itemkind.h"
#include "remote/paneview.h"

#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>

#include <chrono>
#include <mutex>
#include <semaphore>
#include <system_error>
#include <thread>

namespace {

/// How long a call waits for the rows; below what anybody feels as a standstill.
constexpr std::chrono::milliseconds patience(25);

FilePane::Names names()
{
    return { QStringLiteral("lvwLocal"),
             QStringLiteral("cmbLocalDir"),
             QStringLiteral("Dateien auf diesem Computer"),
             QStringLiteral("Ordner auf diesem Computer"),
             { QStringLiteral("Name"), QStringLiteral("Size"), QStringLiteral("Date") } };
}

} // namespace

/// A folder being read. The reading thread and the pane share it, so that either may go first.
struct LocalPane::Job {
    LocalRequest request;
    std::atomic_bool stop = false;
    LocalListing result;
    std::binary_semaphore done { 0 };
    std::mutex guard;
    LocalPane *pane = nullptr; ///< null once nobody waits any more; guarded

    void run(const Reader &reader)
    {
        result = reader(request, stop);
        done.release();
        const std::scoped_lock lock(guard);
        if (pane != nullptr) {
            QMetaObject::invokeMethod(pane, &LocalPane::takeResult, Qt::QueuedConnection);
        }
    }
};

LocalPane::LocalPane(Globals &globals, QWidget *parent, Reader reader)
    : FilePane(names(), parent)
    , m_globals(globals)
    , m_reader(std::move(reader))
{
    auto *desktop = new QToolButton(this);
    desktop->setObjectName(QStringLiteral("cmd_desktop"));
    desktop->setIcon(Icons::icon(QStringLiteral("desktop")));
    desktop->setToolTip(QStringLiteral("Desktop anzeigen"));
    desktop->setAccessibleName(desktop->toolTip());
    desktop->setFocusPolicy(Qt::TabFocus);
    addBoxButton(desktop);
    connect(desktop, &QToolButton::clicked, this, &LocalPane::showDesktop);
    connect(&box(), &QComboBox::editTextChanged, this,
            [this](const QString &text) { ListLocalFolder(text, FolderSource::Box); });
    connect(&box(), &QComboBox::activated, this, &LocalPane::refresh);
    connect(box().lineEdit(), &QLineEdit::returnPressed, this,
            [this] { RememberLocalFolder(m_shown); });
    connect(&view(), &PaneView::rowOpened, this, &LocalPane::OpenLocalRow);
    // A new row is no listing: what the list says about its folder does not hold any more.
    connect(&model(), &QAbstractItemModel::rowsInserted, this, [this] { view().setHint({}); });
}

LocalPane::~LocalPane() { abandonJob(); }

void LocalPane::addDrives(const QList<Drive> &drives)
{
    const QSignalBlocker quiet(&box());
    for (const Drive &drive : drives) {
        const bool home = box().count() == 0;
        box().addItem(Icons::icon(home ? QStringLiteral("Localhost") : QStringLiteral("Drive")),
                      withSeparator(drive.path, LocalSeparator));
        box().setItemData(box().count() - 1, drive.label, Qt::ToolTipRole);
    }
}

void LocalPane::abandonJob()
{
    if (m_job) {
        m_job->stop = true;
        const std::scoped_lock lock(m_job->guard);
        m_job->pane = nullptr;
    }
    m_job.reset();
}

void LocalPane::ListLocalFolder(const QString &path, FolderSource source)
{
    view().endEditing(); // while the folder is still the one whose row is being renamed
    abandonJob();
    m_job = std::make_shared<Job>();
    const QString wanted = source == FolderSource::Box ? absoluteFolder(path) : path;
    m_job->request = { wanted, source, m_globals.settings.HiddenFile };
    m_job->pane = this;
    try {
        // Detached: a thread that hangs on a dead mount must not keep anything else waiting.
        std::thread([job = m_job, reader = m_reader] { job->run(reader); }).detach();
    } catch (const std::system_error &) {
        m_job->run(m_reader);
    }
    if (m_job->done.try_acquire_for(patience)) {
        m_job->done.release();
        takeResult();
    } else {
        showPending();
    }
}

void LocalPane::setShown(const QString &folder)
{
    m_shown = folder;
    m_globals.session.CurrentLocalDir = folder;
}

void LocalPane::showPending()
{
    const QString folder = withSeparator(m_job->request.path, LocalSeparator);
    if (folder == m_shown && model().rowCount() > 1) {
        return; // listed again: its rows stand until the new ones come, so that nothing blinks
    }
    setShown(folder);
    view().setHint(QStringLiteral("Der Ordner wird gelesen ..."));
    showRows({ upRow() });
}

void LocalPane::takeResult()
{
    if (!m_job || !m_job->done.try_acquire()) {
        return; // a notice of a job whose rows are shown already, or of an older one
    }
    LocalListing listing = std::move(m_job->result);
    abandonJob();
    setShown(listing.folder);
    view().setHint(!listing.readable ? QStringLiteral("Dieser Ordner lässt sich nicht öffnen.")
                       : listing.rows.size() == 1 ? QStringLiteral("Dieser Ordner ist leer.")
                                                  : QString());
    showRows(std::move(listing.rows));
    Q_EMIT listed();
}

void LocalPane::listFolder(const QString &folder)
{
    ListLocalFolder(folder, FolderSource::Derived);
}

void LocalPane::refresh()
{
    // A folder that has vanished is shown as empty, not mistaken for one with a shorter name.
    const QString text = box().currentText();
    const bool shown = withSeparator(text, LocalSeparator) == m_shown;
    ListLocalFolder(text, shown ? FolderSource::Derived : FolderSource::Box);
}

void LocalPane::LocalUp(const QString &folder)
{
    ListLocalFolder(LocalUpPath(folder), FolderSource::Derived);
}

void LocalPane::rememberFolder(const QString &folder) { RememberLocalFolder(folder); }

void LocalPane::RememberLocalFolder(const QString &folder)
{
    FilePane::rememberFolder(folder);
    m_globals.session.CurrentLocalDir = folder;
}

void LocalPane::goUp()
{
    LocalUp(m_shown);
    RememberLocalFolder(m_shown);
}

void LocalPane::OpenLocalRow(int row, bool byMouse)
{
    if (row < 0 || row >= model().rowCount()) {
        return;
    }
    const PaneRow opened = model().row(row); // a copy: listing replaces the rows
    if (opened.kind == ItemKind::Cdup) {
        LocalUp(m_shown);
    } else if (opened.kind == ItemKind::FolderClose) {
        ListLocalFolder(m_shown + opened.name, FolderSource::Derived);
    } else if (opened.kind == ItemKind::FolderLink) {
        ListLocalFolder(opened.tag, FolderSource::Derived);
    } else if (byMouse) {
        Q_EMIT uploadWanted();
    }
    RememberLocalFolder(m_shown);
}

void LocalPane::showDesktop()
{
    ListLocalFolder(m_globals.folders.desktop, FolderSource::Derived);
    RememberLocalFolder(m_globals.folders.desktop);
}

bool LocalPane::sameFolder(const QString &entry, const QString &folder) const
{
    return withSeparator(entry, LocalSeparator) == withSeparator(folder, LocalSeparator);
}
