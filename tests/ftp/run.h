// Runs the engine's coroutines to their end on the test's own thread.
#pragma once

#include "ftp/client.h"

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The result of one coroutine; the context runs until it is there.
template <class T> T runOn(asio::io_context &context, ftp::Awaitable<T> work)
{
    std::optional<T> result;
    asio::co_spawn(
        context,
        [](ftp::Awaitable<T> step, std::optional<T> &out) -> ftp::Awaitable<void> {
            out.emplace(co_await std::move(step));
        }(std::move(work), result),
        asio::detached);
    context.restart();
    while (!result && context.run_one() > 0) { }
    if (!result) {
        throw std::runtime_error("the coroutine never ended");
    }
    return std::move(*result);
}

/// A client with everything it told, for one server on the loopback address.
class TestClient {
public:
    TestClient(std::uint16_t port, const std::string &user, const std::string &password,
               ftp::Encryption encryption = ftp::Encryption::Never, int sessions = 1)
        : m_knowledge(std::make_shared<ftp::ServerKnowledge>(""))
    {
        m_login.host = "127.0.0.1";
        m_login.port = port;
        m_login.credentials = { user, password, {} };
        m_login.encryption = encryption;
        m_login.timeout = std::chrono::seconds(10);
        m_sessions = sessions;
    }

    ftp::LoginData &login() { return m_login; }
    ftp::ServerKnowledge &knowledge() { return *m_knowledge; }
    void useKnowledge(std::shared_ptr<ftp::ServerKnowledge> knowledge)
    {
        m_knowledge = std::move(knowledge);
    }
    std::vector<std::string> &replies() { return m_replies; }
    std::vector<std::string> &notes() { return m_notes; }
    std::vector<std::int64_t> &progress() { return m_progress; }
    void trust(ftp::Trust answer) { m_trust = answer; }
    [[nodiscard]] int certificateQuestions() const { return m_questions; }
    [[nodiscard]] const ftp::CertificateQuestion &lastQuestion() const { return m_question; }
    asio::io_context &context() { return m_context; }

    ftp::Client &client()
    {
        if (!m_client) {
            m_client = std::make_unique<ftp::Client>(m_context.get_executor(), m_login, hooks(),
                                                     m_knowledge, m_sessions);
        }
        return *m_client;
    }
    template <class T> T run(ftp::Awaitable<T> work) { return runOn(m_context, std::move(work)); }
    ftp::Status open() { return run(client().open()); }

private:
    ftp::Hooks hooks()
    {
        ftp::Hooks hooks;
        hooks.reply = [this](const ftp::Reply &reply) { m_replies.push_back(reply.text()); };
        hooks.note = [this](const std::string &text) { m_notes.push_back(text); };
        hooks.progress = [this](std::int64_t bytes, std::int64_t) { m_progress.push_back(bytes); };
        hooks.certificate
            = [this](ftp::CertificateQuestion question) -> ftp::Awaitable<ftp::Trust> {
            ++m_questions;
            m_question = question;
            co_return m_trust;
        };
        return hooks;
    }

    asio::io_context m_context { 1 };
    ftp::LoginData m_login;
    std::shared_ptr<ftp::ServerKnowledge> m_knowledge;
    std::vector<std::string> m_replies, m_notes;
    std::vector<std::int64_t> m_progress;
    ftp::Trust m_trust = ftp::Trust::Reject;
    ftp::CertificateQuestion m_question;
    int m_questions = 0;
    int m_sessions = 1;
    std::unique_ptr<ftp::Client> m_client;
};
