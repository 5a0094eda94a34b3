#include "ftp/ftpcontrol_p.h"

#include "ftp/ftpfilelist.h"

#include <asio/detached.hpp>
#include <asio/post.hpp>

using ftp::Awaitable;
using ftp::Client;
using ftp::ErrorKind;

namespace {

static_assert(static_cast<int>(FtpEncryption::Never) == static_cast<int>(ftp::Encryption::Never)
              && static_cast<int>(FtpEncryption::Always)
                  == static_cast<int>(ftp::Encryption::Always));

/// Stands for "no limit": long enough for anybody, short enough to be added to any point in time.
constexpr ftp::Milliseconds noLimit = std::chrono::hours(24 * 365);

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

} // namespace

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
