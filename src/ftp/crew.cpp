#include "ftp/crew.h"

#include <array>
#include <asio/co_spawn.hpp>
#include <asio/redirect_error.hpp>
#include <asio/use_awaitable.hpp>

namespace ftp {
namespace {

/// Pauses before a lost connection is made again.
constexpr std::array pauses { std::chrono::milliseconds(100), std::chrono::milliseconds(2000),
                              std::chrono::milliseconds(5000) };

/// So many lost lines in a row without a file in between, and the work is given up.
constexpr int mostFruitless = 3;

bool hopeless(ErrorKind kind)
{
    return kind == ErrorKind::LocalDiskFull || kind == ErrorKind::Aborted;
}

} // namespace

Crew::Crew(Client &client, Worker worker, CrewRules rules)
    : m_client(client)
    , m_worker(std::move(worker))
    , m_rules(std::move(rules))
    , m_home(client.session().folder())
    , m_news(client.session().executor())
    , m_meter([this](std::int64_t bytes) {
        if (m_rules.progress) {
            m_rules.progress(bytes, m_total);
        }
    })
{
    if (!m_rules.progress) {
        m_rules.progress = client.session().hooks().progress;
    }
    m_news.expires_after(client.session().loginData().keepAlive);
}

void Crew::wakeAll() { m_news.cancel(); }

void Crew::failed(const Error &error)
{
    if (!m_firstError || (hopeless(error.kind) && !hopeless(m_firstError->kind))) {
        m_firstError = error; // what ended everything says more than a file that was refused
    }
    if (hopeless(error.kind)) {
        m_stopped = true;
        wakeAll();
    }
}

void Crew::jobAdded()
{
    ++m_open;
    if (m_waiting > 0) {
        wakeAll();
    } else {
        hire();
    }
}

void Crew::jobDone()
{
    --m_open;
    if (m_open == 0) {
        wakeAll();
    }
}

/// Waits until something changes. @return false when nothing did for a long while
Awaitable<bool> Crew::news()
{
    if (m_news.expiry() <= asio::steady_timer::clock_type::now()) {
        m_news.expires_after(
            m_client.session().loginData().keepAlive); // all who waited for it have been woken
    }
    std::error_code woken;
    co_await m_news.async_wait(asio::redirect_error(asio::use_awaitable, woken));
    co_return woken == asio::error::operation_aborted;
}

Awaitable<bool> Crew::wait(Session &session)
{
    if (m_open > 0 && !m_stopped) {
        ++m_waiting;
        const bool changed = co_await news();
        --m_waiting;
        if (!changed && session.usable()) {
            auto alive = co_await session.ask("NOOP");
            ignoreError(alive, "the session says itself whether it is usable");
        }
    }
    co_return m_open > 0 && !m_stopped && (!m_homeward || isFirst(session));
}

Hooks Crew::quietHooks() const
{
    Hooks hooks = m_client.session().hooks();
    hooks.progress = nullptr;
    hooks.reply = nullptr; // refusals are told by the jobs; a helper's login is no news
    hooks.note = nullptr;
    // Several boxes about one certificate help nobody: a helper whose server is not trusted stays
    // out.
    hooks.certificate = nullptr;
    return hooks;
}

void Crew::hire()
{
    // One job each is not worth a login.
    const bool worthIt = m_open > 2 * (m_helpers + 1);
    if (m_full || m_stopped || !worthIt || m_helpers + 1 >= m_client.sessionLimit()) {
        return;
    }
    ++m_helpers;
    const Session &first = m_client.session();
    auto session = std::make_shared<Session>(first.executor(), first.loginData(), quietHooks(),
                                             first.sharedKnowledge());
    m_client.addHelper(session);
    asio::co_spawn(first.executor(), join(std::move(session)),
                   [this](const std::exception_ptr &thrown) {
                       if (thrown) { // out of memory, say; nobody must wait for it
                           m_full = true;
                           --m_helpers;
                           wakeAll();
                       }
                   });
}

Awaitable<void> Crew::join(std::shared_ptr<Session> session)
{
    m_joining.push_back(session);
    Status opened = fail(ErrorKind::Aborted, "Aborted");
    if (!m_stopped) {
        opened = co_await session->open();
    }
    std::erase(m_joining, session);
    if (opened) {
        Status worked = co_await m_worker(*session);
        ignoreError(worked, "its jobs were given back and are done by the others");
    } else {
        m_full = true; // "too many", or anything else: what there is must do
    }
    if (session->usable()) {
        Status farewell = co_await session->line().send("QUIT");
        ignoreError(farewell, "the connection is dropped either way");
    }
    m_client.removeHelper(session);
    session->abort();
    --m_helpers;
    wakeAll();
}

Awaitable<Status> Crew::reopen()
{
    Status opened = fail(ErrorKind::ConnectionClosed, "Connection closed by server");
    for (const auto pause : pauses) {
        co_await rest(pause);
        if (m_client.aborted()) {
            co_return fail(ErrorKind::Aborted, "Aborted");
        }
        opened = co_await m_client.session().open();
        if (opened) {
            co_return co_await m_client.session().changeFolder(m_home);
        }
    }
    co_return opened;
}

/// A pause that an abort ends soon.
Awaitable<void> Crew::rest(Milliseconds pause)
{
    constexpr Milliseconds step { 100 };
    asio::steady_timer timer(m_client.session().executor());
    for (Milliseconds passed { 0 }; passed < pause && !m_client.aborted(); passed += step) {
        timer.expires_after(step);
        std::error_code ignored; // nobody cancels it
        co_await timer.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
    }
}

/// As long as others work, a server that does not let us in again just now has not ended it all.
Awaitable<Status> Crew::reopenWhileOthersWork()
{
    Status opened = co_await reopen();
    while (!opened && m_helpers > 0 && m_open > 0 && !m_stopped && !m_client.aborted()) {
        if (m_waiting == m_helpers) { // what is left only the first session may do
            m_homeward = true;
            wakeAll();
        }
        const bool changed = co_await news();
        if (!changed || m_helpers == 0) {
            opened = co_await reopen();
        }
    }
    m_homeward = false;
    co_return opened;
}

Awaitable<void> Crew::returnHome()
{
    if (m_client.session().usable()) {
        Status back = co_await m_client.session().changeFolder(m_home);
        ignoreError(back, "the folder may be one of those that went");
    }
}

/// Whether a lost line is worth making again; says so.
bool Crew::goesOnAfter(const Error &lost)
{
    if (lost.kind == ErrorKind::Aborted || !m_rules.reconnects || ++m_fruitless > mostFruitless) {
        return false;
    }
    note("Die Verbindung ging verloren (" + lost.text + "); sie wird wieder hergestellt.");
    return true;
}

Awaitable<Status> Crew::recover(Error lost)
{
    Status opened = tl::unexpected(lost);
    if (!m_client.session().usable() && goesOnAfter(lost)) {
        opened = co_await reopen();
    }
    co_return opened ? Status {}
                     : Status(tl::unexpected(m_client.aborted() ? opened.error() : lost));
}

Awaitable<void> Crew::workAlone()
{
    for (;;) {
        Status worked = co_await m_worker(m_client.session());
        if (worked || m_stopped) {
            break;
        }
        if (!goesOnAfter(worked.error())) {
            failed(worked.error());
            break;
        }
        Status opened = co_await reopenWhileOthersWork();
        if (!opened && m_open == 0) {
            m_lost = true; // the others have done it
            break;
        }
        if (!opened) {
            failed(m_client.aborted() ? opened.error() : worked.error());
            m_stopped = true;
            break;
        }
    }
}

/// Sends the helpers home when nothing is left to take.
Awaitable<void> Crew::dismiss()
{
    m_stopped = true;
    wakeAll();
    for (const auto &session : m_joining) {
        session->abort(); // nobody waits for a login that is of no use any more
    }
    while (m_helpers > 0) {
        if (m_client.aborted()) {
            m_client.abort();
        }
        co_await news();
    }
}

Awaitable<Status> Crew::run()
{
    announce();
    co_await workAlone();
    co_await dismiss();
    if (m_lost) { // there is room again
        Status opened = co_await reopen();
        ignoreError(opened, "the work is done; the next command tells");
    }
    m_meter.finish();
    co_return m_firstError ? Status(tl::unexpected(*m_firstError)) : Status {};
}

} // namespace ftp
