#pragma once

#include "app/windowbench.h"
#include "servers/everyserver.h"
#include "servers/fixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QTreeView>

/// The main window, logged in to a real server: a web space on the right, another one on the left.
class OnlineBench : public servers::EveryServerWith<WindowBench> {
protected:
    void SetUp() override
    {
        EveryServerWith::SetUp();
        if (IsSkipped()) {
            return;
        }
        server = std::make_unique<servers::Server>(GetParam());
        servers::makeWebSpace(server->root() / "web");
        servers::writeFile(server->root() / "web" / "Fotos [2020]" / "eins.jpg", "ein Bild");
        server->adoptFiles();
        local = home.path().toStdString() + "/lokal";
        servers::makeWebSpace(std::filesystem::path(local) / "seite");
        servers::writeRandomFile(std::filesystem::path(local) / "gross.bin", 3000000);
        login();
    }

    /// Logs in by the eleven fields, as another program would.
    void login()
    {
        const QStringList fields { QStringLiteral("127.0.0.1"),
                                   QString::fromStdString(server->user()),
                                   QString::fromStdString(server->password()),
                                   QString::fromStdString(local),
                                   QStringLiteral("/web"),
                                   QStringLiteral("10"),
                                   QString::number(server->port()),
                                   QStringLiteral("1"),
                                   QStringLiteral("1"),
                                   {},
                                   {} };
        prompts.expectMessage(
            QStringLiteral("Überprüfen Sie ob auf der rechten Seite (dem Server), das richtige "
                           "Verzeichnis eingestellt ist.\nWenn ja, drücken Sie den "
                           "Übertragenbutton -> um mit dem Kopiervorgang zu beginnen."));
        open(fields.join(u'\t'));
        window->load_commands();
        ASSERT_EQ(ftp.state(), FtpControl::Connected) << log();
        settle();
    }

    void settle()
    {
        ASSERT_TRUE(
            QTest::qWaitFor([this] { return !ftp.isBusy() && !window->localPane().isReading(); }));
    }
    std::string log() const
    {
        return find<QWidget>("txtLog")->property("plainText").toString().toStdString();
    }
    QString remoteFolder() const { return find<QComboBox>("cmbRemoteDir")->currentText(); }
    void press(const char *name)
    {
        auto *pressed = find<QAbstractButton>(name);
        ASSERT_TRUE(pressed->isEnabled()) << name;
        pressed->click();
        settle();
    }
    void doubleClick(FilePane &pane, const char *name)
    {
        const int row = name == nullptr ? 0 : rowOf(pane, name);
        ASSERT_GE(row, 0) << name << '\n' << log();
        pane.view().scrollTo(pane.model().index(row, 0));
        QTest::mouseDClick(pane.view().viewport(), Qt::LeftButton, {},
                           pane.view().visualRect(pane.model().index(row, 0)).center());
        settle();
    }
    std::string queue() const
    {
        const QAbstractItemModel *rows = find<QTreeView>("lvwStatus")->model();
        QStringList lines;
        for (int row = 0; row < rows->rowCount(); ++row) {
            const QString path = rows->index(row, 1).data().toString();
            lines << rows->index(row, 0).data().toString() + u' '
                    + rows->index(row, 3).data().toString() + u' ' + path.section(u'/', -1);
        }
        return lines.join(u'|').toStdString();
    }
    std::filesystem::path remote(const char *name) const { return server->root() / "web" / name; }
    std::filesystem::path localPath(const char *name) const
    {
        return std::filesystem::path(local) / name;
    }

    std::unique_ptr<servers::Server> server;
    std::string local;
};
