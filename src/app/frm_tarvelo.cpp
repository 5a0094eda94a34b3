#include "app/frm_tarvelo.h"

#include "app/commands.h"
#include "app/draganddrop.h"
#include "app/logpanel.h"
#include "app/startup.h"
#include "app/transfercolumn.h"
#include "app/transfernotice.h"
#include "app/windowmemory.h"
#include "common/globals.h"
#include "common/settingsstore.h"
#include "common/workingfolders.h"
#include "connections/frmConnect.h"
#include "connections/session.h"
#include "dialogs/frm_einstellungen.h"
#include "dialogs/frm_get_folder.h"
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

#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <numeric>
#include <utility>

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
    return m_services.ftp.isBusy() || m_remote->isWorking() || m_features->remove.isRunning()
        || m_features->disk.isLooking();
}

void frm_tarvelo::followPane(bool remote)
{
    if (isBusy() || !m_barsEnabled) {
        return;
    }
    remote ? UpdateRemoteCommandStates() : UpdateLocalCommandStates();
}

/// Whether a command may begin now. A name that is still being typed counts first: the command may
/// list its folder anew, and the editor would be gone with what was typed.
bool frm_tarvelo::mayBegin()
{
    if (isBusy()) {
        return false;
    }
    m_local->view().endEditing();
    m_remote->view().endEditing();
    renameTyped();
    return !isBusy();
}

void frm_tarvelo::renameTyped()
{
    const auto typed = std::exchange(m_typedName, std::nullopt);
    if (!typed) {
        return;
    }
    const int row = m_remote->model().findRow(typed->name);
    if (row >= 0 && !isBusy()) {
        m_features->rename.RenameRemoteAfterEdit(row, typed->newName);
    } else {
        tellNotRenamed(typed->name);
    }
}

/// What was typed would vanish without a word.
void frm_tarvelo::tellNotRenamed(const QString &name)
{
    AppendLog(name + u": Nicht umbenannt, denn ein anderer Befehl kam dazwischen.\r\n"_s);
}

void frm_tarvelo::showProgress(const FtpEvent &event)
{
    if (m_features->progress.report(event, m_globals.transfer)) {
        SetAbortEnabled(true);
    }
}

/// cmdAbort was clicked.
void frm_tarvelo::abort()
{
    if (m_features->remove.isRunning() && !m_services.ftp.isBusy()) {
        m_features->remove.stop(); // on this computer: no connection has to go for that
    } else {
        m_session->abortTransfer();
    }
}

bool frm_tarvelo::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_queue && event->type() == QEvent::FocusIn) {
        m_globals.active = { .QueueListActive = true };
    }
    return QMainWindow::eventFilter(watched, event);
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
    frm_einstellungen(
        { m_globals, m_services.store, [this](QWidget *parent) { pickFolder(parent); },
          trustedServersIn(trustFile(m_services.store),
                           [this](const QString &text) { m_services.prompts.message(text); }) },
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
    const auto written = remote
        ? rememberRemote(m_globals, m_remote->box().currentText())
        : rememberLocal(m_globals, absoluteFolder(m_local->box().currentText()));
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
    if (enabled && m_features->remove.isRunning()) {
        return; // a connection was lost meanwhile; the deletion goes on and comes here at its end
    }
    m_barsEnabled = enabled;
    m_localBar.setEnabled(enabled);
    m_remoteBar.setEnabled(enabled);
    m_menu.mnu_einstell->setEnabled(enabled);
    m_progress->followCommand(!enabled);
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
    if (m_barsEnabled) {
        m_remoteBar.apply(commands);
    }
}

void frm_tarvelo::UpdateLocalCommandStates()
{
    const PaneCommands commands = localCommands(decidingRow(*m_local));
    m_menu.apply(commands);
    if (m_barsEnabled) {
        m_localBar.apply(commands);
    }
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
