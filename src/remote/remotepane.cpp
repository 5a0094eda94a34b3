#include "remote/remotepane.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/shell.h"
#include "remote/background.h"
#include "remote/itemkind.h"
#include "remote/paneview.h"
#include "remote/remoterows.h"
#include "remote/roworder.h"

#include <QLineEdit>
#include <QScopeGuard>

namespace {

constexpr int manyEntries = 2000; // building the rows of more is done beside the window
constexpr QChar slash = u'/';

FilePane::Names names()
{
    return { QStringLiteral("lvwRemote"),
             QStringLiteral("cmbRemoteDir"),
             QStringLiteral("Dateien auf dem Server"),
             QStringLiteral("Ordner auf dem Server"),
             { QStringLiteral("Name"), QStringLiteral("Size"), QStringLiteral("Date"),
               QStringLiteral("Permission") } };
}

/// Disables the commands for a change of folder; they come back when the listing is done, unless
/// the connection was lost meanwhile.
auto pauseCommands(Shell &shell, const FtpOperations &ftp)
{
    shell.SetCommandsEnabled(false, false, false, false, false);
    return qScopeGuard([&shell, &ftp] {
        if (ftp.state() == FtpOperations::Connected) {
            shell.SetCommandsEnabled(false, true, false, true, true);
        }
    });
}

} // namespace

RemotePane::RemotePane(FtpOperations &ftp, Globals &globals, Shell &shell, QWidget *parent)
    : FilePane(names(), parent)
    , m_ftp(ftp)
    , m_globals(globals)
    , m_shell(shell)
{
    connect(&box(), &QComboBox::activated, this, &RemotePane::takeEntry);
    connect(box().lineEdit(), &QLineEdit::returnPressed, this, &RemotePane::chooseFolder);
    connect(&view(), &PaneView::rowOpened, this, &RemotePane::OpenRemoteRow);
    connect(&model(), &QAbstractItemModel::modelReset, this, &RemotePane::forgetClosedSession);
    connect(&model(), &QAbstractItemModel::modelReset, this, &RemotePane::showHint);
    connect(&model(), &QAbstractItemModel::rowsInserted, this, &RemotePane::showHint);
    showHint();
}

bool RemotePane::isReady() const
{
    return m_ftp.state() == FtpOperations::Connected && !m_ftp.isBusy() && !m_working
        && !m_othersWork();
}

bool RemotePane::maySort() const { return FilePane::maySort() && isReady(); }

/// The control keeps its listing; what it says of a folder is true of that session's server alone.
void RemotePane::forgetClosedSession()
{
    if (m_ftp.state() != FtpOperations::Connected) {
        m_listed.clear();
    }
}

void RemotePane::showHint()
{
    const int rows = model().rowCount();
    const QString text = m_ftp.state() != FtpOperations::Connected && rows == 0
        ? QStringLiteral("Nicht mit einem Server verbunden.")
        : rows != 1 ? QString()
        : m_unread  ? QStringLiteral("Die Dateiliste konnte nicht gelesen werden.")
                    : QStringLiteral("Dieser Ordner ist leer.");
    view().setHint(text);
}

void RemotePane::listFolder(const QString &folder)
{
    QString path = folder;
    ListRemoteFolder(path);
    if (m_ftp.state() == FtpOperations::Connected) {
        m_globals.session.CurrentRemoteDir = m_ftp.currentFolder(); // takeEntry() goes by it
    }
}

/// Changes the server's folder where needed. @return the folder that the server is in afterwards
QString RemotePane::goTo(const QString &wanted)
{
    const QString before = withSeparator(m_ftp.currentFolder(), slash);
    if (wanted == before) {
        return wanted;
    }
    const FtpStatus changed = m_ftp.setCurrentFolder(wanted);
    const QString after = withSeparator(m_ftp.currentFolder(), slash);
    // Intended: a relative folder becomes what the server says that it is. Rows must never carry
    // the path of a folder that they do not come from.
    const bool keep = changed && (wanted.startsWith(slash) || !after.startsWith(slash));
    return keep ? wanted : after;
}

void RemotePane::ListRemoteFolder(QString &folder, FolderSource source)
{
    const QString current = withSeparator(m_ftp.currentFolder(), slash);
    if (source == FolderSource::Box && withSeparator(folder, slash) != current) {
        NormalizeFolderPath(folder, slash);
    } else {
        folder = withSeparator(folder, slash);
    }
    folder = goTo(folder);
    m_ftp.setTransferType(TypeAscii); // a listing is text, whatever the transfer mode is
    fillRows(folder, m_ftp.list().has_value());
}

void RemotePane::fillRows(const QString &folder, bool listed)
{
    if (m_ftp.state() != FtpOperations::Connected) {
        model().clear();
        return;
    }
    // Intended: after a refused listing the control still holds the one before, perhaps of another
    // folder, whose files must not be shown here.
    const bool known = listed || folder == m_listed;
    const RemoteListing listing = known ? m_ftp.listing() : RemoteListing { {}, 0, {} };
    m_listed = known ? folder : QString();
    // Many servers send nothing at all for an empty folder.
    m_unread = !known
        || (listing.format == RemoteListing::Uninterpretable
            && !listing.rawText.trimmed().isEmpty());
    QList<PaneRow> rows;
    const auto build = [&] {
        rows = RegroupRows(
            sortRows(buildRemoteRows(listing, folder), ColumnName, Qt::AscendingOrder));
    };
    if (listing.entries.size() < manyEntries) {
        build();
    } else {
        m_working = true;
        runBesideWindow(build);
        m_working = false;
    }
    const bool stands = m_ftp.state() == FtpOperations::Connected;
    showRows(stands ? std::move(rows) : QList<PaneRow>());
    // Intended: a refused listing is no unreadable one; the log has the server's own words.
    if (listed && listing.format == RemoteListing::Uninterpretable) {
        ReportListingFailure(listing.rawText);
    }
}

