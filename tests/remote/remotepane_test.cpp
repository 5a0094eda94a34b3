#include "remote/remotepanebench.h"

#include <QSignalSpy>
#include <QTimer>

TEST_F(RemotePaneTest, AListingShowsFoldersThenTheRestByName)
{
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    EXPECT_EQ(m_pane.model().row(row("b.txt")).tag, QStringLiteral("/www/b.txt"));
    EXPECT_EQ(kind("b.txt"), ItemKind::TextFile);
    EXPECT_TRUE(m_pane.selectedRows().isEmpty());
    EXPECT_EQ(m_pane.currentRow(), -1);
}

TEST_F(RemotePaneTest, ARefreshOfTheSameFolderSendsNoChangeOfFolder)
{
    m_pane.selectAll();
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_TRUE(m_ftp.commandsOf(QStringLiteral("CWD")).isEmpty()) << commands();
    EXPECT_EQ(m_ftp.commandsOf(QStringLiteral("LIST")).size(), 1) << commands();
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www"));
    EXPECT_TRUE(m_pane.selectedRows().isEmpty()) << "no selection survives a listing";
    expectPaused();
}

TEST_F(RemotePaneTest, AListingIsTextWhateverTheModeIs)
{
    m_ftp.setTransferType(TypeBinary);
    int type = -1;
    m_ftp.during = [&](const QString &) { type = m_ftp.transferType(); };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(type, TypeAscii) << "before it is asked for";
}

TEST_F(RemotePaneTest, CommandsAreOffAndPropertiesSetBeforeTheFolderChanges)
{
    const QStringList expected { QStringLiteral("SetCommandsEnabled 0 0 0 0"),
                                 QStringLiteral("SetFtpProperties") };
    const QString change = QStringLiteral("CWD");
    const auto refresh = [this] { m_pane.DoRemoteRefresh(QStringLiteral("/www/leer")); };
    EXPECT_EQ(callsBefore(change, refresh), expected);
    const auto enter = [this] { m_pane.EnterRemoteFolder(QStringLiteral("/www")); };
    EXPECT_EQ(callsBefore(change, enter), expected);
    const auto resolve = [this] { m_pane.ResolveLink(row("verweis")); };
    EXPECT_EQ(callsBefore(change, resolve), expected);
}

TEST_F(RemotePaneTest, TheBoxNamesTheFolderWhileItIsListed)
{
    QString text;
    m_ftp.during = [&](const QString &command) {
        if (command == u"LIST") {
            text = m_pane.folder();
            EXPECT_EQ(m_shell.calls.last(), QStringLiteral("SetFtpProperties"))
                << "the commands are on again";
        }
    };
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    EXPECT_EQ(text, QStringLiteral("/www/leer"));
}

TEST_F(RemotePaneTest, AFolderThatDiffersInCaseIsAnother)
{
    m_ftp.addFile(QStringLiteral("/WWW/a"), "1");
    m_pane.DoRemoteRefresh(QStringLiteral("/WWW"));
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD /WWW/"));
    EXPECT_EQ(names(), "<up> a");
}

TEST_F(RemotePaneTest, ARelativeFolderStaysSoWhereTheServerKnowsNoOther)
{
    m_ftp.addFile(QStringLiteral("/www/leer/a"), "1");
    m_ftp.rootless = true;
    m_pane.DoRemoteRefresh(QStringLiteral("leer"));
    EXPECT_EQ(m_pane.model().row(row("a")).tag, QStringLiteral("leer/a"));
}

