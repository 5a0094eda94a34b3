#include "dialogs/frmAbout.h"

#include <QAbstractButton>
#include <QLabel>
#include <QListWidget>
#include <QSysInfo>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(KernelVersion, IsMajorPointMinor)
{
    EXPECT_EQ(kernelVersion(u"6.1.0-18-amd64"_s), u"6.1"_s);
    EXPECT_EQ(kernelVersion(u"5.15"_s), u"5.15"_s);
    EXPECT_EQ(kernelVersion(u"unknown"_s), u"unknown"_s);
}

TEST(NetworkInfo, DescribesThisComputer)
{
    const NetworkInfo info = readNetworkInfo();
    EXPECT_EQ(info.hostName, QSysInfo::machineHostName());
    EXPECT_EQ(info.version, kernelVersion(QSysInfo::kernelVersion()));
    EXPECT_EQ(info.status, u"Running"_s);
    EXPECT_EQ(info.description, u"POSIX-Sockets, Linux "_s + QSysInfo::kernelVersion());
    const auto isLoopback = [](const QString &address) {
        return address == u"::1"_s || address.startsWith(u"127."_s);
    };
    ASSERT_FALSE(info.addresses.isEmpty());
    bool loopbackSeen = false;
    for (const QString &address : info.addresses) {
        EXPECT_FALSE(loopbackSeen && !isLoopback(address)) << "loopback must come last";
        loopbackSeen = loopbackSeen || isLoopback(address);
    }
    EXPECT_TRUE(loopbackSeen);
}

TEST(NetworkBox, ShowsTheValuesBesideTheirLabels)
{
    frmAbout box({ u"<b>wolke</b>"_s,
                   { u"192.0.2.7"_s, u"127.0.0.1"_s },
                   u"6.1"_s,
                   u"Running"_s,
                   u"POSIX-Sockets, Linux 6.1.0"_s });
    EXPECT_EQ(box.windowTitle(), u"Winsock Info"_s);
    EXPECT_EQ(box.objectName(), u"frmAbout"_s);
    const auto text = [&box](const QString &name) { return box.findChild<QLabel *>(name)->text(); };
    EXPECT_EQ(text(u"lblHostname"_s), u"<b>wolke</b>"_s);
    EXPECT_EQ(box.findChild<QLabel *>(u"lblHostname"_s)->textFormat(), Qt::PlainText);
    EXPECT_EQ(text(u"lblVersion"_s), u"6.1"_s);
    EXPECT_EQ(text(u"lblStatus"_s), u"Running"_s);
    EXPECT_EQ(text(u"lblDescription"_s), u"POSIX-Sockets, Linux 6.1.0"_s);
    const auto *addresses = box.findChild<QListWidget *>(u"lbxAddress"_s);
    ASSERT_EQ(addresses->count(), 2);
    EXPECT_EQ(addresses->item(0)->text(), u"192.0.2.7"_s);
    QMap<QString, QString> labels;
    for (const QLabel *label : box.findChildren<QLabel *>()) {
        if (label->buddy() != nullptr) {
            labels[label->buddy()->objectName()] = label->text();
        }
    }
    EXPECT_EQ(labels,
              (QMap<QString, QString> { { u"lblHostname"_s, u"Local Hostname:"_s },
                                        { u"lbxAddress"_s, u"Local Address(es):"_s },
                                        { u"lblVersion"_s, u"Winsock Version:"_s },
                                        { u"lblStatus"_s, u"Status:"_s },
                                        { u"lblDescription"_s, u"Beschreibung"_s } }));
}

TEST(NetworkBox, OkCloses)
{
    frmAbout box;
    box.show();
    box.findChild<QAbstractButton *>(u"cmdOk"_s)->click();
    EXPECT_FALSE(box.isVisible());
}