void RemotePane::SortRemoteByName()
{
    if (isReady()) {
        sortByColumn(ColumnName);
    }
}

void RemotePane::ReportListingFailure(const QString &rawText)
{
    if (m_globals.settings.ErrorMsg) {
        m_shell.AppendLog(listingFailureText(rawText));
    }
}

void RemotePane::DoRemoteRefresh(const QString &folder)
{
    if (!isReady()) {
        return;
    }
    const auto resume = pauseCommands(m_shell, m_ftp);
    m_shell.SetFtpProperties();
    setFolderText(folder);
    QString listed = folder;
    ListRemoteFolder(listed);
    // Another one when the folder could not be entered or was relative.
    m_globals.session.CurrentRemoteDir = listed == withSeparator(folder, slash) ? folder : listed;
    setFolderText(m_globals.session.CurrentRemoteDir);
}

void RemotePane::EnterRemoteFolder(const QString &folder)
{
    if (!isReady()) {
        return;
    }
    const auto resume = pauseCommands(m_shell, m_ftp);
    m_shell.SetFtpProperties();
    ignoreError(m_ftp.setCurrentFolder(folder),
                "the folder that may be listed is shown, the log says why");
    m_globals.session.CurrentRemoteDir = m_ftp.currentFolder();
    DoRemoteRefresh(m_globals.session.CurrentRemoteDir);
}

void RemotePane::GoUpRemote()
{
    if (!isReady()) {
        return;
    }
    const auto resume = pauseCommands(m_shell, m_ftp);
    ignoreError(m_ftp.changeToParentFolder(), "at the top the same folder is listed again");
    QString folder = m_ftp.currentFolder();
    ListRemoteFolder(folder);
    setFolderText(folder);
    m_globals.session.CurrentRemoteDir = folder;
}

void RemotePane::OpenRemoteRow(int row, bool byMouse)
{
    if (!isReady() || row < 0 || row >= model().rowCount()) {
        return;
    }
    const PaneRow opened = model().row(row); // a copy: the rows go away while the folder is listed
    if (opened.kind == ItemKind::Cdup) {
        GoUpRemote();
    } else if (opened.kind == ItemKind::FolderClose) {
        EnterRemoteFolder(opened.name);
    } else if (opened.kind == ItemKind::FolderLink) {
        EnterRemoteFolder(opened.tag);
    } else if (opened.kind == ItemKind::Link) {
        ResolveLink(row);
    } else if (byMouse) {
        Q_EMIT downloadWanted();
    }
    RememberRemoteFolder();
}

void RemotePane::rememberFolder(const QString &folder)
{
    FilePane::rememberFolder(folder);
    m_globals.session.CurrentRemoteDir = folder;
}

void RemotePane::RememberRemoteFolder()
{
    if (m_ftp.state() == FtpOperations::Connected) {
        rememberFolder(m_ftp.currentFolder());
    }
}

void RemotePane::ResolveLink(int row)
{
    const PaneRow link = model().row(row);
    const QString shown = m_ftp.currentFolder();
    const auto resume = pauseCommands(m_shell, m_ftp);
    m_shell.SetFtpProperties();
    const FtpStatus entered = m_ftp.setCurrentFolder(link.name);
    if (entered && !m_ftp.setCurrentFolder(shown)) {
        // The server stays where the link leads to; relative commands would go there.
        DoRemoteRefresh(m_ftp.currentFolder());
        return;
    }
    // The call ran events: the rows may be others by now.
    if (row < model().rowCount() && model().row(row).tag == link.tag) {
        PaneRow resolved = model().row(row);
        resolved.kind = entered ? ItemKind::FolderLink : ItemKind::File;
        model().changeRow(row, resolved);
    }
    if (!entered) {
        m_shell.AppendLog(entered.error().text + QStringLiteral("\r\n"));
    }
}

int RemotePane::RemoteItem(int index) const
{
    const QList<MarkedItem> &items = m_globals.marked.MarkedItems;
    if (index < 1 || index >= items.size() || index > m_globals.marked.count()) {
        return -1;
    }
    return const_cast<RemotePane *>(this)->model().findRow(items.at(index).name);
}

void RemotePane::takeEntry()
{
    if (isReady()) {
        chooseFolder();
    } else if (m_ftp.state() == FtpOperations::Connected) {
        setFolderText(m_globals.session.CurrentRemoteDir); // uploads go where the box says
    }
}

void RemotePane::chooseFolder()
{
    if (!isReady()) {
        return;
    }
    const auto resume = pauseCommands(m_shell, m_ftp);
    QString path = folder();
    // What was shown once is a path, whatever brackets and blanks its name has.
    ListRemoteFolder(path, isRemembered(path) ? FolderSource::Derived : FolderSource::Box);
    setFolderText(path);
    m_globals.session.CurrentRemoteDir = path;
}
