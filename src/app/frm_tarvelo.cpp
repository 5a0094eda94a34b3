#include "app/frm_tarvelo.h"

#include "app/commands.h"
#include "app/draganddrop.h"
#include "app/logpanel.h"
#include "app/selectallkey.h"
#include "app/startup.h"
#include "app/transfercolumn.h"
#include "app/transfernotice.h"
#include "app/windowmemory.h"
#include "common/globals.h"
#include "common/settingsstore.h"
#include "common/workingfolders.h"
#include "connections/frmConnect.h"
#include "connections/frm_zertifikat.h"
#include "connections/session.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frm_einstellungen.h"
#include "dialogs/frm_get_folder.h"
#include "dialogs/frm_info.h"
#include "dialogs/helpkeyfilter.h"
#include "dialogs/helpmenu.h"
#include "ftp/ftpcontrol.h"
#include "ftp/ftplocalnames.h"
#include "local/localpane.h"
#include "remote/icons.h"
#include "remote/itemkind.h"
#include "remote/liststyle.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"
#include "transfer/progresspanel.h"
#include "transfer/queuemodel.h"
#include "transfer/queueview.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

DecidingRow decidingRow(FilePane &pane)
{
    const int row = pane.decidingRow();
    if (row < 0) {
        return {};
    }
    return { true, pane.model().row(row).name, pane.model().row(row).kind };
}

} // namespace

frm_tarvelo::frm_tarvelo(const WindowServices &services)
    : m_services(services)
    , m_globals(services.globals)
    , m_menu(*menuBar())
    , m_localBar(u"tbToolBar"_s, u"Werkzeuge für diesen Computer"_s, this)
    , m_remoteBar(u"tbToolBar_rem"_s, u"Werkzeuge für den Server"_s, this)
{
    setObjectName(u"frm_tarvelo"_s);
    setWindowTitle(u"Tarvelo FTP"_s);
    setWindowIcon(Icons::icon(u"tarvelo-ftp"_s));
    setMinimumSize(667, 467);
    setContextMenuPolicy(Qt::NoContextMenu);
    buildPanes();
    m_session = std::make_unique<Session>(m_services.ftp, m_globals, m_services.prompts, *this,
                                          *m_remote);
    m_logins = std::make_unique<Logins>(m_globals, m_services.store, m_services.prompts, *this,
                                        *m_local, static_cast<LoginWindow &>(*this));
    m_features = std::make_unique<Features>(
        Workplace { m_services.ftp, m_globals, m_services.prompts, *this, *m_local, *m_remote },
        this);
    buildLayout();
    addLogos();
    connectMenu();
    connectLocalBar();
    connectRemoteBar();
    connectPanes();
    connectEdits();
    connectColumn();
    connectSession();
    connectQueue();
    new DragAndDrop(
        *m_local, *m_remote, *m_features, [this] { return isBusy(); }, this);
    setRememberButtonsEnabled(!m_globals.session.Lastconnect.isEmpty());
    m_session->showDisconnected();
    m_local->addDrives(drives());
    m_local->refresh();
    UpdateLocalCommandStates();
    setTabOrder(centralWidget(), &m_local->view());
    // No list has the focus at first: one counts as used only once the user has been in it.
    centralWidget()->setFocus();
    WindowMemory(m_services.store).restore({ *this, *m_layout, *m_local, *m_remote, *m_queue });
}

frm_tarvelo::~frm_tarvelo()
{
    m_services.ftp.setCertificateQuestion({});
    WindowMemory(m_services.store).save({ *this, *m_layout, *m_local, *m_remote, *m_queue });
}

void frm_tarvelo::buildPanes()
{
    m_local = new LocalPane(m_globals, this);
    m_remote = new RemotePane(m_services.ftp, m_globals, *this, this);
    m_local->setObjectName(u"pane_lokal"_s); // the help knows the panes' pages by their names
    m_remote->setObjectName(u"pane_server"_s);
    m_local->setToolBar(m_localBar.bar);
    m_remote->setToolBar(m_remoteBar.bar);
    m_rememberLocal = addRememberButton(*m_local, u"cmd_dir_merken_lokal"_s,
                                        u"Lokales Verzeichnis in der Verbindung merken"_s);
    m_rememberRemote = addRememberButton(*m_remote, u"cmd_dir_merken_remote"_s,
                                         u"Server-Verzeichnis in der Verbindung merken"_s);
    m_log = new LogPanel(m_globals.settings, m_services.prompts, this);
    m_column = new TransferColumn(this);
    m_column->setTransferType(m_globals.connection.TransferType);
}

QToolButton *frm_tarvelo::addRememberButton(FilePane &pane, const QString &name,
                                            const QString &toolTip)
{
    auto *button = new QToolButton(this);
    button->setObjectName(name);
    button->setIcon(Icons::icon(u"merken"_s));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    pane.addBoxButton(button);
    return button;
}

