#pragma once

#include "ftp/ftpoperations.h"

/// Proxy or firewall between us and the server; the types are those of ConnectionProfile.
struct FtpProxy {
    /// 0 none, 1 SOCKS4, 2 SOCKS5, 3 SITE, 4 user login, 5 user no login, 6 OPEN, 7 pipe.
    int type = 0;
    QString host, user, password;
    int port = 0;
};

/// Whether the control connection is encrypted.
enum class FtpEncryption { Automatic, Always, Never };

/// What the login and logout side asks of the session; FtpControl is the real one.
class FtpConnection : public FtpOperations {
public:
    /// Limit of inactivity for each wait; 0 = no limit.
    virtual void setTimeout(int milliseconds) = 0;
    virtual void setPassiveMode(bool passive) = 0;
    virtual void setProxy(const FtpProxy &proxy) = 0; ///< used by the next connect
    virtual void setEncryption(FtpEncryption encryption) = 0; ///< used by the next connect
    /// Most connections of a folder transfer, 1 or more.
    virtual void setSessionLimit(int sessions) = 0;

    virtual FtpStatus connectAndLogin(const QString &server, const QString &user,
                                      const QString &password, const QString &account, int port)
        = 0;
    /// Drops the connection at once, as close does, and tells when not all went well.
    virtual FtpStatus drop() = 0;
    /// Ends the session politely; the state is Closed afterwards unless an error is returned.
    virtual FtpStatus logout() = 0;
    /// Whether transfers may be restarted at an offset; asked from the server once per session.
    virtual FtpResult<bool> resumeSupport() = 0;
};
