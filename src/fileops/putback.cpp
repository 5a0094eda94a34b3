#include "fileops/putback.h"

#include "fileops/rename.h"
#include "fileops/servercopies.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSet>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;

namespace {

constexpr int retryTime = 300;
constexpr int mostCopies = 99; ///< of one file that are kept
constexpr qint64 longestText = 16 * 1024 * 1024;

/// Whether a file may be a text that somebody edits: short, and without zero bytes at its start.
bool looksLikeText(const QString &path)
{
    constexpr qint64 start = 8192;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() <= longestText
        && !file.read(start).contains('\0');
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Whether a copy is what arrived of an upload that broke off.
bool isPartOf(const QByteArray &sent, QByteArray arrived)
{
    // A text may have been cut within the two bytes of a line's end.
    if (!sent.startsWith(arrived) && arrived.endsWith('\r')) {
        arrived.chop(1);
    }
    return sent.startsWith(arrived);
}

} // namespace

PutBack::PutBack(const Workplace &work, ProgressDisplay &progress)
    : m_work(work)
    , m_progress(progress)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryTime);
    connect(&m_retry, &QTimer::timeout, this, &PutBack::offerNext);
    connect(&m_edits, &EditWatch::saved, this, &PutBack::saved);
}

QString PutBack::currentServer() const { return webSpaceOf(m_work.globals.connection); }

/// Whether the copy here holds something that the server never got.
bool PutBack::isEdited(const QString &localPath) const
{
    const FileStamp now = FileStamp::of(localPath);
    if (now.size < 0) {
        return false;
    }
    const auto file = m_files.constFind(localPath);
    if (file == m_files.constEnd()) { // the folder stays when the program ends
        return !ServerCopies(m_work.globals.folders.temporary).holds(localPath);
    }
    if (now == file->stamp) {
        return false;
    }
    return file->hash.isEmpty() || contentHash(localPath) != file->hash;
}

/// The file stands as the server's, whatever is known about its content.
void PutBack::noteServerCopy(const QString &localPath)
{
    m_files[localPath].stamp = FileStamp::of(localPath);
    ServerCopies(m_work.globals.folders.temporary).note(localPath);
}

bool PutBack::moveAside(const QString &localPath)
{
    for (int attempt = 1; attempt <= mostCopies; ++attempt) {
        const QString kept
            = localPath + u".bearbeitet"_s + (attempt > 1 ? QString::number(attempt) : QString());
        if (QFileInfo::exists(kept) || renameLocal(localPath, kept)) {
            continue;
        }
        m_work.shell.AppendLog(localPath + u": Ihre geänderte Fassung steht jetzt in "_s + kept
                               + u"\r\n"_s);
        return true;
    }
    m_work.shell.AppendLog(localPath
                           + u": Ihre geänderte Fassung ließ sich nicht umbenennen; die Datei "
                             u"wurde nicht geholt.\r\n"_s);
    return false;
}

bool PutBack::beforeFetch(const QString &localPath, const QString &remotePath)
{
    if (isEdited(localPath) && !moveAside(localPath)) {
        return false;
    }
    // What is written from now on is the fetching, no edit.
    m_edits.forget(localPath);
    m_waiting.removeAll(localPath);
    m_unsent.removeAll(localPath);
    Fetched file { remotePath, currentServer(), {}, {}, m_work.ftp.transferType(), {}, false };
    if (const auto before = m_files.constFind(localPath); before != m_files.constEnd()) {
        // An editor may still show the file of the other folder; sending that one back would
        // replace the wrong file.
        file.ambiguous = before->ambiguous || before->remotePath != file.remotePath
            || before->server != file.server;
    }
    // Asked before the fetch: a change in between is then seen later, not missed.
    if (const auto facts = m_work.ftp.fileFacts(remotePath)) {
        file.facts = *facts;
    }
    m_stampBefore = FileStamp::of(localPath);
    m_before.reset();
    if (m_stampBefore.size >= 0 && m_files.contains(localPath)) {
        m_before = m_files.value(localPath);
    }
    m_files.insert(localPath, file);
    return true;
}