void frm_tarvelo::buildLayout()
{
    m_queueModel = new QueueModel(this);
    m_queue = new QueueView(*m_queueModel, m_services.prompts, this);
    ListStyle::apply(*m_queue);
    m_progress = new ProgressPanel(m_features->progress, this);
    m_notice = new TransferNotice(*this, m_features->progress, m_services.notifier);
    m_layout = std::make_unique<MainLayout>(
        *this, MainLayoutParts { m_local, m_column, m_remote, m_progress, m_queue, m_log });
}

/// The program's own picture on the left, the maker's, which opens the home page, on the right.
void frm_tarvelo::addLogos()
{
    auto *own = new QLabel(menuBar());
    own->setObjectName(u"img_logo_links"_s);
    own->setPixmap(Icons::icon(u"tarvelo-ftp"_s).pixmap(QSize(16, 16), devicePixelRatioF()));
    own->setContentsMargins(12, 0, 6, 0);
    own->setAccessibleName(u"Tarvelo FTP"_s);
    menuBar()->setCornerWidget(own, Qt::TopLeftCorner);
    auto *logo = new QToolButton(menuBar());
    logo->setObjectName(u"img_logo_rechts"_s);
    logo->setIcon(Icons::icon(u"morlanda"_s));
    logo->setAutoRaise(true);
    logo->setFocusPolicy(Qt::NoFocus);
    logo->setToolTip(u"Morlanda Homepage"_s);
    logo->setAccessibleName(logo->toolTip());
    connect(logo, &QToolButton::clicked, this, [this] { vorschau(m_services.addresses.homePage); });
    menuBar()->setCornerWidget(logo, Qt::TopRightCorner);
}

bool frm_tarvelo::isBusy() const
{
    return m_services.ftp.isBusy() || m_remote->isWorking() || m_features->remove.isRunning();
}

