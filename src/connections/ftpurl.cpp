#include "connections/ftpurl.h"

#include "common/mo_standard.h"

#include <QUrl>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int DefaultPort = 21;
constexpr int EncryptionAsSet = -1;
constexpr int EncryptionAlways = 1;

bool hasControlCharacters(const QString &text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.category() == QChar::Other_Control; });
}

/// Takes ";type=x" off the path. @return the transfer type in the control's coding
int takeTransferType(QString &path)
{
    constexpr int Ascii = 0;
    constexpr int Binary = 1;
    const qsizetype at = path.lastIndexOf(u";type="_s, -1, Qt::CaseInsensitive);
    if (at < 0) {
        return Binary;
    }
    const QString type = path.mid(at + 6).toLower();
    path.truncate(at);
    return type == u"a"_s ? Ascii : Binary;
}

/// The folder of an encoded path; separators count before decoding, so that "%2F" can start a
/// path from the root.
QString folderOf(QString path)
{
    if (path.startsWith(u'/')) {
        path.remove(0, 1);
    }
    const qsizetype lastPart = path.lastIndexOf(u'/') + 1;
    if (path.indexOf(u'.', lastPart) >= 0) {
        path.truncate(lastPart);
    }
    return QUrl::fromPercentEncoding(path.toUtf8());
}

} // namespace

std::optional<ConnectionProfile> profileFromUrl(const QString &text)
{
    const QUrl url(trimBlanks(text), QUrl::TolerantMode);
    const bool encrypted = url.scheme() == u"ftpes"_s;
    if (!url.isValid() || (!encrypted && url.scheme() != u"ftp"_s)) {
        return std::nullopt;
    }
    ConnectionProfile profile;
    profile.RemoteHost = url.host(QUrl::FullyDecoded);
    profile.RemotePort = url.port(DefaultPort);
    profile.UserName = url.userName(QUrl::FullyDecoded);
    profile.Password = url.password(QUrl::FullyDecoded);
    if (profile.UserName.isEmpty()) {
        profile.UserName = u"anonymous"_s;
    }
    QString path = url.path(QUrl::FullyEncoded);
    profile.TransferType = takeTransferType(path);
    profile.RemoteDir = folderOf(path);
    profile.encryption = encrypted ? EncryptionAlways : EncryptionAsSet;

    const QStringList parts { profile.RemoteHost, profile.UserName, profile.Password,
                              profile.RemoteDir };
    const bool usable = !profile.RemoteHost.isEmpty() && profile.RemotePort > 0
        && std::none_of(parts.begin(), parts.end(), hasControlCharacters);
    return usable ? std::optional(profile) : std::nullopt;
}
