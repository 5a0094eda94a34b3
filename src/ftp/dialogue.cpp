#include "ftp/dialogue.h"

namespace ftp {
namespace {

/// Replies that announce another one, to one command.
constexpr int mostPreliminary = 100;

/// Puts stars in the place of what stands behind a verb.
void hide(std::string &line, const std::string &verb, const std::string &secret)
{
    const std::string stars = verb + "***";
    for (auto at = line.find(verb + secret); at != std::string::npos;
         at = line.find(verb + secret, at + stars.size())) {
        line.replace(at, verb.size() + secret.size(), stars);
    }
}

} // namespace

Awaitable<Result<Reply>> Dialogue::reply() { return reply(m_limit); }

Awaitable<Result<Reply>> Dialogue::reply(Milliseconds limit)
{
    auto answer = co_await m_line.readReply(limit);
    if (!answer) {
        co_return answer;
    }
    for (std::string &line : answer->lines) {
        if (!m_secret.empty()) {
            hide(line, m_verb, m_secret);
        }
    }
    if (m_listener && !*m_muted) {
        m_listener(*answer);
    }
    if (answer->code == 421) {
        co_return fail(ErrorKind::ConnectionClosed, answer->text(), answer->code);
    }
    co_return answer;
}

Awaitable<Result<Reply>> Dialogue::finalReply(Milliseconds limit)
{
    for (int i = 0; i < mostPreliminary; ++i) {
        auto answer = co_await reply(limit);
        if (!answer || !answer->preliminary()) {
            co_return answer;
        }
    }
    co_return fail(ErrorKind::Protocol, "The server does not come to an end");
}

Awaitable<Result<Reply>> Dialogue::ask(std::string command)
{
    Status sent = co_await m_line.send(command);
    if (!sent) {
        co_return tl::unexpected(sent.error());
    }
    co_return co_await finalReply();
}

Awaitable<Result<Reply>> Dialogue::askSecretly(std::string verb, std::string secret)
{
    m_verb = verb;
    m_secret = secret;
    auto answer = co_await ask(verb + secret);
    m_secret.clear();
    co_return answer;
}

} // namespace ftp
