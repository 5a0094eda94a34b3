// What a FaultServer does wrong; every fault is off at first.
#pragma once

#include "servers/certificate.h"

#include <mutex>
#include <string>

namespace servers {

/// A value that tests set while the server's threads read it.
template <class T> class Shared {
public:
    Shared(T value = {})
        : m_value(std::move(value))
    {
    }
    Shared(const Shared &) = delete;
    Shared &operator=(const Shared &) = delete;
    Shared &operator=(T value)
    {
        const std::scoped_lock lock(m_mutex);
        m_value = std::move(value);
        return *this;
    }
    [[nodiscard]] T get() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_value;
    }

private:
    mutable std::mutex m_mutex;
    T m_value;
};

enum class ReplyShape {
    Usual,
    MultiLine, ///< lines in between that begin with digits, blanks or nothing
    LineFeedOnly, ///< without the CR
    OneByteAtATime,
    CodeOnly, ///< "226" and the line end, nothing else
};

/// Byte counts: -1 = never.
struct Faults {
    // Control connection
    Shared<std::string> greeting { "220 ready" }; ///< verbatim; a 421 closes the connection
    Shared<int> replyDelay; ///< milliseconds from a command's arrival to its reply: a long line
    Shared<ReplyShape> replyShape { ReplyShape::Usual };
    /// Bytes that arrive before the reply to the last command was sent are lost. Certain only
    /// together with replyDelay.
    Shared<bool> noPipelining;
    /// Commands that arrive during a transfer are answered at once, before its own last reply; PASV
    /// and EPSV close the running data connection then, and that reply never comes. Some servers do
    /// that.
    Shared<bool> answersDuringTransfers;
    Shared<bool> refusesDuringTransfers; ///< the same, but all of them are refused with 503
    Shared<std::string> surplusReply; ///< behind every reply, in a packet of its own
    Shared<int> maxSessions { -1 }; ///< further ones get tooManyReply
    Shared<std::string> tooManyReply { "421 Too many connections" }; ///< a 530 comes after PASS

    // Login and features
    Shared<bool> noPassword; ///< USER logs in
    Shared<bool> needAccount; ///< PASS is answered with 332
    Shared<bool> noMlsd; ///< not listed by FEAT and unknown
    Shared<bool> noUtf8; ///< not listed by FEAT
    Shared<bool> noRestStream; ///< not listed by FEAT
    /// In machine listings links look like what they lead to, and PWD tells the way that was taken.
    Shared<bool> machineHidesLinks;
    /// Links look like what they lead to; a folder entered through one is told by its own path.
    Shared<bool> hidesLinks;

    // Data connection: what happens after so many bytes of one transfer
    Shared<long> dropDataAfter { -1 }; ///< data connection reset, then 426
    Shared<long> truncateDataAfter { -1 }; ///< downloads: closed politely, then 226 all the same
    Shared<long> stallDataAfter { -1 }; ///< nothing more, until the client gives up
    Shared<long> dropAllAfter { -1 }; ///< both connections reset
    Shared<long> diskFullAfter { -1 }; ///< uploads: closed, then diskFullReply
    Shared<std::string> diskFullReply { "452 No space left on device" };
    Shared<int> faultyTransfers { -1 }; ///< only the next so many transfers do that; -1 = all
    Shared<bool> faultyListings; ///< listings are such transfers, too
    Shared<bool>
        dislikesEarlyData; ///< uploads: bytes that come before the 150 are a lost connection
    /// Uploads: what comes is put in the place of an older file only when all is there.
    Shared<bool> storesAside;
    Shared<bool> noFinalReply; ///< the 226 never comes
    Shared<std::string> finalReply; ///< in place of the 226 of an otherwise good transfer
    Shared<std::string> passiveAddress; ///< told in 227, as "10,9,9,9"; empty = the true one
    Shared<bool> deadPassivePort; ///< nobody listens on the port that is told
    Shared<bool> forgetRestart; ///< REST is answered with 350, but the file starts at 0
    Shared<bool> optionIsName; ///< "LIST -a" lists the file "-a", which is none: optionAnswer
    Shared<std::string> optionAnswer;
    Shared<std::string> listing; ///< sent verbatim for LIST when not empty
    Shared<std::string> machineListing; ///< the same for MLSD

    // TLS
    Shared<bool> tls; ///< AUTH TLS is offered and works
    Shared<bool> tlsRequired; ///< USER is refused in clear
    Shared<bool> brokenHandshake; ///< garbage in place of the server's part
    Shared<std::string> injectAfterAuth; ///< in clear, right behind the 234 line
    Shared<Certificate> certificate { makeCertificate() }; ///< of later handshakes
    Shared<bool> otherDataCertificate; ///< data connections show a certificate of their own
    Shared<bool> requireReuse; ///< data connections must take up the control's session
    Shared<bool> noCloseNotify; ///< data connections end without it
};

} // namespace servers
