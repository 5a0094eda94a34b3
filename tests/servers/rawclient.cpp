#include "servers/rawclient.h"

#include "servers/socket.h"

#include <cstdlib>
#include <utility>

namespace servers {

struct RawClient::Stream : servers::Stream {
    using servers::Stream::Stream;
    std::string buffer;
};

RawClient::RawClient(std::uint16_t port, const std::string &address)
    : m_control(std::make_unique<Stream>(connectTo(address, port)))
    , m_address(address)
{
}

RawClient::~RawClient() = default;

bool RawClient::startTls(const std::filesystem::path &trusted)
{
    m_control->buffer.clear();
    m_protected = m_control->startTlsAsClient(trusted, {});
    return m_protected;
}

void RawClient::write(const std::string &bytes) { m_control->write(bytes); }

std::string RawClient::readLine()
{
    std::string &buffer = m_control->buffer;
    std::size_t end = 0;
    while ((end = buffer.find('\n')) == std::string::npos) {
        if (m_control->read(buffer, 65536, 10000) <= 0) {
            return std::exchange(buffer, {});
        }
    }
    const std::string line = buffer.substr(0, end + 1);
    buffer.erase(0, end + 1);
    return line;
}

std::string RawClient::readReply()
{
    std::string reply = readLine();
    if (reply.size() < 4 || reply[3] != '-') {
        return reply;
    }
    const std::string close = reply.substr(0, 3) + " ";
    for (;;) {
        const std::string line = readLine();
        reply += line;
        if (line.empty() || line.starts_with(close)) {
            return reply;
        }
    }
}

std::string RawClient::readRest(int limit)
{
    std::string &buffer = m_control->buffer;
    while (m_control->read(buffer, 65536, limit) > 0) { }
    return std::exchange(buffer, {});
}

const std::string &RawClient::greeting()
{
    if (!m_greeted) {
        m_greeted = true;
        m_greeting = readReply();
    }
    return m_greeting;
}

std::string RawClient::command(const std::string &line)
{
    greeting();
    write(line + "\r\n");
    return readReply();
}

std::string RawClient::login(const std::string &user, const std::string &password)
{
    std::string reply = command("USER " + user);
    if (reply.starts_with("331")) {
        reply = command("PASS " + password);
    }
    if (m_protected && reply.starts_with("230")) {
        command("PBSZ 0");
        command("PROT P");
    }
    return reply;
}

std::unique_ptr<RawClient::Stream> RawClient::openData(std::string &refusal)
{
    refusal = command("EPSV");
    const std::size_t place = refusal.find("|||");
    if (place == std::string::npos) {
        return nullptr;
    }
    const int port = std::atoi(refusal.c_str() + place + 3);
    return std::make_unique<Stream>(connectTo(m_address, static_cast<std::uint16_t>(port)));
}

std::string RawClient::receive(const std::string &line)
{
    std::string reply;
    const auto data = openData(reply);
    if (!data) {
        return reply;
    }
    reply = command(line);
    if (!reply.starts_with("1")) {
        return reply;
    }
    if (m_protected && !data->startTlsAsClient({}, m_control->session())) {
        return "data connection: no TLS";
    }
    while (data->read(data->buffer, 1 << 20, 10000) > 0) { }
    data->close();
    readReply();
    return data->buffer;
}

std::string RawClient::send(const std::string &line, const std::string &bytes)
{
    std::string reply;
    const auto data = openData(reply);
    if (!data) {
        return reply;
    }
    reply = command(line);
    if (!reply.starts_with("1")) {
        return reply;
    }
    if (m_protected && !data->startTlsAsClient({}, m_control->session())) {
        return "data connection: no TLS";
    }
    data->write(bytes);
    data->close();
    return readReply();
}

} // namespace servers
