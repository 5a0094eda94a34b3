#include "ftp/ftpcontrol.h"

#include "ftp/engine_thread.h"
#include "ftp/file_facts.h"
#include "ftp/ftpbridge.h"
#include "ftp/ftpconvert.h"
#include "ftp/ftpfilelist.h"
#include "ftp/ftplocalnames.h"
#include "ftp/tree.h"

#include <QEventLoop>
#include <QScopeGuard>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/post.hpp>

using ftp::Awaitable;
using ftp::Client;
using ftp::ErrorKind;

namespace {

/// Stands for "no limit": long enough for anybody, short enough to be added to any point in time.
constexpr ftp::Milliseconds noLimit = std::chrono::hours(24 * 365);

tl::unexpected<FtpError> failure(ErrorKind kind, const char *text)
{
    return tl::unexpected<FtpError>(FtpError { kind, 0, QString::fromLatin1(text) });
}

/// A client is used and destroyed on the engine's thread only.
std::shared_ptr<Client> ownedByEngine(Client *client)
{
    return { client, [](Client *last) {
                asio::co_spawn(
                    ftp::EngineThread::executor(),
                    [](std::unique_ptr<Client> owned) -> Awaitable<void> {
                        owned->abort();
                        co_await owned->stopWatching();
                    }(std::unique_ptr<Client>(last)),
                    asio::detached);
            } };
}

std::vector<std::string> bytesOf(const QStringList &texts)
{
    std::vector<std::string> result;
    result.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString &text : texts) {
        result.push_back(text.toStdString());
    }
    return result;
}

/// What an operation left behind.
template <class T> struct Outcome {
    ftp::Result<T> result;
    bool usable = false;
    QString folder;
};

} // namespace

struct FtpControl::Private {
    explicit Private(FtpControl *control)
        : q(control)
        , bridge(std::make_shared<FtpBridge>(control))
    {
    }

    /// Runs an operation on the engine's thread while this one keeps handling events.
    template <class T, class Work> FtpResult<T> run(int code, Work work);
    FtpStatus simple(int code, std::function<Awaitable<ftp::Status>(Client &)> work);
    void tellReason(int code, const FtpError &error);
    using MoveFiles
        = Awaitable<void> (*)(Client &, std::vector<ftp::FilePair>, ftp::Type, ftp::FileReports);
    FtpStatus moveFiles(int code, MoveFiles move, const QList<FtpFile> &files,
                        const FtpFileDone &done);
    template <class T> void finish(const std::shared_ptr<Client> &used, const Outcome<T> &outcome);
    void setState(int value);
    void lost(const Client *which);

    FtpControl *q;
    std::shared_ptr<FtpBridge> bridge;
    std::shared_ptr<Client> client;
    ftp::LoginData login;
    std::string trustFile;
    RemoteListing listing;
    QString folder;
    int state = FtpControl::Closed;
    int transferType = TypeBinary;
    int storeMode = StoreReplace;
    int sessionLimit = 4;
    bool busy = false;
};

template <class T, class Work> FtpResult<T> FtpControl::Private::run(int code, Work work)
{
    if (busy) {
        return failure(ErrorKind::Busy, "Another operation is running");
    }
    if (!client) {
        return failure(ErrorKind::NotConnected, "Not connected");
    }
    busy = true;
    bridge->operation = code;
    const auto idle = qScopeGuard([this] { busy = false; });
    struct Waiting {
        QEventLoop loop;
        std::optional<Outcome<T>> outcome;
    };
    const auto waiting = std::make_shared<Waiting>();
    const std::shared_ptr<Client> used = client;
    const auto report = bridge;
    auto watchLost
        = [this, report, which = used.get()] { report->post([this, which] { lost(which); }); };
    asio::co_spawn(
        ftp::EngineThread::executor(),
        [](std::shared_ptr<Client> on, Work step, auto whenLost) -> Awaitable<Outcome<T>> {
            co_await on->stopWatching();
            Outcome<T> outcome;
            outcome.result = co_await step(*on);
            outcome.usable = on->usable();
            outcome.folder = QString::fromStdString(on->folder());
            if (outcome.usable) {
                on->watchIdle(whenLost);
            }
            co_return outcome;
        }(used, std::move(work), std::move(watchLost)),
        [waiting, report](const std::exception_ptr &thrown, Outcome<T> outcome) {
            if (thrown) { // out of memory, say; what was begun is not done
                outcome = {};
                outcome.result = ftp::fail(ErrorKind::Protocol, "Internal error");
            }
            report->post([waiting, outcome = std::move(outcome)]() mutable {
                waiting->outcome = std::move(outcome);
                waiting->loop.quit();
            });
        });
    waiting->loop.exec();
    if (!waiting->outcome) { // the program ends
        q->close();
        return failure(ErrorKind::Aborted, "Aborted");
    }
    auto &result = waiting->outcome->result;
    if (!result) {
        tellReason(code, ftpError(result.error()));
    }
    finish(used, *waiting->outcome);
    if (!result) {
        return tl::unexpected<FtpError>(ftpError(result.error()));
    }
    if constexpr (std::is_void_v<T>) {
        return {};
    } else {
        return std::move(*result);
    }
}

