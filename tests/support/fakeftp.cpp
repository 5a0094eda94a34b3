#include "support/fakeftp.h"

#include "common/mo_standard.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

FtpError refusal(const QString &text)
{
    return { ftp::ErrorKind::Refused, text.left(3).toInt(), text };
}

/// A pattern without its quotes and its wildcard.
QString folderOf(QString pattern)
{
    if (pattern.startsWith(u'"') && pattern.endsWith(u'"')) {
        pattern = pattern.mid(1, pattern.size() - 2);
    }
    return pattern.endsWith(u"/*"_s) ? pattern.chopped(2) : pattern;
}

QString parentOf(const QString &path)
{
    return path.lastIndexOf(u'/') <= 0 ? u"/"_s : path.left(path.lastIndexOf(u'/'));
}

bool writeFile(const QString &path, const QByteArray &content, qint64 offset)
{
    QFile file(path);
    const auto mode = offset > 0 ? QIODevice::ReadWrite : QIODevice::WriteOnly;
    return file.open(mode) && file.seek(offset) && file.write(content.mid(offset)) >= 0
        && file.resize(content.size());
}

} // namespace

FakeFtp::FakeFtp() { nodes.insert(u"/"_s, {}); }

void FakeFtp::addFolder(const QString &path)
{
    if (!nodes.contains(path)) {
        addFolder(parentOf(path));
        nodes.insert(path, {});
    }
}

void FakeFtp::addFile(const QString &path, const QByteArray &content)
{
    addFolder(parentOf(path));
    nodes.insert(path, { u"-"_s, content, {} });
}

void FakeFtp::addLink(const QString &path, const QString &target)
{
    addFolder(parentOf(path));
    nodes.insert(path, { u"l"_s, {}, target });
}

QStringList FakeFtp::commandsOf(const QString &word) const
{
    return commands.filter(
        QRegularExpression(u"^"_s + QRegularExpression::escape(word) + u"\\b"_s));
}

void FakeFtp::refuseAll(const QString &part, const QString &reply, ftp::ErrorKind kind)
{
    refuse = [part, reply, kind](const QString &command) -> std::optional<FtpError> {
        if (!command.contains(part)) {
            return std::nullopt;
        }
        return FtpError { kind, reply.left(3).toInt(), reply };
    };
}

QString FakeFtp::absolute(const QString &path) const
{
    const QString whole = path.startsWith(u'/') ? path : joinPath(current, path);
    return QDir::cleanPath(whole);
}

QStringList FakeFtp::below(const QString &folder) const
{
    QStringList result;
    for (auto it = nodes.begin(); it != nodes.end(); ++it) {
        if (it.key().startsWith(withSeparator(folder, u'/')) && it.key() != u"/"_s) {
            result.append(it.key());
        }
    }
    return result;
}

void FakeFtp::reply(int operation, int status, const QString &text) const
{
    if (onEvent) {
        onEvent({ operation, status, text + u"\r\n"_s, 0, 0 });
    }
}

void FakeFtp::progress(int operation, qint64 bytes, qint64 total) const
{
    if (onEvent) {
        onEvent({ operation, FtpEvent::InProgress, {}, bytes, total });
    }
}

FtpStatus FakeFtp::run(int operation, const QString &command, const Work &work)
{
    if (connectionState != Connected) {
        return tl::unexpected(FtpError { ftp::ErrorKind::NotConnected, 0, u"Not connected"_s });
    }
    if (busy) {
        return tl::unexpected(FtpError { ftp::ErrorKind::Busy, 0, u"Busy"_s });
    }
    busy = true;
    commands.append(command);
    std::optional<FtpError> error = refuse ? refuse(command) : std::nullopt;
    if (!error && during) {
        during(command);
    }
    if (!error && connectionState != Connected) {
        error = FtpError { ftp::ErrorKind::Aborted, 0, u"Aborted"_s };
    }
    error = error ? error : work();
    reply(operation, error ? FtpEvent::Failed : FtpEvent::Completed,
          error ? error->text : u"250 Ok"_s);
    busy = false;
    return error ? FtpStatus(tl::unexpected(*error)) : FtpStatus();
}

