#pragma once

#include "ftp/client.h"
#include "ftp/ftpcontrol.h"

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

/// The way from the engine's thread to the control's. It outlives the control, so that an engine
/// that still winds up has somebody harmless to talk to.
class FtpBridge : public std::enable_shared_from_this<FtpBridge> {
public:
    explicit FtpBridge(FtpControl *control)
        : m_control(control)
    {
    }

    /// Runs something on the control's thread, after everything posted before, unless the control
    /// is gone. However much is waiting, that thread gets round to its timers and its painting.
    void post(std::function<void()> work);
    void detach(); ///< the control goes away

    /// Hooks that turn what the engine tells into events of the control.
    [[nodiscard]] ftp::Hooks hooks();
    /// Operation that replies and counts belong to.
    std::atomic<int> operation { 0 };
    /// Asked on the control's thread.
    std::function<FtpTrust(const FtpCertificate &)> question;

private:
    void event(int status, QString text, std::int64_t bytes, std::int64_t total);
    ftp::Awaitable<ftp::Trust> ask(ftp::CertificateQuestion asked);

    void deliver();
    std::function<void()> takeNext();

    std::mutex m_mutex; ///< of all that follows
    FtpControl *m_control;
    std::deque<std::function<void()>> m_waiting;
    bool m_awake = false; ///< a call of deliver() is on its way
};
