// What the server and its sessions share.
#pragma once

#include "servers/faultserver.h"
#include "servers/fixture.h"
#include "servers/socket.h"

#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>
#include <optional>
#include <thread>

namespace servers {

using TlsContext = std::shared_ptr<SSL_CTX>;

/// A context with that certificate. @throws std::runtime_error
TlsContext makeTlsContext(const Certificate &certificate);

struct FaultServer::Private {
    explicit Private(FaultServer &server, const std::string &listenAddress);
    ~Private();
    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    FaultServer &q;
    std::string address;
    TemporaryFolder root;
    Handle stopEvent; ///< becomes readable when everything is to end
    Handle listener;
    std::thread acceptor;

    mutable std::mutex mutex; ///< guards what follows
    mutable std::condition_variable changed;
    std::vector<Command> commands;
    std::vector<Rule> rules;
    struct Session {
        std::thread thread;
        Handle dropEvent; ///< becomes readable when this session is to end
        bool ended = false;
    };
    std::list<Session> sessions;
    int sessionCount = 0;
    int openCount = 0;
    std::string contextCertificate;
    TlsContext context;

    std::atomic<int> reused = 0;
    std::atomic<int> fresh = 0;
    std::atomic<long> discarded = 0;

    void accept();
    [[nodiscard]] int openSessions() const;
    void record(Command command);
    /// The rule for a command, counted as used.
    std::optional<Rule> ruleFor(int session, const std::string &verb, const std::string &argument);
    /// The context of the certificate that holds now; sessions can be taken up within one context.
    TlsContext currentContext();
    /// Whether this transfer is one of the faulty ones; counts it.
    bool nextTransferIsFaulty();
};

} // namespace servers
