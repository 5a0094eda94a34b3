#include "common/addresses.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class AddressFiles : public testing::Test {
protected:
    QString write(const QString &name, const QByteArray &content)
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    const QTemporaryDir m_folder;
};

} // namespace

TEST_F(AddressFiles, DefaultsReachNobody)
{
    const AddressesRead read = readAddresses({ m_folder.filePath(u"missing.ini"_s) });
    EXPECT_TRUE(read.problems.isEmpty());
    for (const QString &value : { read.addresses.homePage, read.addresses.secondHomePage,
                                  read.addresses.faq, read.addresses.update }) {
        EXPECT_TRUE(value.startsWith(u"https://"_s) && value.contains(u".example/"_s))
            << value.toStdString();
    }
    EXPECT_TRUE(read.addresses.supportMail.endsWith(u".example"_s));
    EXPECT_TRUE(read.addresses.officeMail.endsWith(u".example"_s));
    EXPECT_TRUE(read.addresses.update.contains(u"2.20"_s));
}

TEST_F(AddressFiles, LaterFilesWinKeyByKey)
{
    const QString first = write(u"first.ini"_s,
                                "[Addresses]\nHomePage=https://a.example/x?y=1,2\n"
                                "SupportMail=hilfe@a.example\n");
    const QString second
        = write(u"second.ini"_s, "[Addresses]\nSupportMail=web+ftp@b.example\nFaq=\n");
    const AddressesRead read = readAddresses({ first, second });
    EXPECT_TRUE(read.problems.isEmpty());
    EXPECT_EQ(read.addresses.homePage, u"https://a.example/x?y=1,2"_s);
    EXPECT_EQ(read.addresses.supportMail, u"web+ftp@b.example"_s);
    EXPECT_EQ(read.addresses.faq, Addresses {}.faq) << "an empty value changes nothing";
}

TEST_F(AddressFiles, RefusesWhatWouldStartPrograms)
{
    const QString file
        = write(u"bad.ini"_s,
                "[Addresses]\nHomePage=file:///bin/sh\nUpdate=javascript:1\nFaq=/etc/passwd\n"
                "SecondHomePage=\"https://\"\n"
                "SupportMail=a@b.example?bcc=c@d.example\nOfficeMail=nobody\n");
    const AddressesRead read = readAddresses({ file });
    const Addresses defaults;
    EXPECT_EQ(read.addresses.homePage, defaults.homePage);
    EXPECT_EQ(read.addresses.secondHomePage, defaults.secondHomePage);
    EXPECT_EQ(read.addresses.update, defaults.update);
    EXPECT_EQ(read.addresses.faq, defaults.faq);
    EXPECT_EQ(read.addresses.supportMail, defaults.supportMail);
    EXPECT_EQ(read.addresses.officeMail, defaults.officeMail);
    EXPECT_EQ(read.problems.size(), 6);
    EXPECT_TRUE(read.problems.value(0).contains(u"HomePage"_s)
                && read.problems.value(0).contains(file));
}

TEST_F(AddressFiles, TheFileBesideTheProgramComesLast)
{
    EXPECT_EQ(addressFiles(u"/opt/ftp"_s),
              (QStringList { u"/etc/tarvelo-ftp/addresses.ini"_s, u"/opt/ftp/addresses.ini"_s }));
    EXPECT_EQ(addressFiles(u"/opt/ftp/"_s).last(), u"/opt/ftp/addresses.ini"_s);
}
