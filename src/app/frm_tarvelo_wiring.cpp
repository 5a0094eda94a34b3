// What runs when something is clicked, chosen, pressed or told: the connections of frm_tarvelo.
#include "app/frm_tarvelo.h"

#include "app/logpanel.h"
#include "app/selectallkey.h"
#include "app/transfercolumn.h"
#include "app/transfernotice.h"
#include "common/globals.h"
#include "connections/frm_zertifikat.h"
#include "connections/session.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frm_info.h"
#include "dialogs/helpkeyfilter.h"
#include "dialogs/helpmenu.h"
#include "ftp/ftpcontrol.h"
#include "local/localpane.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"
#include "transfer/progresspanel.h"
#include "transfer/queueview.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QToolButton>

using namespace Qt::StringLiterals;

template <class Command> void frm_tarvelo::onTrigger(QAction *action, Command command)
{
    connect(action, &QAction::triggered, this, [this, command] {
        if (mayBegin()) {
            command();
        }
    });
}

void frm_tarvelo::connectMenu()
{
    connect(m_menu.mnuExit, &QAction::triggered, this, &QWidget::close);
    onTrigger(m_menu.mnuLogin, [this] { show_login(); });
    onTrigger(m_menu.mnuLogout, [this] { m_session->logoutCommand(); });
    onTrigger(m_menu.mnuRename, [this] { m_features->rename.RenameSelected(); });
    onTrigger(m_menu.mnuMakeDirectory, [this] { m_features->newFolder.MakeDirectory(); });
    onTrigger(m_menu.mnuDelete, [this] { DeleteSelected(); });
    onTrigger(m_menu.mnuView, [this] { m_features->view.ViewSelected(); });
    onTrigger(m_menu.mnu_rechte, [this] { m_features->rights.mnu_rechte_Click(); });
    onTrigger(m_menu.mnuRefresh, [this] { refreshActive(); });
    onTrigger(m_menu.mnuSelectall, [this] { selectAllActive(); });
    onTrigger(m_menu.mnu_einstell, [this] { showSettings(); });
    HelpMenu::Actions actions;
    actions.sendF1 = [this] { sendHelpKey(m_menu.mnuHelp); };
    actions.showInfo = [this] {
        frm_info info(
            m_globals, m_services.addresses, m_services.prompts,
            [this](const QString &path) { return vorschau(path); }, this);
        info.exec();
    };
    actions.showAbout = [this] { frmAbout(readNetworkInfo(), this).exec(); };
    actions.vorschau = [this](const QString &path) { return vorschau(path); };
    new HelpMenu(*m_menu.mnuHelp, m_globals, m_services.addresses, m_services.prompts, actions);
}

void frm_tarvelo::connectLocalBar()
{
    onTrigger(m_localBar.NewFolder, [this] { m_features->newFolder.MakeLocalFolder(); });
    onTrigger(m_localBar.ViewFile,
              [this] { m_features->view.ViewLocalFile(m_local->currentRow()); });
    onTrigger(m_localBar.DeleteFiles, [this] { m_features->remove.DeleteLocalItems(); });
    onTrigger(m_localBar.RenameFile, [this] { m_local->editCaption(m_local->currentRow()); });
    onTrigger(m_localBar.Refresh, [this] { refreshLocal(); });
    onTrigger(m_localBar.SelectAll, [this] { m_local->selectAll(); });
    onTrigger(m_localBar.Cdup, [this] { m_local->goUp(); });
}

void frm_tarvelo::connectRemoteBar()
{
    onTrigger(m_remoteBar.NewFolder, [this] { m_features->newFolder.MakeRemoteFolder(); });
    onTrigger(m_remoteBar.ViewFile,
              [this] { m_features->view.ViewRemoteFile(m_remote->currentRow()); });
    onTrigger(m_remoteBar.DeleteFiles, [this] { m_features->remove.DeleteRemoteItems(); });
    onTrigger(m_remoteBar.RenameFile, [this] { m_remote->editCaption(m_remote->currentRow()); });
    onTrigger(m_remoteBar.Refresh, [this] { refreshRemote(); });
    onTrigger(m_remoteBar.SelectAll, [this] { m_remote->selectAll(); });
    onTrigger(m_remoteBar.Cdup, [this] { m_remote->GoUpRemote(); });
}

void frm_tarvelo::connectPanes()
{
    connectPane(*m_local, *m_remote);
    connectPane(*m_remote, *m_local);
    connect(&m_local->view(), &PaneView::gotFocus, this,
            [this] { m_globals.active = { .LocalListActive = true }; });
    connect(&m_remote->view(), &PaneView::gotFocus, this,
            [this] { m_globals.active = { .RemoteListActive = true }; });
    // The rows of a slow folder come later, and none of them is selected.
    connect(m_local, &LocalPane::listed, this, [this] { followPane(false); });
    connectSelection(m_local->view(), false);
    connectSelection(m_remote->view(), true);
    connect(&m_local->view(), &PaneView::upPressed, this, [this] { goUp(false); });
    connect(&m_remote->view(), &PaneView::upPressed, this, [this] { goUp(true); });
}

