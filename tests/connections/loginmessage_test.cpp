#include "connections/loginmessage.h"

#include "connections/advice.h"
#include "connections/host.h"
#include "connections/logintexts.h"

#include <QSet>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(LoginMessage, IsFoundByTheDescription)
{
    struct Row {
        QString description;
        int number;
        bool errorMsg;
        bool failed;
        QString box;
    };
    const QList<Row> table {
        { {}, 530, false, false, {} },
        { u"530 Login incorrect."_s, 0, false, false, {} },
        { u"530 Login incorrect."_s, -1, false, false, {} },
        { u"530 Login incorrect."_s, 530, false, true, loginText },
        { u"530 Login incorrect."_s, 530, true, true, loginText },
        { u"Port 1530 is wrong"_s, 1, false, true, loginText }, // anywhere counts
        { u"No such host is known: files01"_s, 1006, false, true, hostText },
        { u"No such host is known: files01"_s, 1006, true, true, hostText },
        { u"530 No such host is known"_s, 1, false, true, loginText },
        { u"no such host is known"_s, 1, false, true, otherText }, // exact case
        { u"Connection refused"_s, 1007, false, true, otherText },
        { u"Connection refused"_s, 1007, true, true, {} },
    };
    for (const Row &row : table) {
        SCOPED_TRACE(row.description.toStdString());
        const LoginMessage message = loginMessageFor(row.description, row.number, row.errorMsg);
        EXPECT_EQ(message.failed, row.failed);
        EXPECT_EQ(message.box, row.box);
    }
}

TEST(LoginMessage, TheCaptionNamesTheServer)
{
    EXPECT_EQ(windowCaption(u"files01"_s), u"Tarvelo FTP (Connected to: files01)"_s);
    EXPECT_EQ(windowCaption({}), u"Tarvelo FTP"_s);
}

TEST(LoginMessage, TimeoutsBecomeMilliseconds)
{
    EXPECT_EQ(timeoutMilliseconds(30), 30000);
    EXPECT_EQ(timeoutMilliseconds(0), 0);
    EXPECT_EQ(timeoutMilliseconds(9999), 9999000);
    EXPECT_EQ(timeoutMilliseconds(2147483), 2147483000);
    EXPECT_EQ(timeoutMilliseconds(2147484), -1);
    EXPECT_EQ(timeoutMilliseconds(2147483647), -1);
}

TEST(Host, IsCleanedOnUse)
{
    const QList<std::pair<QString, QString>> table {
        { u"files01"_s, u"files01"_s },
        { u"  files01  "_s, u"files01"_s },
        { u"ftp://files01/"_s, u"files01"_s },
        { u"FTP://files01//"_s, u"files01"_s },
        { u" ftp://files01.example.net / "_s, u"files01.example.net"_s },
        { u"ftpes://files01"_s, u"files01"_s },
        { u"ftp://"_s, QString() },
        { u"::1"_s, u"::1"_s },
        { QString(), QString() },
    };
    for (const auto &[typed, cleaned] : table) {
        EXPECT_EQ(cleanHost(typed), cleaned) << typed.toStdString();
    }
}

TEST(Host, PortsAreOneTo65535)
{
    for (const int port : { 1, 21, 65535 }) {
        EXPECT_TRUE(isPort(port));
    }
    for (const int port : { 0, -1, 65536, 2147483647 }) {
        EXPECT_FALSE(isPort(port));
    }
}

TEST(Advice, EveryFailureHasOneSentenceOfItsOwn)
{
    using ftp::ErrorKind;
    QSet<QString> sentences;
    for (const ErrorKind kind :
         { ErrorKind::Refused,          ErrorKind::LoginRefused,   ErrorKind::TooManyConnections,
           ErrorKind::TlsRequired,      ErrorKind::TlsFailed,      ErrorKind::CertificateRejected,
           ErrorKind::UnknownHost,      ErrorKind::ConnectRefused, ErrorKind::Unreachable,
           ErrorKind::ConnectionClosed, ErrorKind::DataConnection, ErrorKind::Timeout,
           ErrorKind::Protocol,         ErrorKind::Proxy,          ErrorKind::BadArgument,
           ErrorKind::UnsafeName,       ErrorKind::LocalFile,      ErrorKind::LocalDiskFull,
           ErrorKind::Truncated,        ErrorKind::TooDeep,        ErrorKind::RemoteLonger }) {
        const QString sentence = adviceFor(kind);
        EXPECT_TRUE(sentence.endsWith(u'.'));
        EXPECT_EQ(sentence.count(u'.'), 1) << sentence.toStdString();
        EXPECT_FALSE(sentences.contains(sentence)) << sentence.toStdString();
        sentences.insert(sentence);
    }
    for (const ErrorKind kind : { ErrorKind::Aborted, ErrorKind::Busy, ErrorKind::NotConnected }) {
        EXPECT_EQ(adviceFor(kind), QString());
    }
}
