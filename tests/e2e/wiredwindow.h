#pragma once

#include "app/windowbench.h"
#include "servers/faultserver.h"
#include "servers/fixture.h"

#include <QAbstractButton>

/// The main window beside a server that can be told to fail. There is one file on each side.
class WiredWindow : public WindowBench {
protected:
    WiredWindow()
    {
        globals.settings.encryption = static_cast<int>(FtpEncryption::Never);
        servers::writeFile(server.root() / "da.txt", "hier");
        QDir(home.path()).mkdir(QStringLiteral("lokal"));
        servers::writeFile(localPath("neu.txt"), "neu");
    }

    std::filesystem::path localPath(const char *name) const
    {
        return std::filesystem::path(home.path().toStdString()) / "lokal" / name;
    }
    /// @return the command line that logs in
    QString fields(const QString &type = QStringLiteral("1")) const
    {
        const QStringList fields { QStringLiteral("127.0.0.1"),
                                   QString::fromStdString(server.user()),
                                   QString::fromStdString(server.password()),
                                   home.filePath(QStringLiteral("lokal")),
                                   {},
                                   QStringLiteral("10"),
                                   QString::number(server.port()),
                                   type,
                                   QStringLiteral("1"),
                                   {},
                                   {} };
        return fields.join(u'\t');
    }
    void start(const QString &type = QStringLiteral("1"))
    {
        open(fields(type));
        window->load_commands();
    }
    void expectAdvice()
    {
        prompts.expectMessage(
            QStringLiteral("Überprüfen Sie ob auf der rechten Seite (dem Server), das richtige "
                           "Verzeichnis eingestellt ist.\nWenn ja, drücken Sie den "
                           "Übertragenbutton -> um mit dem Kopiervorgang zu beginnen."));
    }
    void login(const QString &type = QStringLiteral("1"))
    {
        expectAdvice();
        start(type);
        ASSERT_EQ(ftp.state(), FtpControl::Connected) << log().toStdString();
    }
    QString log() const { return find<QWidget>("txtLog")->property("plainText").toString(); }
    void click(const char *name) { find<QAbstractButton>(name)->click(); }

    servers::FaultServer server;
};
