#pragma once

#include "ftp/client.h"
#include "ftp/ftpcontrol.h"

/// Values of the engine in the program's form and back.

/// Text of the server: UTF-8, else Windows-1252.
[[nodiscard]] QString ftpText(const std::string &raw);
[[nodiscard]] FtpError ftpError(const ftp::Error &error);
[[nodiscard]] FtpCertificate ftpCertificate(const ftp::CertificateQuestion &question);
[[nodiscard]] RemoteListing ftpListing(const ftp::Folder &folder);
/// The kind of a reply as an event's status.
[[nodiscard]] FtpEvent::Status ftpStatus(const ftp::Reply &reply);
[[nodiscard]] ftp::Type engineType(int transferType);
[[nodiscard]] ftp::Proxy engineProxy(const FtpProxy &proxy);
/// Folder of a pattern: one pair of quotes and one final "/*" (or "\*") taken off, the rest as it
/// is.
[[nodiscard]] QString folderOfPattern(const QString &pattern);
