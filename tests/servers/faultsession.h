// One control connection of the fault server.
#pragma once

#include "servers/faultserver_p.h"
#include "servers/faulttree.h"

#include <deque>
#include <map>

namespace servers {

class FaultSession {
public:
    /// @param drop  becomes readable when the session is to end with a reset
    FaultSession(FaultServer::Private &server, Handle connection, int drop, int number);
    void run();

private:
    using Handler = void (FaultSession::*)(const std::string &argument);
    static const std::map<std::string, Handler> &handlers();

    // Lines and replies
    /// Takes what the client has sent; waits so long, -1 = until something or the end comes.
    void pump(int milliseconds);
    bool readLine(std::string &line);
    void execute(const std::string &line);
    bool obeyRule(const std::string &verb, const std::string &argument);
    bool mayRun(const std::string &verb);
    void reply(const std::string &text);
    void waitForDelay();
    void send(const std::string &bytes);
    void stall();
    void discardEarlyBytes();

    // Login
    void greet();
    void user(const std::string &argument);
    void pass(const std::string &argument);
    void acct(const std::string &argument);
    void logIn();
    void auth(const std::string &argument);
    void pbsz(const std::string &argument);
    void prot(const std::string &argument);
    void feat(const std::string &argument);
    void quit(const std::string &argument);

    // Folders and files
    void pwd(const std::string &argument);
    void cwd(const std::string &argument);
    void cdup(const std::string &argument);
    void mkd(const std::string &argument);
    void rmd(const std::string &argument);
    void dele(const std::string &argument);
    void rnfr(const std::string &argument);
    void rnto(const std::string &argument);
    void size(const std::string &argument);
    void mdtm(const std::string &argument);
    void mfmt(const std::string &argument);
    void site(const std::string &argument);

    // Settings and small talk
    void type(const std::string &argument);
    void rest(const std::string &argument);
    void noop(const std::string &argument);
    void abor(const std::string &argument);
    void syst(const std::string &argument);
    void opts(const std::string &argument);

    // Transfers (faulttransfer.cpp)
    void pasv(const std::string &argument);
    void epsv(const std::string &argument);
    void port(const std::string &argument);
    void eprt(const std::string &argument);
    void list(const std::string &argument);
    void mlsd(const std::string &argument);
    void retr(const std::string &argument);
    void stor(const std::string &argument);
    void appe(const std::string &argument);
    void openPassivePort();
    std::unique_ptr<Stream> openData();
    void sendListing(const std::string &text);
    void sendData(std::string bytes, bool mayBeFaulty);
    void receiveData(const std::filesystem::path &path, long offset);
    bool receiveInto(const std::filesystem::path &path, long offset);
    enum class Wrong { Nothing, Drop, Truncate, Stall, DropAll, DiskFull };
    /// What goes wrong with the next transfer. @param bytes  receives after how many bytes
    Wrong wrongAfter(long &bytes, bool upload) const;
    void finishTransfer(Stream &data, Wrong wrong);
    /// Looks at what has arrived during a transfer. @return false when the transfer is over by that
    bool mayGoOn(Stream &data);
    bool abortArrived();
    void waitForClient(Stream &data);

    FaultServer::Private &m_server;
    Faults &m_fault;
    Stream m_control;
    int m_drop;
    int m_number;
    std::string m_buffer; ///< received, not yet looked at
    struct Chunk {
        std::size_t bytes;
        std::chrono::steady_clock::time_point time;
    };
    std::deque<Chunk> m_chunks; ///< when the bytes of the buffer arrived
    std::chrono::steady_clock::time_point m_arrived; ///< of the command that is carried out
    bool m_open = true;
    bool m_tooMany = false;
    bool m_transferring = false;

    std::string m_user;
    bool m_passwordGood = false;
    bool m_loggedIn = false;
    bool m_protectData = false;
    TlsContext m_context;

    FaultTree m_tree;
    std::string m_renameFrom;
    char m_type = 'A';
    long m_offset = 0;
    Handle m_passive;
    std::string m_activeAddress;
    std::uint16_t m_activePort = 0;
};

} // namespace servers
