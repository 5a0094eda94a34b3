// The inside of FtpControl, for the two files that it is written in.
#pragma once

#include "ftp/engine_thread.h"
#include "ftp/file_list.h"
#include "ftp/ftpbridge.h"
#include "ftp/ftpcontrol.h"
#include "ftp/ftpconvert.h"

#include <QEventLoop>
#include <QScopeGuard>
#include <asio/co_spawn.hpp>

inline tl::unexpected<FtpError> failure(ftp::ErrorKind kind, const char *text)
{
    return tl::unexpected<FtpError>(FtpError { kind, 0, QString::fromLatin1(text) });
}

/// What an operation left behind.
template <class T> struct Outcome {
    ftp::Result<T> result;
    bool usable = false;
    QString folder;
};

struct FtpControl::Private {
    explicit Private(FtpControl *control)
        : q(control)
        , bridge(std::make_shared<FtpBridge>(control))
    {
    }

    /// Runs an operation on the engine's thread while this one keeps handling events.
    template <class T, class Work> FtpResult<T> run(int code, Work work);
    FtpStatus simple(int code, std::function<ftp::Awaitable<ftp::Status>(ftp::Client &)> work);
    void tellReason(int code, const FtpError &error);
    using MoveFiles = ftp::Awaitable<void> (*)(ftp::Client &, std::vector<ftp::FilePair>, ftp::Type,
                                               ftp::FileReports);
    FtpStatus moveFiles(int code, MoveFiles move, const QList<FtpFile> &files,
                        const FtpFileDone &done);
    template <class T>
    void finish(const std::shared_ptr<ftp::Client> &used, const Outcome<T> &outcome);
    void setState(int value);
    void lost(const ftp::Client *which);

    FtpControl *q;
    std::shared_ptr<FtpBridge> bridge;
    std::shared_ptr<ftp::Client> client;
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
        return failure(ftp::ErrorKind::Busy, "Another operation is running");
    }
    if (!client) {
        return failure(ftp::ErrorKind::NotConnected, "Not connected");
    }
    busy = true;
    bridge->operation = code;
    const auto idle = qScopeGuard([this] { busy = false; });
    struct Waiting {
        QEventLoop loop;
        std::optional<Outcome<T>> outcome;
    };
    const auto waiting = std::make_shared<Waiting>();
    const std::shared_ptr<ftp::Client> used = client;
    const auto report = bridge;
    auto watchLost
        = [this, report, which = used.get()] { report->post([this, which] { lost(which); }); };
    asio::co_spawn(
        ftp::EngineThread::executor(),
        [](std::shared_ptr<ftp::Client> on, Work step,
           auto whenLost) -> ftp::Awaitable<Outcome<T>> {
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
                outcome.result = ftp::fail(ftp::ErrorKind::Protocol, "Internal error");
            }
            report->post([waiting, outcome = std::move(outcome)]() mutable {
                waiting->outcome = std::move(outcome);
                waiting->loop.quit();
            });
        });
    waiting->loop.exec();
    if (!waiting->outcome) { // the program ends
        q->close();
        return failure(ftp::ErrorKind::Aborted, "Aborted");
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

template <class T>
void FtpControl::Private::finish(const std::shared_ptr<ftp::Client> &used,
                                 const Outcome<T> &outcome)
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
