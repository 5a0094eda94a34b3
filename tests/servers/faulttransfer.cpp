// The transfers of the fault server: data connections and everything that goes wrong on them.
#include "servers/faultsession.h"

#include <algorithm>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace servers {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t blockSize = 65536;
constexpr int earlyWait = 100; // milliseconds that a fast client's bytes have to betray it

std::string withCarriageReturns(const std::string &text)
{
    std::string result;
    for (const char c : text) {
        result += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return result;
}

void removeCarriageReturns(std::string &text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text.compare(at, 2, "\r\n") != 0) {
            result += text[at];
        }
    }
    text = std::move(result);
}

} // namespace

void FaultSession::openPassivePort()
{
    m_transferring = false; // of two data connections the older one goes
    m_activePort = 0;
    m_passive = listenOn(m_server.address);
}

void FaultSession::pasv(const std::string &)
{
    if (m_server.address.find(':') != std::string::npos) {
        reply("522 Only EPSV here.");
        return;
    }
    openPassivePort();
    std::string address = m_fault.passiveAddress.get();
    if (address.empty()) {
        address = m_server.address;
        std::replace(address.begin(), address.end(), '.', ',');
    }
    const unsigned port = localPort(m_passive);
    if (m_fault.deadPassivePort.get()) {
        m_passive.reset();
    }
    reply("227 Entering Passive Mode (" + address + "," + std::to_string(port / 256) + ","
          + std::to_string(port % 256) + ").");
}

void FaultSession::epsv(const std::string &argument)
{
    if (!argument.empty() && argument != "1" && argument != "2") {
        reply("522 Not supported.");
        return;
    }
    openPassivePort();
    const unsigned port = localPort(m_passive);
    if (m_fault.deadPassivePort.get()) {
        m_passive.reset();
    }
    reply("229 Entering Extended Passive Mode (|||" + std::to_string(port) + "|)");
}

void FaultSession::port(const std::string &argument)
{
    unsigned n[6] = {};
    if (std::sscanf(argument.c_str(), "%u,%u,%u,%u,%u,%u", n, n + 1, n + 2, n + 3, n + 4, n + 5)
        != 6) {
        reply("501 Illegal PORT command.");
        return;
    }
    m_passive.reset();
    m_activeAddress = std::to_string(n[0]) + "." + std::to_string(n[1]) + "." + std::to_string(n[2])
        + "." + std::to_string(n[3]);
    m_activePort = static_cast<std::uint16_t>(n[4] * 256 + n[5]);
    reply("200 PORT command successful.");
}

void FaultSession::eprt(const std::string &argument)
{
    const char bar = argument.empty() ? '|' : argument[0];
    const std::size_t second = argument.find(bar, 1);
    const std::size_t third = second == std::string::npos ? second : argument.find(bar, second + 1);
    if (third == std::string::npos) {
        reply("501 Illegal EPRT command.");
        return;
    }
    m_passive.reset();
    m_activeAddress = argument.substr(second + 1, third - second - 1);
    m_activePort = static_cast<std::uint16_t>(std::atoi(argument.c_str() + third + 1));
    reply("200 EPRT command successful.");
}

/// The data connection, up to and including its TLS handshake; null after a reply of refusal.
std::unique_ptr<Stream> FaultSession::openData()
{
    Handle handle;
    if (m_activePort != 0) {
        try {
            handle = connectTo(m_activeAddress, std::exchange(m_activePort, std::uint16_t { 0 }));
        } catch (const std::runtime_error &) {
            handle.reset(); // told below
        }
    } else if (m_passive) {
        const Handle listener = std::move(m_passive);
        handle = acceptFrom(listener, 10000, m_drop);
    } else {
        reply("425 Use PORT or PASV first.");
        return nullptr;
    }
    if (!handle) {
        reply("425 Failed to establish connection.");
        return nullptr;
    }
    if (pollfd early { handle.get(), POLLIN, 0 };
        m_fault.dislikesEarlyData.get() && poll(&early, 1, earlyWait) > 0) {
        reply("425 The data connection was lost.");
        return nullptr;
    }
    reply("150 Here it comes.");
    m_transferring = true;
    auto data = std::make_unique<Stream>(std::move(handle), m_drop);
    if (!m_protectData) {
        return data;
    }
    const TlsContext context
        = m_fault.otherDataCertificate.get() ? makeTlsContext(makeCertificate()) : m_context;
    if (!data->startTlsAsServer(context.get())) {
        reply("522 SSL connection failed.");
        return nullptr;
    }
    ++(data->sessionReused() ? m_server.reused : m_server.fresh);
    if (m_fault.requireReuse.get() && !data->sessionReused()) {
        reply("522 SSL connection failed: session reuse required.");
        return nullptr;
    }
    return data;
}