TEST_F(RemotePaneTest, AFolderThatAnotherCommandListsIsTheCurrentOne)
{
    m_pane.RememberRemoteFolder();
    m_pane.listFolder(QStringLiteral("/www/leer")); // as an upload into it does
    m_pane.setFolderText(QStringLiteral("/www/leer"));
    EXPECT_EQ(m_globals.session.CurrentRemoteDir, QStringLiteral("/www/leer"));
    m_ftp.busy = true;
    m_pane.box().setCurrentIndex(0);
    Q_EMIT m_pane.box().activated(0);
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/leer")) << "the next upload would go elsewhere";
    m_ftp.busy = false;
    m_ftp.during = [this](const QString &) { m_ftp.close(); };
    m_pane.listFolder(QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(m_globals.session.CurrentRemoteDir, QStringLiteral("/www/leer"));
}

TEST_F(RemotePaneTest, WithoutAnIdleSessionNothingHappens)
{
    for (const bool busy : { true, false }) {
        m_ftp.busy = busy;
        m_ftp.connectionState = busy ? FtpOperations::Connected : FtpOperations::Closed;
        m_pane.DoRemoteRefresh(QStringLiteral("/"));
        m_pane.EnterRemoteFolder(QStringLiteral("cgi-bin"));
        m_pane.GoUpRemote();
        m_pane.OpenRemoteRow(row("cgi-bin"), true);
        m_pane.SortRemoteByName();
        Q_EMIT m_pane.view().columnClicked(ColumnSize);
        EXPECT_EQ(commands(), "");
        EXPECT_TRUE(m_shell.calls.isEmpty());
        EXPECT_EQ(m_shell.log, QString());
        EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    }
}

TEST_F(RemotePaneTest, OpeningAFolderEntersItByNameAndRemembersIt)
{
    m_pane.OpenRemoteRow(row("cgi-bin"), true);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD cgi-bin"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(m_globals.session.CurrentRemoteDir, QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(history(), "/www/cgi-bin");
    expectPaused();
    EXPECT_TRUE(m_shell.calls.contains(QStringLiteral("SetFtpProperties")));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Dieser Ordner ist leer."));
}

TEST_F(RemotePaneTest, AFolderIsNotRememberedWhenTheLineIsLost)
{
    m_ftp.during = [this](const QString &) { m_ftp.close(); };
    m_pane.OpenRemoteRow(row("cgi-bin"), true);
    EXPECT_EQ(history(), "");
    EXPECT_EQ(m_globals.session.CurrentRemoteDir, QStringLiteral("/www"));
}

TEST_F(RemotePaneTest, TheUpRowGoesToTheParent)
{
    m_pane.OpenRemoteRow(0, false);
    EXPECT_EQ(names(), "<up> www");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/"));
    EXPECT_EQ(history(), "/");
    expectPaused();
}

TEST_F(RemotePaneTest, ALinkIsOnlyClassifiedByItsFirstOpening)
{
    m_pane.OpenRemoteRow(row("verweis"), false);
    EXPECT_EQ(kind("verweis"), ItemKind::FolderLink);
    EXPECT_EQ(m_ftp.current, QStringLiteral("/www"));
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www"));
    EXPECT_EQ(m_shell.log, QString());
    expectPaused();

    m_ftp.commands.clear();
    m_pane.OpenRemoteRow(row("verweis"), false);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD /www/verweis")) << "by its full path";
}

TEST_F(RemotePaneTest, ALinkToAnythingElseBecomesAFileAndIsNotTriedAgain)
{
    m_pane.OpenRemoteRow(row("kaputt"), false);
    EXPECT_EQ(kind("kaputt"), ItemKind::File);
    EXPECT_EQ(m_shell.log, QStringLiteral("550 No such folder.\r\n"));
    expectPaused();
    clearNotes();
    m_pane.OpenRemoteRow(row("kaputt"), false);
    EXPECT_EQ(commands(), "");
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(kind("kaputt"), ItemKind::Link) << "a fresh listing knows nothing of it";
}

TEST_F(RemotePaneTest, ALinkWithoutAWayBackIsShown)
{
    m_ftp.addFile(QStringLiteral("/www/cgi-bin/a.pl"), "1");
    m_ftp.refuse = [](const QString &command) -> std::optional<FtpError> {
        return command == u"CWD /www" ? std::optional(FtpError {
                   ftp::ErrorKind::Refused, 550, QStringLiteral("550 Permission denied.") })
                                      : std::nullopt;
    };
    m_pane.OpenRemoteRow(row("verweis"), true);
    EXPECT_EQ(m_ftp.current, QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(names(), "<up> a.pl") << "the rows are those of the server's folder";
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin"));
}

TEST_F(RemotePaneTest, AFileIsDownloadedByDoubleClickOnly)
{
    QSignalSpy wanted(&m_pane, &RemotePane::downloadWanted);
    m_pane.OpenRemoteRow(row("b.txt"), false);
    EXPECT_EQ(wanted.count(), 0);
    m_pane.OpenRemoteRow(row("b.txt"), true);
    EXPECT_EQ(wanted.count(), 1);
}

TEST_F(RemotePaneTest, AFolderThatCannotBeEnteredLeavesTheTruthInPaneAndBox)
{
    m_ftp.refuseAll(QStringLiteral("CWD"), QStringLiteral("550 Permission denied."));
    m_ftp.addFile(QStringLiteral("/www/neu"), "1");
    m_pane.DoRemoteRefresh(QStringLiteral("/geheim"));
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt neu verweis") << "listed anew";
    EXPECT_EQ(m_ftp.commandsOf(QStringLiteral("LIST")).size(), 1);
    EXPECT_EQ(m_pane.model().row(row("b.txt")).tag, QStringLiteral("/www/b.txt"));
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/"));
    expectPaused();
}

TEST_F(RemotePaneTest, ARefusedListingShowsNoRowsOfAnotherFolder)
{
    m_ftp.refuseAll(QStringLiteral("LIST"), QStringLiteral("550 Not allowed."));
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/leer"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Die Dateiliste konnte nicht gelesen werden."));
}