FtpStatus FakeFtp::setCurrentFolder(const QString &folder)
{
    return run(OpChangeFolder, u"CWD "_s + folder, [&]() -> std::optional<FtpError> {
        const QString path = absolute(folder);
        const Node node = nodes.value(path, { u"-"_s, {}, {} });
        const QString real = node.type == u"l"_s ? node.target : path;
        if (nodes.value(real, { u"-"_s, {}, {} }).type != u"d"_s) {
            return refusal(u"550 No such folder."_s);
        }
        current = real;
        return std::nullopt;
    });
}

FtpStatus FakeFtp::changeToParentFolder() { return setCurrentFolder(parentOf(current)); }

FtpStatus FakeFtp::list()
{
    return run(OpList, u"LIST"_s, [&]() -> std::optional<FtpError> {
        m_listing = {};
        m_listing.format = 1;
        for (const QString &path : below(current)) {
            if (parentOf(path) == current) {
                const Node &node = nodes[path];
                m_listing.entries.append({ path.mid(path.lastIndexOf(u'/') + 1), node.type,
                                           node.type == u"d"_s ? 4096 : node.content.size(),
                                           u"2026-01-02 03:04"_s, 644, node.target });
            }
        }
        return std::nullopt;
    });
}

FtpStatus FakeFtp::getFile(const QString &remotePath, const QString &localPath, qint64 &offset)
{
    const QString command
        = u"GET %1 %2 @%3 [%4]"_s.arg(remotePath, localPath).arg(offset).arg(m_type);
    return run(OpGetFile, command, [&]() -> std::optional<FtpError> {
        if (nodes.value(absolute(remotePath)).type != u"-"_s) {
            return refusal(u"550 No such file."_s);
        }
        const QByteArray content = nodes.value(absolute(remotePath)).content;
        progress(OpGetFile, 0);
        if (!writeFile(localPath, content, offset)) {
            return FtpError { ftp::ErrorKind::LocalFile, 0, u"Cannot write"_s };
        }
        progress(OpGetFile, content.size() - offset);
        return std::nullopt;
    });
}

FtpStatus FakeFtp::putFile(const QString &localPath, const QString &remotePath, qint64 &offset)
{
    const QString command = u"PUT %1 %2 @%3 mode %4 [%5]"_s.arg(localPath, remotePath)
                                .arg(offset)
                                .arg(m_storeMode)
                                .arg(m_type);
    return run(OpPutFile, command, [&]() -> std::optional<FtpError> {
        QFile file(localPath);
        if (!file.open(QIODevice::ReadOnly)) {
            return FtpError { ftp::ErrorKind::LocalFile, 0, u"Cannot read"_s };
        }
        if (!nodes.contains(parentOf(absolute(remotePath)))) {
            return refusal(u"553 No such folder."_s);
        }
        progress(OpPutFile, 0);
        const QByteArray bytes = file.readAll();
        const QByteArray kept = m_storeMode == StoreContinue ? content(absolute(remotePath)) : "";
        nodes.insert(absolute(remotePath), { u"-"_s, kept.left(offset) + bytes.mid(offset), {} });
        progress(OpPutFile, bytes.size() - offset);
        return std::nullopt;
    });
}

template <class Move>
FtpStatus FakeFtp::runList(const QList<FtpFile> &files, const FtpFileDone &done, Move move)
{
    if (connectionState != Connected) {
        return tl::unexpected(FtpError { ftp::ErrorKind::NotConnected, 0, u"Not connected"_s });
    }
    ++lists;
    for (qsizetype at = 0; at < files.size() && connectionState == Connected; ++at) {
        if (neverBegun && neverBegun(files.at(at))) {
            continue;
        }
        const FtpStatus outcome = move(files.at(at));
        done(at, outcome);
        if (!outcome && outcome.error().kind == ftp::ErrorKind::LocalDiskFull) {
            break;
        }
    }
    return {};
}

FtpStatus FakeFtp::getFiles(const QList<FtpFile> &files, const FtpFileDone &done)
{
    return runList(files, done, [this](const FtpFile &file) {
        qint64 offset = 0;
        return getFile(file.remotePath, file.localPath, offset);
    });
}

