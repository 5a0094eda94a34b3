#include "remote/remotepanebench.h"

#include <QTest>

TEST_F(RemotePaneTest, AFolderIsRememberedOnlyOnce)
{
    m_pane.OpenRemoteRow(row("cgi-bin"), true);
    m_pane.OpenRemoteRow(0, true);
    m_pane.OpenRemoteRow(row("cgi-bin"), true);
    EXPECT_EQ(history(), "/www/cgi-bin /www");
    m_pane.forgetFolder(QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(history(), "/www");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin")) << "the box goes on showing it";
}

TEST_F(RemotePaneTest, OfEqualEntriesTheFirstIsForgotten)
{
    for (const char *entry : { "/a", "/b", "/a" }) {
        m_pane.box().addItem(QString::fromUtf8(entry));
    }
    m_pane.forgetFolder(QStringLiteral("/a"));
    EXPECT_EQ(history(), "/b /a");
}

TEST_F(RemotePaneTest, TextOfTheBoxIsNormalised)
{
    m_pane.box().setEditText(QStringLiteral(" /www/leer [Archiv] "));
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(commands(), "CWD /www/leer/, LIST");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/leer/"));
    expectPaused();
}

TEST_F(RemotePaneTest, ARelativeFolderOfTheBoxIsShownAsWhatItIs)
{
    m_ftp.addFile(QStringLiteral("/www/cgi-bin/a.pl"), "1");
    m_pane.box().setEditText(QStringLiteral("cgi-bin"));
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD cgi-bin/"));
    EXPECT_EQ(m_pane.model().row(row("a.pl")).tag, QStringLiteral("/www/cgi-bin/a.pl"));
}

TEST_F(RemotePaneTest, ABracketedFolderNeverBecomesAShorterOne)
{
    m_ftp.addFile(QStringLiteral("/Fotos [2020]/a.jpg"), "1");
    m_ftp.addFolder(QStringLiteral("/Fotos "));
    m_pane.EnterRemoteFolder(QStringLiteral("/Fotos [2020]"));
    EXPECT_EQ(m_pane.model().row(row("a.jpg")).tag, QStringLiteral("/Fotos [2020]/a.jpg"));
    clearNotes();
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(commands(), "LIST") << "the text of the box is the current folder";
    m_pane.EnterRemoteFolder(QStringLiteral("/Fotos "));
    EXPECT_EQ(m_ftp.current, QStringLiteral("/Fotos "));
}

TEST_F(RemotePaneTest, ABracketedFolderOfTheHistoryIsFoundAgain)
{
    m_ftp.addFile(QStringLiteral("/Fotos [2020]/a.jpg"), "1");
    m_ftp.addFile(QStringLiteral("/Fotos/falsch.jpg"), "1");
    m_pane.EnterRemoteFolder(QStringLiteral("/Fotos [2020]"));
    m_pane.RememberRemoteFolder();
    m_pane.EnterRemoteFolder(QStringLiteral("/www"));
    clearNotes();
    m_pane.box().setCurrentIndex(0);
    Q_EMIT m_pane.box().activated(0);
    EXPECT_EQ(names(), "<up> a.jpg");
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD /Fotos [2020]/"));

    m_pane.EnterRemoteFolder(QStringLiteral("/www"));
    m_pane.box().setEditText(QStringLiteral("/Fotos [2020]"));
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(names(), "<up> a.jpg") << "typed, it is the same folder";

    m_pane.box().addItem(QStringLiteral("/www/leer [Archiv]"));
    m_pane.box().setCurrentIndex(1);
    clearNotes();
    Q_EMIT m_pane.box().activated(1);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD /www/leer/"))
        << "an entry that the program did not make may be annotated";
}

TEST_F(RemotePaneTest, ChoosingAnEntryListsItAtOnce)
{
    m_pane.EnterRemoteFolder(QStringLiteral("/"));
    m_pane.RememberRemoteFolder();
    m_pane.EnterRemoteFolder(QStringLiteral("/www/leer"));
    m_pane.RememberRemoteFolder();
    clearNotes();
    m_pane.box().setCurrentIndex(0);
    Q_EMIT m_pane.box().activated(0);
    EXPECT_EQ(commands(), "CWD /, LIST");
    EXPECT_EQ(names(), "<up> www");
}

TEST_F(RemotePaneTest, AnEntryChosenWhileSomethingRunsDoesNotStayInTheBox)
{
    m_pane.EnterRemoteFolder(QStringLiteral("/www/leer"));
    m_pane.RememberRemoteFolder();
    m_pane.EnterRemoteFolder(QStringLiteral("/www"));
    clearNotes();
    m_ftp.busy = true;
    m_pane.box().setCurrentIndex(0);
    Q_EMIT m_pane.box().activated(0);
    EXPECT_EQ(commands(), "");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www")) << "uploads would go elsewhere";
    // Not while it is being listed, either: the box ends with what the rows are.
    m_ftp.busy = false;
    m_ftp.during = [this](const QString &command) {
        if (command == u"LIST") {
            m_ftp.busy = true;
            m_pane.box().setCurrentIndex(0);
            Q_EMIT m_pane.box().activated(0);
            m_ftp.busy = false;
        }
    };
    m_pane.DoRemoteRefresh(QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin"));
}
