#include "servers/faultserver.h"

#include "servers/faultserver_p.h"
#include "servers/faultsession.h"

#include <algorithm>
#include <fnmatch.h>
#include <openssl/pem.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>

namespace servers {

namespace {

Handle newEvent() { return Handle(eventfd(0, EFD_CLOEXEC)); }

void raise(const Handle &event) { eventfd_write(event.get(), 1); }

std::string verbOf(const std::string &line)
{
    std::string verb = line.substr(0, line.find(' '));
    std::transform(verb.begin(), verb.end(), verb.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return verb;
}

} // namespace

TlsContext makeTlsContext(const Certificate &certificate)
{
    TlsContext context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    const auto bio = [](const std::string &text) {
        return std::unique_ptr<BIO, decltype(&BIO_free_all)>(
            BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free_all);
    };
    const std::unique_ptr<X509, decltype(&X509_free)> x509(
        PEM_read_bio_X509(bio(certificate.certificate).get(), nullptr, nullptr, nullptr),
        X509_free);
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        PEM_read_bio_PrivateKey(bio(certificate.key).get(), nullptr, nullptr, nullptr),
        EVP_PKEY_free);
    if (SSL_CTX_use_certificate(context.get(), x509.get()) != 1
        || SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1) {
        throw std::runtime_error("not a certificate");
    }
    const unsigned char id[] = "test";
    SSL_CTX_set_session_id_context(context.get(), id, sizeof(id) - 1);
    return context;
}

FaultServer::Private::Private(FaultServer &server, const std::string &listenAddress)
    : q(server)
    , address(listenAddress)
    , stopEvent(newEvent())
    , listener(listenOn(listenAddress))
{
    acceptor = std::thread([this] { accept(); });
}

FaultServer::Private::~Private()
{
    raise(stopEvent);
    acceptor.join();
    q.dropSessions();
    for (Session &session : sessions) {
        session.thread.join();
    }
}

void FaultServer::Private::accept()
{
    for (;;) {
        Handle connection = acceptFrom(listener, -1, stopEvent.get());
        if (!connection) {
            return;
        }
        const std::scoped_lock lock(mutex);
        ++openCount;
        const int number = ++sessionCount;
        Session &session = sessions.emplace_back();
        session.dropEvent = newEvent();
        session.thread = std::thread([this, &session, number, c = std::move(connection)]() mutable {
            FaultSession(*this, std::move(c), session.dropEvent.get(), number).run();
            const std::scoped_lock ended(mutex);
            session.ended = true;
            --openCount;
            changed.notify_all();
        });
    }
}

int FaultServer::Private::openSessions() const
{
    const std::scoped_lock lock(mutex);
    return openCount;
}

void FaultServer::Private::record(Command command)
{
    const std::scoped_lock lock(mutex);
    commands.push_back(std::move(command));
    changed.notify_all();
}

std::optional<Rule> FaultServer::Private::ruleFor(int session, const std::string &verb,
                                                  const std::string &argument)
{
    const std::scoped_lock lock(mutex);
    for (Rule &rule : rules) {
        if ((rule.verb != "*" && rule.verb != verb) || rule.times == 0 || session < rule.fromSession
            || session > rule.toSession
            || fnmatch(rule.argument.c_str(), argument.c_str(), 0) != 0) {
            continue;
        }
        if (rule.skip > 0) {
            --rule.skip;
            continue;
        }
        if (rule.times > 0) {
            --rule.times;
        }
        return rule;
    }
    return std::nullopt;
}

TlsContext FaultServer::Private::currentContext()
{
    const Certificate certificate = q.fault.certificate.get();
    const std::scoped_lock lock(mutex);
    if (!context || contextCertificate != certificate.certificate) {
        context = makeTlsContext(certificate);
        contextCertificate = certificate.certificate;
    }
    return context;
}

bool FaultServer::Private::nextTransferIsFaulty()
{
    const std::scoped_lock lock(mutex);
    const int left = q.fault.faultyTransfers.get();
    if (left > 0) {
        q.fault.faultyTransfers = left - 1;
    }
    return left != 0;
}

FaultServer::FaultServer(const std::string &address)
    : d(std::make_unique<Private>(*this, address))
{
}

FaultServer::~FaultServer() = default;

void FaultServer::on(Rule rule)
{
    const std::scoped_lock lock(d->mutex);
    d->rules.push_back(std::move(rule));
}

void FaultServer::clearRules()
{
    const std::scoped_lock lock(d->mutex);
    d->rules.clear();
}

std::uint16_t FaultServer::port() const { return localPort(d->listener); }

const std::filesystem::path &FaultServer::root() const { return d->root.path(); }

std::vector<Command> FaultServer::commands() const
{
    const std::scoped_lock lock(d->mutex);
    return d->commands;
}

std::vector<std::string> FaultServer::lines(const std::string &verb) const
{
    std::vector<std::string> result;
    for (const Command &command : commands()) {
        if (verb.empty() || verbOf(command.line) == verb) {
            result.push_back(command.line);
        }
    }
    return result;
}

void FaultServer::clearCommands()
{
    const std::scoped_lock lock(d->mutex);
    d->commands.clear();
}

bool FaultServer::waitForCommand(const std::string &verb, int count) const
{
    std::unique_lock lock(d->mutex);
    return d->changed.wait_for(lock, std::chrono::seconds(10), [&] {
        return std::count_if(d->commands.begin(), d->commands.end(),
                             [&](const Command &c) { return verbOf(c.line) == verb; })
            >= count;
    });
}

bool FaultServer::waitForEnd() const
{
    std::unique_lock lock(d->mutex);
    return d->changed.wait_for(lock, std::chrono::seconds(10), [&] { return d->openCount == 0; });
}

int FaultServer::sessions() const
{
    const std::scoped_lock lock(d->mutex);
    return d->sessionCount;
}

int FaultServer::openSessions() const { return d->openSessions(); }

int FaultServer::reusedDataSessions() const { return d->reused; }

int FaultServer::freshDataSessions() const { return d->fresh; }

long FaultServer::discardedBytes() const { return d->discarded; }

void FaultServer::dropSessions()
{
    const std::scoped_lock lock(d->mutex);
    for (Private::Session &session : d->sessions) {
        raise(session.dropEvent);
    }
}

} // namespace servers