TEST_F(RemotePaneTest, ARefusedRefreshOfTheSameFolderKeepsItsRows)
{
    m_ftp.refuseAll(QStringLiteral("LIST"), QStringLiteral("425 No data connection."));
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    EXPECT_EQ(names(), "<up>");
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up>") << "what was held is not remembered for ever";
}

TEST_F(RemotePaneTest, OnlyAnEmptyFolderIsCalledEmpty)
{
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, QStringLiteral("Hä?") };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Die Dateiliste konnte nicht gelesen werden."));
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, QStringLiteral("\r\n") };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Dieser Ordner ist leer."));
    m_pane.model().appendRow({ QStringLiteral("neu"), ItemKind::FolderClose, {}, {}, {}, {} });
    EXPECT_EQ(m_pane.view().hint(), QString()) << "it holds a new folder now";
}

TEST_F(RemotePaneTest, AConnectionLostMeanwhileLeavesAnEmptyPaneAndNoCommands)
{
    m_ftp.during = [this](const QString &) { m_ftp.close(); };
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    EXPECT_EQ(names(), "");
    EXPECT_EQ(m_shell.calls.last(), QStringLiteral("SetFtpProperties"))
        << "the commands were enabled for a connection that is gone";
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Nicht mit einem Server verbunden."));
}

TEST_F(RemotePaneTest, TheNextServersFolderNeverShowsTheFilesOfTheOneBefore)
{
    m_ftp.close();
    m_pane.model().clear(); // as every end of a session does
    m_ftp.connectionState = FtpOperations::Connected;
    m_ftp.refuseAll(QStringLiteral("LIST"), QStringLiteral("425 Cannot open data connection."));
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Die Dateiliste konnte nicht gelesen werden."));
    EXPECT_TRUE(m_pane.isUnread());
    m_ftp.refuse = nullptr;
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_FALSE(m_pane.isUnread());
}

TEST_F(RemotePaneTest, AnUnreadableListingIsExplainedOnlyWithDetailedMessages)
{
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, QStringLiteral("Hä?") };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_shell.log, QString());
    m_globals.settings.ErrorMsg = true;
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_TRUE(m_shell.log.startsWith(QStringLiteral("Die Auflösung der gelieferten Dateiliste")));
    EXPECT_TRUE(m_shell.log.endsWith(QStringLiteral("\r\nHä?")));
    m_shell.log.clear();
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, {} };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(
        m_shell.log,
        QStringLiteral("Die Auflösung der gelieferten Dateiliste schlug fehl.\r\n"
                       "Dieser Fehler tritt häufig auf wenn ein leeres Verzeichnis aufgerufen "
                       "wird und kann in den meisten Fällen ignoriert werden."));
}

TEST_F(RemotePaneTest, ARefusedRefreshDoesNotExplainTheOldListingAgain)
{
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, QStringLiteral("Hä?") };
    m_globals.settings.ErrorMsg = true;
    m_ftp.refuseAll(QStringLiteral("LIST"), QStringLiteral("425 No data connection."));
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(m_shell.log, QString());
}

TEST_F(RemotePaneTest, ABigFolderIsListedWhileTheWindowLives)
{
    RemoteListing big { {}, 0, {} };
    for (int i = 0; i < 20000; ++i) {
        big.entries.append({ QStringLiteral("datei %1").arg(i, 6, 10, QChar(u'0')),
                             QStringLiteral("-"),
                             i,
                             QStringLiteral("2026-11-20 10:00"),
                             644,
                             {} });
    }
    m_ftp.fixed = big;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        ++ticks;
        EXPECT_FALSE(m_pane.isReady()) << "no command may begin in between";
    });
    timer.start(0);
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    timer.stop();
    EXPECT_EQ(m_pane.model().rowCount(), 20001);
    EXPECT_EQ(m_pane.model().row(20000).name, QStringLiteral("datei 019999"));
    EXPECT_GT(ticks, 0);
    EXPECT_TRUE(m_pane.isReady());
}