void frm_tarvelo::connectSelection(PaneView &view, bool remote)
{
    const auto follow = [this, remote] { followPane(remote); };
    connect(&view, &PaneView::selectionMoved, this, follow);
    // The menu is shared: a row that stays selected counts again when its list is taken up again.
    connect(&view, &PaneView::clicked, this, follow);
    connect(&view, &PaneView::gotFocus, this, follow);
}

void frm_tarvelo::connectEdits()
{
    connect(&m_local->model(), &PaneModel::captionEdited, this,
            [this](int row, const QString &text) {
                isBusy() ? tellNotRenamed(m_local->model().row(row).name)
                         : m_features->rename.RenameLocalAfterEdit(row, text);
            });
    // Not before the editor has closed: while the server is asked, the list may be emptied below
    // it.
    connect(&m_remote->model(), &PaneModel::captionEdited, this,
            [this](int row, const QString &text) {
                m_typedName = TypedName { m_remote->model().row(row).name, text };
                QMetaObject::invokeMethod(this, &frm_tarvelo::renameTyped, Qt::QueuedConnection);
            });
    connect(&m_local->view(), &PaneView::deletePressed, this,
            [this] { isBusy() ? void() : m_features->remove.DeleteLocalItems(); });
    connect(&m_remote->view(), &PaneView::deletePressed, this,
            [this] { isBusy() ? void() : m_features->remove.DeleteRemoteItems(); });
    m_remote->setBusyCheck(
        [this] { return m_features->remove.isRunning() || m_features->disk.isLooking(); });
    m_features->putBack.setBusyCheck(
        [this] { return isBusy() || QApplication::activeModalWidget() != nullptr; });
    connect(m_local, &LocalPane::uploadWanted, this,
            [this] { isBusy() ? void() : m_features->transfers.cmd_upload_Click(); });
    connect(m_remote, &RemotePane::downloadWanted, this,
            [this] { isBusy() ? void() : m_features->transfers.cmd_download_Click(); });
}

void frm_tarvelo::connectPane(FilePane &pane, FilePane &other)
{
    connect(&pane.view(), &PaneView::otherPaneWanted, this,
            [&other] { other.view().setFocus(Qt::TabFocusReason); });
}

void frm_tarvelo::connectSession()
{
    m_services.ftp.setCertificateQuestion([this](const FtpCertificate &certificate) {
        return frm_zertifikat::ask(certificate, this);
    });
    connect(m_session.get(), &Session::logToBeCleared, m_log, &LogPanel::clear);
    connect(m_session.get(), &Session::loggedIn, this,
            [this] { m_features->putBack.offerUnsent(); });
    connect(m_session.get(), &Session::captionChanged, m_notice, &TransferNotice::setCaption);
    connect(m_session.get(), &Session::progress, this, &frm_tarvelo::showProgress);
    connect(m_session.get(), &Session::replied, this,
            [this](const FtpEvent &event) { m_features->space.explain(event); });
}

void frm_tarvelo::connectQueue()
{
    m_queue->installEventFilter(this);
    auto *selectAll = new SelectAllKey(this);
    m_queue->installEventFilter(selectAll);
    m_log->txtLog()->installEventFilter(selectAll);
    connect(m_progress, &ProgressPanel::abortClicked, this, &frm_tarvelo::abort);
    connect(m_queue, &QueueView::retryRequested, this, [this](const QList<QueueRow> &rows) {
        mayBegin() ? m_features->transfers.RetryTransfers(rows) : void();
    });
    m_queue->setRetryCheck([this](const QList<QueueRow> &rows) {
        return !isBusy() && m_features->transfers.mayRetry(rows);
    });
    connect(m_queue, &QueueView::openFolderRequested, this,
            [this](const QString &folder) { vorschau(folder); });
}

void frm_tarvelo::connectColumn()
{
    connect(m_column, &TransferColumn::greenClicked, m_menu.mnuLogout, [this] {
        m_menu.mnuLogout->trigger(); // does nothing when it is disabled
    });
    connect(m_column, &TransferColumn::redClicked, m_menu.mnuLogin,
            [this] { m_menu.mnuLogin->trigger(); });
    connect(m_column, &TransferColumn::uploadClicked, this,
            [this] { mayBegin() ? m_features->transfers.cmd_upload_Click() : void(); });
    connect(m_column, &TransferColumn::downloadClicked, this,
            [this] { mayBegin() ? m_features->transfers.cmd_download_Click() : void(); });
    connect(m_rememberLocal, &QToolButton::clicked, this, [this] { rememberFolder(false); });
    connect(m_rememberRemote, &QToolButton::clicked, this, [this] { rememberFolder(true); });
    connect(m_column, &TransferColumn::transferTypeChosen, this,
            [this](int type) { m_globals.connection.TransferType = type; });
}