void PutBack::fetchFailed(const QString &localPath)
{
    // One that broke off has left something else than the server's copy, but nothing to be kept.
    if (!m_before || FileStamp::of(localPath) != m_stampBefore) {
        noteServerCopy(localPath);
        return;
    }
    m_files.insert(localPath, *m_before);
    if (!m_before->hash.isEmpty()) {
        m_edits.watch(localPath);
    }
}

void PutBack::afterFetch(const QString &localPath)
{
    noteServerCopy(localPath);
    Fetched &file = m_files[localPath];
    if (!looksLikeText(localPath)) {
        return;
    }
    if (file.ambiguous) {
        m_work.shell.AppendLog(localPath
                               + u": Änderungen werden nicht zurückgespielt, denn unter diesem "
                                 u"Namen wurden Dateien aus zwei Ordnern angesehen.\r\n"_s);
        return;
    }
    file.hash = contentHash(localPath);
    m_edits.watch(localPath);
}

void PutBack::saved(const QString &localPath)
{
    if (!m_waiting.contains(localPath)) {
        m_waiting.append(localPath);
    }
    offerNext();
}

void PutBack::offerNext()
{
    if (m_waiting.isEmpty()) {
        return;
    }
    if (m_busy() || m_work.ftp.isBusy()) {
        m_retry.start();
        return;
    }
    offer(m_waiting.takeFirst());
    if (!m_waiting.isEmpty()) {
        m_retry.start();
    }
}

void PutBack::offerUnsent()
{
    for (const QString &localPath : std::as_const(m_unsent)) {
        if (m_files.value(localPath).server == currentServer() && !m_waiting.contains(localPath)) {
            m_waiting.append(localPath);
        }
    }
    m_retry.start(); // the login goes on with the start folders
}

void PutBack::offer(const QString &localPath)
{
    const Fetched file = m_files.value(localPath);
    const auto mayGo = [&] { return mayStart(m_work.ftp) && file.server == currentServer(); };
    m_unsent.removeAll(localPath);
    if (contentHash(localPath) == file.hash && !file.brokenOff) {
        return; // changed back
    }
    if (!mayGo()) {
        waitForLogin(localPath);
    } else if (m_work.prompts.question(file.remotePath
                                       + u"\r\nwurde geändert – zum Server zurückspielen?"_s)) {
        mayGo() ? send(localPath) : waitForLogin(localPath);
    }
}

void PutBack::waitForLogin(const QString &localPath)
{
    m_unsent.append(localPath);
    m_work.shell.AppendLog(localPath
                           + u": Geändert, aber nicht zurückgespielt, denn es besteht keine "
                             u"Verbindung zu seinem Server. Nach der nächsten Anmeldung fragt das "
                             u"Programm wieder.\r\n"_s);
}

void PutBack::send(const QString &localPath)
{
    m_work.shell.SetToolbarsEnabled(false);
    m_work.shell.SetFolderBoxesEnabled(false);
    const auto restore = qScopeGuard([this] {
        m_progress.finish();
        m_work.shell.ShowTransferItem({}, {});
        m_work.shell.SetToolbarsEnabled(true);
        m_work.shell.SetFolderBoxesEnabled(true);
        updateCommandStates(m_work);
    });
    const Fetched file = m_files.value(localPath);
    m_work.shell.SetFtpProperties();
    m_work.shell.ShowTransferItem(u"Datei: "_s + QFileInfo(localPath).fileName(),
                                  QString::number(QFileInfo(localPath).size()));
    QString refusal;
    const Outcome outcome = upload(localPath, file, refusal);
    record(localPath, file, refusal);
    if (outcome == Outcome::Failed) {
        m_unsent.append(localPath);
        m_edits.reportNextSaving(localPath);
    }
    if (outcome == Outcome::Sent && m_work.ftp.state() == FtpOperations::Connected) {
        listAgain();
    }
}

/// Shows the file's new size and time. What the user has selected meanwhile stays so.
void PutBack::listAgain()
{
    QSet<QString> selected;
    for (const int row : m_work.remote.selectedRows()) {
        selected.insert(m_work.remote.model().row(row).tag);
    }
    m_work.shell.DoRemoteRefresh(m_work.ftp.currentFolder());
    QList<int> rows;
    for (int row = 0; row < m_work.remote.model().rowCount(); ++row) {
        if (selected.contains(m_work.remote.model().row(row).tag)) {
            rows.append(row);
        }
    }
    m_work.remote.selectRows(rows);
}

