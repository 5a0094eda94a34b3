// A bare FTP client for tests of servers: sends lines, returns replies as they come.
#pragma once

#include "servers/socket.h"

namespace servers {

/// Every reply is the whole text as received, all lines of a multi-line reply included; it is
/// empty, or cut, when the connection ended or nothing came for ten seconds.
class RawClient {
public:
    /// @throws std::runtime_error when nobody listens
    explicit RawClient(std::uint16_t port, const std::string &address = "127.0.0.1");
    ~RawClient();
    RawClient(const RawClient &) = delete;
    RawClient &operator=(const RawClient &) = delete;

    /// Handshake after a 234. @param trusted  the certificate to accept, PEM; empty = any
    bool startTls(const std::filesystem::path &trusted = {});

    const std::string &greeting(); ///< read at the first call of anything
    std::string command(const std::string &line);
    /// USER and PASS; @return the last reply
    std::string login(const std::string &user, const std::string &password);
    /// EPSV and a command that sends data to us. @return the data, or the reply of a refusal
    std::string receive(const std::string &line);
    /// The same through PORT.
    std::string receiveActively(const std::string &line);
    /// EPSV and a command that takes data. @return the last reply
    std::string send(const std::string &line, const std::string &data);

    /// EPSV and a command; the data connection is the caller's then. Null after a refusal.
    std::unique_ptr<Stream> openDataFor(const std::string &line);
    [[nodiscard]] const std::string &lastReply() const { return m_lastReply; }

    void write(const std::string &bytes); ///< as they are
    std::string readLine(); ///< with its line end
    std::string readReply();
    std::string readRest(int limit = 10000); ///< everything until the end of the connection

private:
    std::string receiveAll(Stream &data);
    Stream m_control;
    std::string m_buffer;
    std::string m_address;
    std::string m_lastReply;
    std::string m_greeting;
    bool m_greeted = false;
    bool m_protected = false;
};

} // namespace servers