FaultSession::Wrong FaultSession::wrongAfter(long &bytes, bool upload) const
{
    const std::pair<long, Wrong> faults[] = {
        { m_fault.dropDataAfter.get(), Wrong::Drop },
        { upload ? -1 : m_fault.truncateDataAfter.get(), Wrong::Truncate },
        { m_fault.stallDataAfter.get(), Wrong::Stall },
        { m_fault.dropAllAfter.get(), Wrong::DropAll },
        { upload ? m_fault.diskFullAfter.get() : -1, Wrong::DiskFull },
    };
    for (const auto &[limit, wrong] : faults) {
        if (limit >= 0) {
            if (!m_server.nextTransferIsFaulty()) {
                break;
            }
            bytes = limit;
            return wrong;
        }
    }
    return Wrong::Nothing;
}

void FaultSession::sendListing(const std::string &text)
{
    sendData(text, m_fault.faultyListings.get());
}

void FaultSession::list(const std::string &argument)
{
    std::string path = argument;
    const bool hidden = path.starts_with("-a");
    if (hidden) {
        path.erase(0, path.starts_with("-a ") ? 3 : 2);
    }
    if (hidden && m_fault.optionIsName.get()) {
        sendListing(m_fault.optionAnswer.get());
        return;
    }
    const std::string fixed = m_fault.listing.get();
    sendListing(fixed.empty() ? m_tree.list(path, hidden) : fixed);
}

void FaultSession::mlsd(const std::string &argument)
{
    const std::string fixed = m_fault.machineListing.get();
    sendListing(fixed.empty() ? m_tree.machineList(argument) : fixed);
}

void FaultSession::retr(const std::string &argument)
{
    const fs::path path = m_tree.resolve(argument);
    std::error_code error;
    const long offset = std::exchange(m_offset, 0);
    if (!fs::is_regular_file(path, error)) {
        reply("550 No such file.");
        return;
    }
    std::string text = readFile(path);
    if (offset > static_cast<long>(text.size())) {
        reply("554 Restart beyond the end.");
        return;
    }
    text.erase(0, static_cast<std::size_t>(offset));
    sendData(m_type == 'A' ? withCarriageReturns(text) : std::move(text), true);
}

void FaultSession::sendData(std::string bytes, bool mayBeFaulty)
{
    const auto data = openData();
    if (!data) {
        return;
    }
    long limit = -1;
    const Wrong wrong = mayBeFaulty ? wrongAfter(limit, false) : Wrong::Nothing;
    if (limit >= 0) {
        bytes.resize(std::min(bytes.size(), static_cast<std::size_t>(limit)));
    }
    for (std::size_t at = 0; at < bytes.size(); at += blockSize) {
        if (!data->write(std::string_view(bytes).substr(at, blockSize))) {
            data->drop();
            reply("426 Failure writing network stream.");
            return;
        }
        if (!mayGoOn(*data)) {
            return;
        }
    }
    finishTransfer(*data, wrong);
}

void FaultSession::stor(const std::string &argument)
{
    receiveData(m_tree.resolve(argument), std::exchange(m_offset, 0));
}

void FaultSession::appe(const std::string &argument)
{
    const fs::path path = m_tree.resolve(argument);
    std::error_code missing;
    const auto size = fs::file_size(path, missing);
    m_offset = 0;
    receiveData(path, missing ? 0 : static_cast<long>(size));
}

void FaultSession::receiveData(const fs::path &path, long offset)
{
    if (!m_fault.storesAside.get()) {
        receiveInto(path, offset);
        return;
    }
    const fs::path aside = path.string() + ".aside";
    std::error_code none; // there may be no older file
    fs::copy_file(path, aside, fs::copy_options::overwrite_existing, none);
    if (receiveInto(aside, offset)) {
        fs::rename(aside, path);
    } else {
        fs::remove(aside);
    }
}

