#include "ftp/login.h"

#include <algorithm>
#include <cctype>

namespace ftp {
namespace {

bool isLetter(char letter) { return std::isalpha(static_cast<unsigned char>(letter)) != 0; }

/// Whether a text has one of these words. What follows it counts as its ending ("encrypted").
bool hasWord(const std::string &text, std::initializer_list<std::string_view> words)
{
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return std::any_of(words.begin(), words.end(), [&](std::string_view word) {
        std::size_t at = lower.find(word);
        while (at != std::string::npos && at > 0 && isLetter(lower[at - 1])) {
            at = lower.find(word, at + 1); // the end of a user's name, say
        }
        return at != std::string::npos;
    });
}

Awaitable<Status> sendAccount(Dialogue &dialogue, std::string account, Reply wanted)
{
    if (account.empty()) {
        co_return fail(ErrorKind::LoginRefused, wanted.text(), wanted.code);
    }
    auto answer = co_await dialogue.askSecretly("ACCT ", account);
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    co_return answer->done() ? Status {} : Status(refusal(*answer));
}

/// What USER is answered with where no password is wanted. Anything else that sounds good answers
/// another question, and a login without its password would be none.
bool logsIn(int code) { return code == 230 || code == 231 || code == 202 || code == 232; }

} // namespace

Awaitable<Result<Reply>> readGreeting(Dialogue &dialogue)
{
    auto greeting = co_await dialogue.finalReply();
    if (greeting && !greeting->done()) {
        co_return refusal(*greeting);
    }
    co_return greeting;
}

Awaitable<Result<Reply>> askPastGreeting(Dialogue &dialogue, std::string command)
{
    auto answer = co_await dialogue.ask(std::move(command));
    if (answer && answer->code == 220) {
        answer = co_await dialogue.finalReply();
    }
    co_return answer;
}

Awaitable<Status> loginAs(Dialogue &dialogue, std::string user, Credentials credentials)
{
    auto answer = co_await askPastGreeting(dialogue, "USER " + user);
    if (answer && answer->done() && !logsIn(answer->code)) {
        co_return fail(ErrorKind::Protocol, "The server did not answer the login");
    }
    if (answer && answer->code == 331) {
        answer = co_await dialogue.askSecretly("PASS ", credentials.password);
    }
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    if (answer->code == 332) {
        co_return co_await sendAccount(dialogue, credentials.account, *answer);
    }
    co_return answer->done() ? Status {} : Status(refusal(*answer));
}

Awaitable<Status> reachServer(Dialogue &dialogue, const Proxy &proxy, std::string host,
                              std::uint16_t port)
{
    const bool names = proxy.kind == ProxyKind::Site || proxy.kind == ProxyKind::Open;
    if (proxy.kind != ProxyKind::Pipe && host.find(':') != std::string::npos) {
        co_return fail(ErrorKind::Proxy, "This kind of proxy takes no IPv6 address");
    }
    if (!proxy.user.empty() && proxy.kind != ProxyKind::UserNoLogin) {
        Credentials credentials { proxy.user, proxy.password, proxy.password };
        Status login = co_await loginAs(dialogue, proxy.user, credentials);
        if (!login) {
            co_return login;
        }
    }
    if (!names) {
        co_return Status {};
    }
    const std::string command
        = (proxy.kind == ProxyKind::Site ? "SITE " : "OPEN ") + hostAndPort(host, port);
    auto answer = co_await dialogue.ask(command);
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    co_return answer->done() || answer->code == 331 ? Status {} : Status(refusal(*answer));
}

std::string proxyUserName(const Proxy &proxy, const std::string &user, const std::string &host,
                          std::uint16_t port)
{
    const bool named = proxy.kind == ProxyKind::UserLogin || proxy.kind == ProxyKind::UserNoLogin;
    return named ? user + "@" + hostAndPort(host, port) : user;
}

Error loginError(Error error, bool encrypted)
{
    if (error.replyCode == 0) {
        return error;
    }
    if (!encrypted
        && hasWord(error.text, { "tls", "ssl", "encrypt", "unencrypt", "cleartext", "use auth" })) {
        error.kind = ErrorKind::TlsRequired;
    } else if (error.replyCode == 421
               || hasWord(error.text, { "too many", "maximum", "already connected" })) {
        error.kind = ErrorKind::TooManyConnections;
    } else {
        error.kind = ErrorKind::LoginRefused;
    }
    return error;
}

} // namespace ftp