template <class Command> void frm_tarvelo::onTrigger(QAction *action, Command command)
{
    connect(action, &QAction::triggered, this, [this, command] {
        if (!isBusy()) {
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

void frm_tarvelo::followPane(bool remote)
{
    if (isBusy() || !m_barsEnabled) {
        return;
    }
    remote ? UpdateRemoteCommandStates() : UpdateLocalCommandStates();
}

void frm_tarvelo::connectEdits()
{
    connect(&m_local->model(), &PaneModel::captionEdited, this,
            [this](int row, const QString &text) {
                isBusy() ? void() : m_features->rename.RenameLocalAfterEdit(row, text);
            });
    // Not before the editor has closed: while the server is asked, the list may be emptied below
    // it.
    connect(
        &m_remote->model(), &PaneModel::captionEdited, this, [this](int row, const QString &text) {
            const QString name = m_remote->model().row(row).name;
            QMetaObject::invokeMethod(
                this, [this, name, text] { renameRemoteRow(name, text); }, Qt::QueuedConnection);
        });
    connect(&m_local->view(), &PaneView::deletePressed, this,
            [this] { isBusy() ? void() : m_features->remove.DeleteLocalItems(); });
    connect(&m_remote->view(), &PaneView::deletePressed, this,
            [this] { isBusy() ? void() : m_features->remove.DeleteRemoteItems(); });
    m_features->putBack.setBusyCheck(
        [this] { return isBusy() || QApplication::activeModalWidget() != nullptr; });
    connect(m_local, &LocalPane::uploadWanted, this,
            [this] { isBusy() ? void() : m_features->transfers.cmd_upload_Click(); });
    connect(m_remote, &RemotePane::downloadWanted, this,
            [this] { isBusy() ? void() : m_features->transfers.cmd_download_Click(); });
}

void frm_tarvelo::renameRemoteRow(const QString &name, const QString &newName)
{
    if (const int row = m_remote->model().findRow(name); row >= 0 && !isBusy()) {
        m_features->rename.RenameRemoteAfterEdit(row, newName);
    }
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
    connect(m_session.get(), &Session::captionChanged, m_notice, &TransferNotice::setCaption);
    connect(m_session.get(), &Session::progress, this, &frm_tarvelo::showProgress);
    connect(m_session.get(), &Session::replied, this,
            [this](const FtpEvent &event) { m_features->space.explain(event); });
}

void frm_tarvelo::showProgress(const FtpEvent &event)
{
    if (m_features->progress.report(event, m_globals.transfer)) {
        SetAbortEnabled(true);
    }
}

void frm_tarvelo::connectQueue()
{
    m_queue->installEventFilter(this);
    auto *selectAll = new SelectAllKey(this);
    m_queue->installEventFilter(selectAll);
    m_log->txtLog()->installEventFilter(selectAll);
    connect(m_progress, &ProgressPanel::abortClicked, m_session.get(), &Session::abortTransfer);
    connect(m_queue, &QueueView::retryRequested, this, [this](const QList<QueueRow> &rows) {
        isBusy() ? void() : m_features->transfers.RetryTransfers(rows);
    });
    connect(m_queue, &QueueView::openFolderRequested, this,
            [this](const QString &folder) { vorschau(folder); });
}

bool frm_tarvelo::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_queue && event->type() == QEvent::FocusIn) {
        m_globals.active = { .QueueListActive = true };
    }
    return QMainWindow::eventFilter(watched, event);
}

void frm_tarvelo::connectColumn()
{
    connect(m_column, &TransferColumn::greenClicked, m_menu.mnuLogout, [this] {
        m_menu.mnuLogout->trigger(); // does nothing when it is disabled
    });
    connect(m_column, &TransferColumn::redClicked, m_menu.mnuLogin,
            [this] { m_menu.mnuLogin->trigger(); });
    connect(m_column, &TransferColumn::uploadClicked, this,
            [this] { isBusy() ? void() : m_features->transfers.cmd_upload_Click(); });
    connect(m_column, &TransferColumn::downloadClicked, this,
            [this] { isBusy() ? void() : m_features->transfers.cmd_download_Click(); });
    connect(m_rememberLocal, &QToolButton::clicked, this, [this] { rememberFolder(false); });
    connect(m_rememberRemote, &QToolButton::clicked, this, [this] { rememberFolder(true); });
    connect(m_column, &TransferColumn::transferTypeChosen, this,
            [this](int type) { m_globals.connection.TransferType = type; });
}

int frm_tarvelo::vorschau(const QString &path) { return openWithDesktop(path); }

void frm_tarvelo::SetFtpProperties() { m_session->SetFtpProperties(); }

void frm_tarvelo::DoRemoteRefresh(const QString &folder) { m_remote->DoRemoteRefresh(folder); }

int frm_tarvelo::RemoteItem(int index) const { return m_remote->RemoteItem(index); }

void frm_tarvelo::show_login() { m_logins->show_login(); }

void frm_tarvelo::load_commands() { m_logins->load_commands(m_services.commandLine); }

void frm_tarvelo::showConnectDialog(bool connectionStands)
{
    frmConnect dialog({ m_globals, m_services.store, m_services.prompts,
                        [this](const FtpProxy &proxy) { setProxy(proxy); },
                        [this](QWidget *parent) { pickFolder(parent); } },
                      connectionStands, this);
    dialog.exec();
}

void frm_tarvelo::pickFolder(QWidget *parent)
{
    frm_get_folder(m_globals, m_services.prompts, drives(), Icons::icon(ItemKind::FolderClose),
                   parent)
        .exec();
}

void frm_tarvelo::showSettings()
{
    const bool hidden = m_globals.settings.HiddenFile;
    frm_einstellungen({ m_globals, m_services.store,
                        [this](QWidget *parent) { pickFolder(parent); },
                        trustedServersIn(trustFile(m_services.store)) },
                      this)
        .exec();
    if (hidden != m_globals.settings.HiddenFile) {
        refreshLocal();
    }
}

void frm_tarvelo::rememberFolder(bool remote)
{
    if (remote && m_remote->box().currentText().isEmpty()) {
        return; // Intended: without a connection there is no folder that could be meant.
    }
    if (!remote && holdsRawBytes(m_local->box().currentText())) {
        // The file of a connection is text: it would name another folder or none.
        m_services.prompts.message(u"Der Name dieses Ordners enthält Zeichen, die sich nicht in "
                                   "der Verbindung speichern lassen."_s);
        return;
    }
    const auto written = remote ? rememberRemote(m_globals, m_remote->box().currentText())
                                : rememberLocal(m_globals, m_local->box().currentText());
    if (!written) {
        m_services.prompts.message(written.error());
    }
}

void frm_tarvelo::ConnectSequence() { m_session->ConnectSequence(); }

void frm_tarvelo::setProxy(const FtpProxy &proxy) { m_services.ftp.setProxy(proxy); }

void frm_tarvelo::EnterRemoteFolder(const QString &folder) { m_remote->EnterRemoteFolder(folder); }

void frm_tarvelo::showTransferType()
{
    m_column->setTransferType(m_globals.connection.TransferType);
}

void frm_tarvelo::setRememberButtonsEnabled(bool enabled)
{
    m_rememberLocal->setEnabled(enabled);
    m_rememberRemote->setEnabled(enabled);
}

bool frm_tarvelo::isLogoutEnabled() const { return m_menu.mnuLogout->isEnabled(); }

void frm_tarvelo::selectLocalRowsFromSecond()
{
    const auto select = [this] {
        QList<int> rows(std::max(m_local->model().rowCount() - 1, 0));
        std::iota(rows.begin(), rows.end(), 1);
        m_local->view().selectRowNumbers(rows);
    };
    if (m_local->isReading()) {
        // The folder may be slow, and the user may have gone elsewhere before it answers.
        const auto selectThere = [this, select, folder = m_local->folder()] {
            if (m_local->folder() == folder) {
                select();
            }
        };
        connect(m_local, &LocalPane::listed, this, selectThere, Qt::SingleShotConnection);
    } else {
        select();
    }
}

void frm_tarvelo::AppendLog(const QString &text) { m_log->AppendLog(text); }

void frm_tarvelo::SetCommandsEnabled(bool login, bool logout, bool /*unused*/, bool commands,
                                     bool toolbars)
{
    m_menu.mnuLogin->setEnabled(login);
    m_menu.mnuLogout->setEnabled(logout);
    m_column->setGreen(lightFor(login, m_services.ftp.state()) == Light::Green);
    m_menu.mnuActions->menuAction()->setEnabled(commands);
    enableBars(toolbars);
}

void frm_tarvelo::SetToolbarsEnabled(bool enabled)
{
    enableBars(enabled);
    // A command that ends because its connection was lost comes last: what showed that there is
    // none must not be undone.
    if (enabled && m_services.ftp.state() != FtpControl::Connected) {
        UpdateRemoteCommandStates();
        UpdateLocalCommandStates();
    }
}

void frm_tarvelo::enableBars(bool enabled)
{
    m_barsEnabled = enabled;
    m_localBar.setEnabled(enabled);
    m_remoteBar.setEnabled(enabled);
}

void frm_tarvelo::SetFolderBoxesEnabled(bool enabled)
{
    m_local->box().setEnabled(enabled);
    m_remote->box().setEnabled(enabled);
}

void frm_tarvelo::SetAbortEnabled(bool enabled) { m_progress->setAbortEnabled(enabled); }

void frm_tarvelo::UpdateRemoteCommandStates()
{
    const PaneCommands commands
        = remoteCommands(m_services.ftp.state() == FtpControl::Connected, decidingRow(*m_remote));
    m_menu.apply(commands);
    m_remoteBar.apply(commands);
}

void frm_tarvelo::UpdateLocalCommandStates()
{
    const PaneCommands commands = localCommands(decidingRow(*m_local));
    m_menu.apply(commands);
    m_localBar.apply(commands);
}

void frm_tarvelo::AddQueueRow(const QueueRow &row)
{
    m_queue->AddQueueRow(row);
    m_notice->count(row);
}

void frm_tarvelo::ShowTransferItem(const QString &text, const QString &sizeText)
{
    m_features->progress.ShowTransferItem(text, sizeText);
    if (text.isEmpty() && !m_services.ftp.isBusy()) {
        SetAbortEnabled(false); // the last progress report may come after the last reply
    }
}

void frm_tarvelo::refreshLocal()
{
    m_local->refresh();
    UpdateLocalCommandStates();
}

void frm_tarvelo::refreshRemote()
{
    m_remote->DoRemoteRefresh(m_services.ftp.currentFolder());
    UpdateRemoteCommandStates();
}

void frm_tarvelo::refreshActive()
{
    // Intended: the queue counts as the local pane here.
    m_globals.active.RemoteListActive ? refreshRemote() : refreshLocal();
}

void frm_tarvelo::selectAllActive()
{
    m_globals.active.RemoteListActive ? m_remote->selectAll() : m_local->selectAll();
}

void frm_tarvelo::goUp(bool remote)
{
    if (isBusy()) {
        return;
    }
    remote ? m_remote->GoUpRemote() : m_local->goUp();
}

void frm_tarvelo::DeleteSelected()
{
    if (m_globals.active.RemoteListActive) {
        m_features->remove.DeleteRemoteItems();
    } else if (m_globals.active.LocalListActive) {
        m_features->remove.DeleteLocalItems();
    } else if (m_globals.active.QueueListActive) {
        m_queue->DeleteSelectedQueueRows();
    }
}

void frm_tarvelo::closeEvent(QCloseEvent *event)
{
    if (isBusy()) {
        // What runs has to come back to its callers first; they are on the stack below.
        event->ignore();
        m_globals.session.ConnectionLost = true;
        m_services.ftp.close();
        m_features->remove.stop();
        if (!m_unwinding) {
            m_unwinding = true;
            QTimer::singleShot(20, this, [this] {
                m_unwinding = false;
                close();
            });
        }
        return;
    }
    if (m_services.ftp.state() == FtpControl::Connected) {
        m_services.ftp.close();
    }
    event->accept();
}