FtpStatus FakeFtp::putFiles(const QList<FtpFile> &files, const FtpFileDone &done)
{
    return runList(files, done, [this](const FtpFile &file) {
        qint64 offset = 0;
        return putFile(file.localPath, file.remotePath, offset);
    });
}

FtpStatus FakeFtp::getMultiple(const QString &pattern, const QString &localFolder)
{
    return run(OpGetMultiple, u"MGET "_s + pattern + u" "_s + localFolder,
               [&]() -> std::optional<FtpError> {
                   const QString folder = absolute(folderOf(pattern));
                   if (nodes.value(folder, { u"-"_s, {}, {} }).type != u"d"_s) {
                       return refusal(u"550 No such folder."_s);
                   }
                   qint64 bytes = 0;
                   for (const QString &path : below(folder)) {
                       const QString target
                           = localFolder + path.mid(withSeparator(folder, u'/').size() - 1);
                       if (nodes[path].type == u"d"_s) {
                           QDir().mkpath(target);
                       } else if (!writeFile(target, nodes[path].content, 0)) {
                           return FtpError { ftp::ErrorKind::LocalFile, 0, u"Cannot write"_s };
                       }
                       progress(OpGetMultiple, bytes += nodes[path].content.size());
                   }
                   return std::nullopt;
               });
}

FtpStatus FakeFtp::putMultiple(const QString &pattern, const QString &remoteFolder)
{
    return run(OpPutMultiple, u"MPUT "_s + pattern + u" "_s + remoteFolder,
               [&]() -> std::optional<FtpError> {
                   if (nodes.value(absolute(remoteFolder), { u"-"_s, {}, {} }).type != u"d"_s) {
                       return refusal(u"550 No such folder."_s);
                   }
                   const QString folder = folderOf(pattern);
                   QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                   QDirIterator::Subdirectories);
                   while (it.hasNext()) {
                       const QString target = absolute(remoteFolder) + it.next().mid(folder.size());
                       QFile file(it.filePath());
                       if (it.fileInfo().isDir()) {
                           addFolder(target);
                       } else if (file.open(QIODevice::ReadOnly)) {
                           addFile(target, file.readAll());
                       }
                   }
                   return std::nullopt;
               });
}

FtpStatus FakeFtp::makeFolder(const QString &name)
{
    return run(OpMakeFolder, u"MKD "_s + name, [&]() -> std::optional<FtpError> {
        if (nodes.contains(absolute(name))) {
            return refusal(u"550 File exists."_s);
        }
        nodes.insert(absolute(name), {});
        return std::nullopt;
    });
}

FtpStatus FakeFtp::removeFolder(const QString &path)
{
    return run(OpRemoveFolder, u"RMD "_s + path, [&]() -> std::optional<FtpError> {
        if (!below(absolute(path)).isEmpty() || nodes.value(absolute(path)).type != u"d"_s
            || nodes.remove(absolute(path)) == 0) {
            return refusal(u"550 Cannot remove."_s);
        }
        return std::nullopt;
    });
}

FtpStatus FakeFtp::deleteFile(const QString &path)
{
    return run(OpDelete, u"DELE "_s + path, [&]() -> std::optional<FtpError> {
        if (!nodes.contains(absolute(path)) || nodes[absolute(path)].type == u"d"_s) {
            return refusal(u"550 Cannot delete."_s);
        }
        nodes.remove(absolute(path));
        return std::nullopt;
    });
}

FtpStatus FakeFtp::rename(const QString &oldName, const QString &newName)
{
    const QString command = u"RENAME "_s + oldName + u" "_s + newName;
    return run(OpRename, command, [&]() -> std::optional<FtpError> {
        const QString from = absolute(oldName);
        if (!nodes.contains(from)) {
            return refusal(u"550 No such file."_s);
        }
        for (const QString &path : below(from) + QStringList { from }) {
            nodes.insert(absolute(newName) + path.mid(from.size()), nodes.take(path));
        }
        return std::nullopt;
    });
}