/// A failure that no reply of the server has told about: the log shall say why. The callers of
/// connect and logout explain their failures themselves, and who aborts knows.
void FtpControl::Private::tellReason(int code, const FtpError &error)
{
    if (error.replyCode == 0 && error.kind != ErrorKind::Aborted && code != OpConnect
        && code != OpLogout) {
        Q_EMIT q->replyEvent(
            { code, FtpEvent::Failed, error.text + QStringLiteral("\r\n"), 0, 0, error.kind });
    }
}

FtpStatus FtpControl::Private::moveFiles(int code, MoveFiles move, const QList<FtpFile> &files,
                                         const FtpFileDone &done)
{
    const auto list = std::make_shared<FtpFileList>(
        bridge, code, [this](const FtpEvent &event) { Q_EMIT q->replyEvent(event); },
        [this, code, &done](qsizetype file, const FtpStatus &outcome) {
            if (!outcome) {
                tellReason(code, outcome.error());
            }
            done(file, outcome);
        });
    const auto over = qScopeGuard([list] { list->close(); });
    auto work = [move, list, pairs = enginePairs(files),
                 type = engineType(transferType)](Client &used) -> Awaitable<ftp::Status> {
        co_await move(used, pairs, type, list->reports());
        co_return ftp::Status {};
    };
    return simple(code, std::move(work));
}

template <class T>
void FtpControl::Private::finish(const std::shared_ptr<Client> &used, const Outcome<T> &outcome)
{
    if (client != used) {
        return; // closed meanwhile
    }
    if (outcome.usable) {
        folder = outcome.folder;
    } else if (state == FtpControl::Connected) {
        q->close();
    }
}

FtpStatus FtpControl::Private::simple(int code,
                                      std::function<Awaitable<ftp::Status>(Client &)> work)
{
    return run<void>(code, std::move(work));
}

void FtpControl::Private::setState(int value)
{
    if (std::exchange(state, value) != value) {
        Q_EMIT q->stateChanged(value);
    }
}

void FtpControl::Private::lost(const Client *which)
{
    if (client.get() == which && !busy) {
        q->close();
    }
}

FtpControl::FtpControl(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this))
{
}

FtpControl::~FtpControl() { d->bridge->detach(); }

int FtpControl::state() const { return d->state; }

bool FtpControl::isBusy() const { return d->busy; }

void FtpControl::setTimeout(int milliseconds)
{
    d->login.timeout = milliseconds > 0 ? ftp::Milliseconds(milliseconds) : noLimit;
}

void FtpControl::setPassiveMode(bool passive) { d->login.passive = passive; }

void FtpControl::setTransferType(int type) { d->transferType = type; }

int FtpControl::transferType() const { return d->transferType; }

void FtpControl::setStoreMode(int mode) { d->storeMode = mode; }

void FtpControl::setProxy(const FtpProxy &proxy) { d->login.proxy = engineProxy(proxy); }

void FtpControl::setEncryption(FtpEncryption encryption)
{
    d->login.encryption = static_cast<ftp::Encryption>(encryption);
}

void FtpControl::setSessionLimit(int sessions) { d->sessionLimit = sessions; }

void FtpControl::setTrustFile(const QString &path) { d->trustFile = path.toStdString(); }

void FtpControl::setCertificateQuestion(std::function<FtpTrust(const FtpCertificate &)> question)
{
    d->bridge->question = std::move(question);
}

FtpStatus FtpControl::connectAndLogin(const QString &server, const QString &user,
                                      const QString &password, const QString &account, int port)
{
    if (d->busy) {
        return failure(ErrorKind::Busy, "Another operation is running");
    }
    d->client = nullptr;
    d->setState(Connecting);
    if (port < 1 || port > 65535) {
        return failure(ErrorKind::BadArgument, "The port must lie between 1 and 65535");
    }
    ftp::LoginData login = d->login;
    login.host = server.toStdString();
    login.port = static_cast<std::uint16_t>(port);
    login.credentials = { user.toStdString(), password.toStdString(), account.toStdString() };
    d->client = ownedByEngine(
        new Client(ftp::EngineThread::executor(), std::move(login), d->bridge->hooks(),
                   std::make_shared<ftp::ServerKnowledge>(d->trustFile), d->sessionLimit));
    const auto used = d->client;
    FtpStatus opened = d->simple(OpConnect, [](Client &client) { return client.open(); });
    if (opened && d->client == used) {
        d->setState(Connected);
    }
    return opened;
}

FtpStatus FtpControl::logout()
{
    FtpStatus done = d->simple(OpLogout, [](Client &client) { return client.quit(); });
    if (done) {
        close();
    }
    return done;
}

void FtpControl::close()
{
    if (const auto dropped = std::exchange(d->client, nullptr)) {
        asio::post(ftp::EngineThread::executor(), [dropped] { dropped->abort(); });
    }
    d->setState(Closed);
}

FtpStatus FtpControl::drop()
{
    try {
        close();
    } catch (const std::exception &failed) { // the system has no memory or no thread left
        return failure(ErrorKind::Protocol, failed.what());
    }
    return {};
}

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
