#include "servers/rawclient.h"

#include <cstdlib>
#include <utility>

namespace servers {

RawClient::RawClient(std::uint16_t port, const std::string &address)
    : m_control(connectTo(address, port))
    , m_address(address)
{
}

RawClient::~RawClient() = default;

bool RawClient::startTls(const std::filesystem::path &trusted)
{
    m_buffer.clear();
    m_protected = m_control.startTlsAsClient(trusted, {});
    return m_protected;
}

void RawClient::write(const std::string &bytes) { m_control.write(bytes); }

std::string RawClient::readLine()
{
    std::size_t end = 0;
    while ((end = m_buffer.find('\n')) == std::string::npos) {
        if (m_control.read(m_buffer, 65536, 10000) <= 0) {
            return std::exchange(m_buffer, {});
        }
    }
    const std::string line = m_buffer.substr(0, end + 1);
    m_buffer.erase(0, end + 1);
    return line;
}

std::string RawClient::readReply()
{
    m_lastReply = readLine();
    if (m_lastReply.size() < 4 || m_lastReply[3] != '-') {
        return m_lastReply;
    }
    const std::string close = m_lastReply.substr(0, 3) + " ";
    for (;;) {
        const std::string line = readLine();
        m_lastReply += line;
        if (line.empty() || line.starts_with(close)) {
            return m_lastReply;
        }
    }
}

std::string RawClient::readRest(int limit)
{
    while (m_control.read(m_buffer, 65536, limit) > 0) { }
    return std::exchange(m_buffer, {});
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

std::unique_ptr<Stream> RawClient::openDataFor(const std::string &line)
{
    const std::string told = command("EPSV");
    const std::size_t place = told.find("|||");
    if (place == std::string::npos) {
        return nullptr;
    }
    const int port = std::atoi(told.c_str() + place + 3);
    auto data = std::make_unique<Stream>(connectTo(m_address, static_cast<std::uint16_t>(port)));
    if (!command(line).starts_with("1")) {
        return nullptr;
    }
    if (m_protected && !data->startTlsAsClient({}, m_control.session())) {
        readReply(); // says why
        return nullptr;
    }
    return data;
}

std::string RawClient::receiveAll(Stream &data)
{
    std::string bytes;
    while (data.read(bytes, 1 << 20, 10000) > 0) { }
    data.close();
    readReply();
    return bytes;
}

std::string RawClient::receive(const std::string &line)
{
    const auto data = openDataFor(line);
    return data ? receiveAll(*data) : m_lastReply;
}

std::string RawClient::receiveActively(const std::string &line)
{
    const Handle listener = listenOn("127.0.0.1");
    const unsigned port = localPort(listener);
    command("PORT 127,0,0,1," + std::to_string(port / 256) + "," + std::to_string(port % 256));
    write(line + "\r\n");
    Handle connection = acceptFrom(listener, 10000);
    readReply();
    if (!connection) {
        return m_lastReply;
    }
    Stream data(std::move(connection));
    return receiveAll(data);
}

std::string RawClient::send(const std::string &line, const std::string &bytes)
{
    const auto data = openDataFor(line);
    if (!data) {
        return m_lastReply;
    }
    data->write(bytes);
    data->finish();
    return readReply();
}

} // namespace servers