FtpStatus FakeFtp::sendRaw(const QString &command)
{
    return run(OpRawCommand, u"RAW "_s + command, [&]() -> std::optional<FtpError> {
        if (!command.startsWith(u"SIZE "_s)) {
            return std::nullopt;
        }
        const QString path = absolute(command.mid(5));
        if (!nodes.contains(path)) {
            return refusal(u"550 No such file."_s);
        }
        return nodes[path].time ? std::nullopt : std::optional(refusal(u"502 Not known."_s));
    });
}

FtpStatus FakeFtp::removeTree(const QString &folder)
{
    return run(OpRemoveFolder, u"RMTREE "_s + folder, [&]() -> std::optional<FtpError> {
        bool linkLeft = false;
        for (const QString &path : below(absolute(folder))) {
            linkLeft = linkLeft || nodes[path].type == u"l"_s;
            if (nodes[path].type == u"-"_s) {
                nodes.remove(path);
            }
        }
        if (linkLeft || !nodes.contains(absolute(folder))) {
            return refusal(u"550 Directory not empty."_s);
        }
        for (const QString &path : below(absolute(folder)) + QStringList { absolute(folder) }) {
            nodes.remove(path);
        }
        return std::nullopt;
    });
}

FtpStatus FakeFtp::removeFiles(const QStringList &paths, const FtpFileDone &done)
{
    for (int index = 0; index < paths.size() && connectionState == Connected; ++index) {
        done(index, deleteFile(paths.at(index)));
    }
    return {};
}

FtpResult<FtpFolderContent>
FakeFtp::countInside(const QStringList &folders,
                     const std::shared_ptr<const std::atomic_bool> &stop)
{
    FtpFolderContent content;
    const FtpStatus counted = run(OpList, u"COUNT "_s + folders.join(u' '), [&] {
        for (const QString &folder : folders) {
            for (const QString &path : below(absolute(folder))) {
                ++(nodes[path].type == u"d"_s ? content.folders : content.files);
            }
        }
        content.complete = !*stop;
        return std::optional<FtpError>();
    });
    return counted ? FtpResult<FtpFolderContent>(content) : tl::unexpected(counted.error());
}

FtpStatus FakeFtp::changeModesInside(const QString &folder, int files, int folders)
{
    return run(OpRawCommand, u"MODES %1 %2 %3"_s.arg(folder).arg(files).arg(folders),
               [] { return std::optional<FtpError>(); });
}

FtpResult<FtpFileFacts> FakeFtp::fileFacts(const QString &path)
{
    FtpFileFacts facts;
    const FtpStatus told = run(OpRawCommand, u"FACTS "_s + path, [&] {
        if (nodes.contains(absolute(path))) {
            const Node &node = nodes[absolute(path)];
            facts.time = node.time;
            facts.size = node.time ? std::optional(node.content.size()) : std::nullopt;
        }
        return std::optional<FtpError>();
    });
    return told ? FtpResult<FtpFileFacts>(facts) : tl::unexpected(told.error());
}

std::optional<FtpError> FakeFtp::answer(const QString &command)
{
    commands << command;
    return login ? login(command) : std::nullopt;
}

FtpStatus FakeFtp::connectAndLogin(const QString &server, const QString &user,
                                   const QString &password, const QString &account, int port)
{
    const QString words = QStringList { server, user, password, account }.join(QChar::Space);
    if (const auto error
        = answer(QStringLiteral("CONNECT %1 %2").arg(words, QString::number(port)))) {
        return tl::unexpected<FtpError>(*error);
    }
    connectionState = Connected;
    return {};
}

FtpStatus FakeFtp::drop()
{
    if (const auto error = answer(QStringLiteral("DROP"))) {
        return tl::unexpected<FtpError>(*error);
    }
    close();
    return {};
}

FtpStatus FakeFtp::logout()
{
    if (const auto error = answer(QStringLiteral("QUIT"))) {
        return tl::unexpected<FtpError>(*error);
    }
    connectionState = Closed;
    return {};
}

FtpResult<bool> FakeFtp::resumeSupport()
{
    if (const auto error = answer(QStringLiteral("REST"))) {
        return tl::unexpected<FtpError>(*error);
    }
    return resumes;
}