/// @return whether the data arrived to the end
bool FaultSession::receiveInto(const fs::path &path, long offset)
{
    const Handle file(
        open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (offset == 0 ? O_TRUNC : 0), 0644));
    if (!file) {
        reply("553 Could not create file.");
        return false;
    }
    const auto data = openData();
    if (!data) {
        return false;
    }
    long limit = -1;
    const Wrong wrong = wrongAfter(limit, true);
    std::string block;
    bool endedInCr = false; // a line end may come in two blocks
    long got = 0;
    for (long total = 0; limit < 0 || total < limit; total += got) {
        block.clear();
        const long room = limit < 0 ? static_cast<long>(blockSize) : limit - total;
        got = data->read(block, std::min(blockSize, static_cast<std::size_t>(room)), -1);
        if (got <= 0) {
            break;
        }
        if (m_type == 'A') {
            offset -= endedInCr && block.starts_with('\n') ? 1 : 0;
            endedInCr = block.ends_with('\r');
            removeCarriageReturns(block);
        }
        if (pwrite(file.get(), block.data(), block.size(), offset) < 0) {
            reply("451 Failure writing to local file.");
            return false;
        }
        offset += static_cast<long>(block.size());
        if (!mayGoOn(*data)) {
            return false;
        }
    }
    if (got < 0) {
        data->drop();
        reply("426 Failure reading network stream.");
        return false;
    }
    finishTransfer(*data, wrong);
    return wrong == Wrong::Nothing;
}

void FaultSession::finishTransfer(Stream &data, Wrong wrong)
{
    switch (wrong) {
    case Wrong::Drop:
        data.drop();
        reply("426 Connection closed; transfer aborted.");
        return;
    case Wrong::Stall:
        waitForClient(data);
        return;
    case Wrong::DropAll:
        data.drop();
        m_control.drop();
        m_open = false;
        return;
    case Wrong::DiskFull:
        data.drop();
        reply(m_fault.diskFullReply.get());
        return;
    case Wrong::Nothing:
    case Wrong::Truncate:
        break;
    }
    if (m_fault.noCloseNotify.get()) {
        data.closeWithoutNotice();
    } else {
        data.close();
    }
    const std::string text = m_fault.finalReply.get();
    if (!m_fault.noFinalReply.get()) {
        reply(text.empty() ? "226 Transfer complete." : text);
    }
}

bool FaultSession::mayGoOn(Stream &data)
{
    if (abortArrived()) {
        data.drop();
        reply("426 Aborted.");
        return false;
    }
    std::string line;
    while (m_fault.refusesDuringTransfers.get() && m_buffer.find('\n') != std::string::npos
           && readLine(line)) {
        reply("503 Not during a transfer.");
    }
    while (m_fault.answersDuringTransfers.get() && m_buffer.find('\n') != std::string::npos
           && readLine(line)) {
        execute(line);
        if (!m_transferring) {
            data.close(); // as if that were all
            return false;
        }
    }
    return true;
}

/// Whether ABOR has arrived, perhaps behind Telnet's signals.
bool FaultSession::abortArrived()
{
    pump(0);
    return m_buffer.find("ABOR") != std::string::npos;
}

/// Waits until the client closes the data connection, aborts or goes away.
void FaultSession::waitForClient(Stream &data)
{
    std::string ignored;
    for (;;) {
        pollfd handles[] = { { m_drop, POLLIN, 0 },
                             { m_control.handle(), POLLIN, 0 },
                             { data.handle(), POLLRDHUP, 0 } };
        poll(handles, 3, -1);
        if (handles[0].revents != 0) {
            m_open = false;
            return;
        }
        if (handles[1].revents != 0) {
            const std::size_t before = m_buffer.size();
            const bool abort = abortArrived();
            if (abort || m_buffer.size() == before) {
                break; // ABOR, or the client has gone
            }
        }
        if (handles[2].revents != 0) {
            break;
        }
    }
    data.drop();
    reply("426 Transfer aborted.");
}

} // namespace servers
