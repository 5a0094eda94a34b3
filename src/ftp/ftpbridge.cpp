#include "ftp/ftpbridge.h"

#include "ftp/engine_thread.h"
#include "ftp/event.h"
#include "ftp/ftpconvert.h"

#include <QDeadlineTimer>
#include <QMetaObject>
#include <QTimer>
#include <asio/post.hpp>

static_assert(static_cast<int>(FtpTrust::Once) == static_cast<int>(ftp::Trust::Once)
              && static_cast<int>(FtpTrust::Always) == static_cast<int>(ftp::Trust::Always));

void FtpBridge::post(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    if (m_control == nullptr) {
        return;
    }
    m_waiting.push_back(std::move(work));
    if (!std::exchange(m_awake, true)) {
        QMetaObject::invokeMethod(
            m_control, [self = shared_from_this()] { self->deliver(); }, Qt::QueuedConnection);
    }
}

/// Qt handles all posted events before it looks at a timer, so a busy engine could hold up the
/// window for seconds: what takes longer than one turn goes on by a timer.
void FtpBridge::deliver()
{
    constexpr int turn = 8; // milliseconds; half the time a screen needs for one picture
    {
        const std::lock_guard lock(m_mutex);
        m_awake = false;
    }
    const QDeadlineTimer end(turn, Qt::PreciseTimer);
    while (!end.hasExpired()) {
        const std::function<void()> work = takeNext();
        if (!work) {
            return;
        }
        work();
    }
}

/// Sees to the rest before it hands one out: that one may open a message box and stay long.
std::function<void()> FtpBridge::takeNext()
{
    const std::lock_guard lock(m_mutex);
    if (m_waiting.empty()) {
        return {};
    }
    std::function<void()> work = std::move(m_waiting.front());
    m_waiting.pop_front();
    if (!m_waiting.empty() && !std::exchange(m_awake, true)) {
        QTimer::singleShot(1, Qt::PreciseTimer, m_control,
                           [self = shared_from_this()] { self->deliver(); });
    }
    return work;
}

void FtpBridge::detach()
{
    std::deque<std::function<void()>> dropped; // ends outside the lock, with all it holds
    const std::lock_guard lock(m_mutex);
    m_control = nullptr;
    dropped.swap(m_waiting);
}

void FtpBridge::event(int status, QString text, std::int64_t bytes, std::int64_t total)
{
    FtpEvent told { operation, status, std::move(text), bytes, total };
    post([self = shared_from_this(), told = std::move(told)] {
        Q_EMIT self->m_control->replyEvent(told);
    });
}

ftp::Hooks FtpBridge::hooks()
{
    const auto self = shared_from_this();
    ftp::Hooks made;
    made.reply = [self](const ftp::Reply &reply) {
        self->event(ftpStatus(reply), ftpText(reply.text()) + QStringLiteral("\r\n"), 0, 0);
    };
    made.note = [self](const std::string &text) {
        self->event(FtpEvent::Completed, ftpText(text) + QStringLiteral("\r\n"), 0, 0);
    };
    made.progress = [self](std::int64_t bytes, std::int64_t total) {
        self->event(FtpEvent::InProgress, {}, bytes, total);
    };
    made.certificate
        = [self](ftp::CertificateQuestion asked) { return self->ask(std::move(asked)); };
    return made;
}

ftp::Awaitable<ftp::Trust> FtpBridge::ask(ftp::CertificateQuestion asked)
{
    struct Answer {
        explicit Answer(const asio::any_io_executor &executor)
            : given(executor)
        {
        }
        ftp::Event given;
        FtpTrust trust = FtpTrust::Reject;
    };
    /// What is put to the control's thread. Dropped without an answer, when the control goes away,
    /// it rejects: somebody waits for it.
    struct Asked {
        Asked(std::shared_ptr<Answer> to, asio::any_io_executor where)
            : answer(std::move(to))
            , executor(std::move(where))
        {
        }
        Asked(const Asked &) = delete;
        Asked &operator=(const Asked &) = delete;
        ~Asked()
        {
            asio::post(executor, [answer = answer, trust = trust] {
                answer->trust = trust;
                answer->given.set();
            });
        }
        std::shared_ptr<Answer> answer;
        asio::any_io_executor executor;
        FtpTrust trust = FtpTrust::Reject;
    };
    const asio::any_io_executor executor = ftp::EngineThread::executor();
    const auto answer = std::make_shared<Answer>(executor);
    const FtpCertificate shown = ftpCertificate(asked);
    const auto self = shared_from_this();
    auto open = std::make_shared<Asked>(answer, executor);
    post([self, open, shown] {
        open->trust = self->question ? self->question(shown) : FtpTrust::Reject;
    });
    open.reset(); // now the closure alone keeps it
    co_await answer->given.wait();
    co_return static_cast<ftp::Trust>(answer->trust);
}
