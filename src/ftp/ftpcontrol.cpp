#include "ftp/ftpcontrol.h"

struct FtpControl::Private {
    RemoteListing listing;
    int transferType = TypeBinary;
};

namespace {
tl::unexpected<FtpError> notConnected()
{
    return tl::unexpected<FtpError>(
        FtpError { ftp::ErrorKind::NotConnected, 0, QStringLiteral("Not connected") });
}
} // namespace

FtpControl::FtpControl(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
}
FtpControl::~FtpControl() = default;
int FtpControl::state() const { return Closed; }
bool FtpControl::isBusy() const { return false; }
void FtpControl::setTimeout(int) { }
void FtpControl::setPassiveMode(bool) { }
void FtpControl::setTransferType(int type) { d->transferType = type; }
int FtpControl::transferType() const { return d->transferType; }
void FtpControl::setStoreMode(int) { }
void FtpControl::setProxy(const FtpProxy &) { }
void FtpControl::setEncryption(FtpEncryption) { }
void FtpControl::setSessionLimit(int) { }
void FtpControl::setTrustFile(const QString &) { }
void FtpControl::setCertificateQuestion(std::function<FtpTrust(const FtpCertificate &)>) { }
FtpStatus FtpControl::connectAndLogin(const QString &, const QString &, const QString &, const QString &, int) { return notConnected(); }
FtpStatus FtpControl::logout() { return notConnected(); }
void FtpControl::close() { }
FtpResult<bool> FtpControl::resumeSupport() { return notConnected(); }
QString FtpControl::currentFolder() const { return {}; }
FtpStatus FtpControl::setCurrentFolder(const QString &) { return notConnected(); }
FtpStatus FtpControl::changeToParentFolder() { return notConnected(); }
FtpStatus FtpControl::list() { return notConnected(); }
const RemoteListing &FtpControl::listing() const { return d->listing; }
FtpStatus FtpControl::getFile(const QString &, const QString &, qint64 &) { return notConnected(); }
FtpStatus FtpControl::putFile(const QString &, const QString &, qint64 &) { return notConnected(); }
FtpStatus FtpControl::getMultiple(const QString &, const QString &) { return notConnected(); }
FtpStatus FtpControl::putMultiple(const QString &, const QString &) { return notConnected(); }
FtpStatus FtpControl::makeFolder(const QString &) { return notConnected(); }
FtpStatus FtpControl::removeFolder(const QString &) { return notConnected(); }
FtpStatus FtpControl::deleteFile(const QString &) { return notConnected(); }
FtpStatus FtpControl::rename(const QString &, const QString &) { return notConnected(); }
FtpStatus FtpControl::sendRaw(const QString &) { return notConnected(); }
FtpStatus FtpControl::removeTree(const QString &) { return notConnected(); }
