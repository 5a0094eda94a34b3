// What FtpControl does on the server, one operation after the other.
#include "ftp/file_facts.h"
#include "ftp/ftpcontrol_p.h"
#include "ftp/ftplocalnames.h"
#include "ftp/tree.h"

#include <asio/post.hpp>

using ftp::Awaitable;
using ftp::Client;

namespace {

std::vector<std::string> bytesOf(const QStringList &texts)
{
    std::vector<std::string> result;
    result.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString &text : texts) {
        result.push_back(text.toStdString());
    }
    return result;
}

} // namespace

FtpResult<bool> FtpControl::resumeSupport()
{
    return d->run<bool>(OpConnect, [](Client &client) { return client.supportsRestart(); });
}

QString FtpControl::currentFolder() const { return d->folder; }

FtpStatus FtpControl::setCurrentFolder(const QString &folder)
{
    return d->simple(OpChangeFolder, [path = folder.toStdString()](Client &client) {
        return client.changeFolder(path);
    });
}

FtpStatus FtpControl::changeToParentFolder()
{
    return d->simple(OpChangeFolder, [](Client &client) { return client.changeToParent(); });
}

FtpStatus FtpControl::list()
{
    auto listed = d->run<RemoteListing>(
        OpList, [](Client &client) -> Awaitable<ftp::Result<RemoteListing>> {
            auto folder = co_await client.list();
            if (!folder) {
                co_return tl::unexpected(folder.error());
            }
            co_return ftpListing(*folder);
        });
    if (!listed) {
        return tl::unexpected<FtpError>(listed.error());
    }
    // The entries of a big folder take long to free; the caller's thread must not wait for it.
    asio::post(ftp::EngineThread::executor(),
               [gone = std::exchange(d->listing, std::move(*listed))] {});
    return {};
}

const RemoteListing &FtpControl::listing() const { return d->listing; }

FtpStatus FtpControl::getFile(const QString &remotePath, const QString &localPath, qint64 &offset)
{
    const auto used = d->run<std::int64_t>(
        OpGetFile,
        [remote = remotePath.toStdString(), local = bytesOfName(localPath).toStdString(),
         from = offset, type = engineType(d->transferType)](Client &client) {
            return client.get(remote, local, from, type);
        });
    if (!used) {
        return tl::unexpected<FtpError>(used.error());
    }
    offset = *used;
    return {};
}

FtpStatus FtpControl::putFile(const QString &localPath, const QString &remotePath, qint64 &offset)
{
    const qint64 from = d->storeMode == StoreContinue ? offset : 0;
    const auto used = d->run<std::int64_t>(OpPutFile,
                                           [remote = remotePath.toStdString(),
                                            local = bytesOfName(localPath).toStdString(), from,
                                            type = engineType(d->transferType)](Client &client) {
                                               return client.put(local, remote, from, type);
                                           });
    if (!used) {
        return tl::unexpected<FtpError>(used.error());
    }
    offset = *used;
    return {};
}

FtpStatus FtpControl::getFiles(const QList<FtpFile> &files, const FtpFileDone &done)
{
    return d->moveFiles(OpGetFile, ftp::getFiles, files, done);
}

FtpStatus FtpControl::putFiles(const QList<FtpFile> &files, const FtpFileDone &done)
{
    return d->moveFiles(OpPutFile, ftp::putFiles, files, done);
}

FtpStatus FtpControl::getMultiple(const QString &pattern, const QString &localFolder)
{
    return d->simple(OpGetMultiple,
                     [remote = folderOfPattern(pattern).toStdString(),
                      local = bytesOfName(localFolder).toStdString(),
                      type = engineType(d->transferType)](Client &client) {
                         return ftp::getTree(client, remote, local, type);
                     });
}

FtpStatus FtpControl::putMultiple(const QString &pattern, const QString &remoteFolder)
{
    return d->simple(OpPutMultiple,
                     [local = bytesOfName(folderOfPattern(pattern)).toStdString(),
                      remote = remoteFolder.toStdString(), type = engineType(d->transferType)](
                         Client &client) { return ftp::putTree(client, local, remote, type); });
}

FtpStatus FtpControl::makeFolder(const QString &name)
{
    return d->simple(OpMakeFolder, [path = name.toStdString()](Client &client) {
        return client.makeFolder(path);
    });
}

FtpStatus FtpControl::removeFolder(const QString &path)
{
    return d->simple(OpRemoveFolder, [raw = path.toStdString()](Client &client) {
        return client.removeFolder(raw);
    });
}

FtpStatus FtpControl::deleteFile(const QString &path)
{
    return d->simple(OpDelete,
                     [raw = path.toStdString()](Client &client) { return client.removeFile(raw); });
}

FtpStatus FtpControl::rename(const QString &oldName, const QString &newName)
{
    return d->simple(OpRename,
                     [from = oldName.toStdString(), to = newName.toStdString()](Client &client) {
                         return client.rename(from, to);
                     });
}

FtpStatus FtpControl::sendRaw(const QString &command)
{
    return d->simple(OpRawCommand,
                     [line = command.toStdString()](Client &client) { return client.raw(line); });
}

FtpStatus FtpControl::removeTree(const QString &folder)
{
    return d->simple(OpRemoveFolder, [path = folder.toStdString()](Client &client) {
        return ftp::removeTree(client, path);
    });
}

FtpStatus FtpControl::removeFiles(const QStringList &paths, const FtpFileDone &done)
{
    // Reports may come late when the program ends in the middle; then nobody listens any more.
    const auto listener = std::make_shared<FtpFileDone>(done);
    const auto deaf = qScopeGuard([listener] { *listener = {}; });
    const ftp::FileDone report
        = [listener, to = d->bridge](std::size_t index, const ftp::Status &removed) {
              const FtpStatus told = removed
                  ? FtpStatus()
                  : FtpStatus(tl::unexpected<FtpError>(ftpError(removed.error())));
              to->post([listener, index, told] {
                  if (*listener) {
                      (*listener)(static_cast<int>(index), told);
                  }
              });
          };
    return d->simple(OpDelete, [names = bytesOf(paths), report](Client &client) {
        return ftp::removeFiles(client, names, report);
    });
}

FtpResult<FtpFolderContent>
FtpControl::countInside(const QStringList &folders,
                        const std::shared_ptr<const std::atomic_bool> &stop)
{
    const auto counted
        = d->run<ftp::FolderContent>(OpList, [names = bytesOf(folders), stop](Client &client) {
              return ftp::countInside(client, names, stop);
          });
    if (!counted) {
        return tl::unexpected<FtpError>(counted.error());
    }
    return FtpFolderContent { counted->files, counted->folders, counted->complete };
}

FtpStatus FtpControl::changeModesInside(const QString &folder, int files, int folders)
{
    return d->simple(OpRawCommand, [path = folder.toStdString(), files, folders](Client &client) {
        return ftp::changeModesInside(client, path, { files, folders });
    });
}

FtpResult<FtpFileFacts> FtpControl::fileFacts(const QString &path)
{
    const auto facts
        = d->run<ftp::RemoteFacts>(OpRawCommand, [name = path.toStdString()](Client &client) {
              return ftp::fileFacts(client, name);
          });
    if (!facts) {
        return tl::unexpected<FtpError>(facts.error());
    }
    return FtpFileFacts { facts->size, facts->modified };
}