/// Sends the file, if the server's copy is still the one that was fetched.
/// @param refusal  why it was not sent; empty when it was
PutBack::Outcome PutBack::upload(const QString &localPath, const Fetched &file, QString &refusal)
{
    const FtpResult<bool> same = isSame(file);
    if (!same) {
        refusal = same.error().text;
        return Outcome::Failed;
    }
    if (!*same) {
        refusal = u"Die Datei auf dem Server wurde inzwischen geändert und nicht ersetzt. Ihre "
                  u"Fassung "
                  u"steht in "_s
            + localPath;
        return Outcome::ServerChanged;
    }
    const FileStamp stamp = FileStamp::of(localPath);
    const QByteArray hash = contentHash(localPath);
    QByteArray content = contentOf(localPath);
    m_progress.setMaximumFor(content.size());
    m_progress.setValue(0);
    m_work.globals.transfer.RemoteSize = 0; // from the beginning: the progress counts from here
    m_work.ftp.setTransferType(file.transferType);
    m_work.ftp.setStoreMode(StoreReplace);
    qint64 offset = 0;
    const FtpStatus sent = m_work.ftp.putFile(localPath, file.remotePath, offset);
    Fetched &now = m_files[localPath];
    if (!sent) {
        now.brokenOff = std::move(content);
        refusal = sent.error().text;
        return Outcome::Failed;
    }
    now.brokenOff.reset();
    now.hash = hash;
    now.stamp = stamp;
    if (FileStamp::of(localPath) == stamp) { // else it is edited again already
        noteServerCopy(localPath);
    }
    const auto facts = m_work.ftp.fileFacts(file.remotePath);
    now.facts = facts ? *facts : FtpFileFacts {};
    return Outcome::Sent;
}

/// Whether nobody else has changed the server's copy since it was fetched.
FtpResult<bool> PutBack::isSame(const Fetched &file)
{
    const FtpResult<FtpFileFacts> facts = m_work.ftp.fileFacts(file.remotePath);
    if (!facts) {
        return tl::unexpected(facts.error());
    }
    const bool told = facts->time && file.facts.time;
    if (told && (*facts == file.facts || !file.brokenOff)) {
        return *facts == file.facts;
    }
    // A server that does not tell times is asked for the content itself.
    return hasSameContent(file);
}

FtpResult<bool> PutBack::hasSameContent(const Fetched &file)
{
    QTemporaryFile copy(m_work.globals.folders.temporary + u"vergleich"_s);
    if (!copy.open()) {
        return false;
    }
    qint64 offset = 0;
    m_work.globals.transfer.LocalSize = 0; // from the beginning: the progress counts from here
    m_work.ftp.setTransferType(file.transferType);
    const FtpStatus fetched = m_work.ftp.getFile(file.remotePath, copy.fileName(), offset);
    if (fetched) {
        return contentHash(copy.fileName()) == file.hash
            || (file.brokenOff && isPartOf(*file.brokenOff, contentOf(copy.fileName())));
    }
    if (file.brokenOff && fetched.error().replyCode == 550) {
        return true; // servers remove what did not arrive as a whole
    }
    return tl::unexpected(fetched.error());
}

void PutBack::record(const QString &localPath, const Fetched &file, const QString &refusal)
{
    QueueRow row;
    row.status = refusal.isEmpty() ? u"Upload"_s : u"Upload verweigert"_s;
    row.local = localPath;
    row.size = QString::number(QFileInfo(localPath).size());
    row.direction = u"-->"_s;
    row.remote = file.remotePath;
    row.server = m_work.globals.connection.RemoteHost;
    row.webSpace = file.server;
    // Only the offer compares with the server's copy; repeating it as a plain upload would not.
    row.repeatable = false;
    row.detail = refusal;
    row.failed = !refusal.isEmpty();
    m_work.shell.AddQueueRow(row);
    if (row.failed) {
        m_work.shell.AppendLog(u"\r\n"_s + refusal + u"\r\n"_s);
    }
}
