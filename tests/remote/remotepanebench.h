#pragma once

#include "common/globals.h"
#include "remote/itemkind.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"
#include "support/fakeftp.h"
#include "support/fakeshell.h"

#include <gtest/gtest.h>

/// A session whose next listing can be set.
class ListingFtp : public FakeFtp {
public:
    std::optional<RemoteListing> fixed;
    bool rootless = false; ///< tells its folder as a server does whose paths have no "/" in front

    [[nodiscard]] QString currentFolder() const override
    {
        return rootless ? current.mid(1) : current;
    }
    [[nodiscard]] const RemoteListing &listing() const override
    {
        return fixed ? *fixed : FakeFtp::listing();
    }
};

/// The server's pane over a stand-in for the session, in a folder with files and links.
class RemotePaneTest : public testing::Test {
protected:
    RemotePaneTest()
        : m_pane(m_ftp, m_globals, m_shell)
    {
        m_ftp.addFile(QStringLiteral("/www/index.html"), "12345");
        m_ftp.addFile(QStringLiteral("/www/b.txt"), "1");
        m_ftp.addFolder(QStringLiteral("/www/cgi-bin"));
        m_ftp.addFolder(QStringLiteral("/www/leer"));
        m_ftp.addLink(QStringLiteral("/www/verweis"), QStringLiteral("/www/cgi-bin"));
        m_ftp.addLink(QStringLiteral("/www/kaputt"), QStringLiteral("/nirgends"));
        m_ftp.current = QStringLiteral("/www");
        m_pane.DoRemoteRefresh(QStringLiteral("/www"));
        clearNotes();
    }

    void clearNotes()
    {
        m_ftp.commands.clear();
        m_shell.calls.clear();
        m_shell.log.clear();
    }
    std::string names()
    {
        QStringList list;
        for (const PaneRow &row : m_pane.model().rows()) {
            list << (row.kind == ItemKind::Cdup ? QStringLiteral("<up>") : row.name);
        }
        return list.join(u' ').toStdString();
    }
    int row(const char *name) { return m_pane.model().findRow(QString::fromUtf8(name)); }
    QString kind(const char *name) { return m_pane.model().row(row(name)).kind; }
    std::string commands() const { return m_ftp.commands.join(u", ").toStdString(); }
    std::string history()
    {
        QStringList list;
        for (int entry = 0; entry < m_pane.box().count(); ++entry) {
            list << m_pane.box().itemText(entry);
        }
        return list.join(u' ').toStdString();
    }
    /// The calls of the shell until a command was sent first.
    QStringList callsBefore(const QString &command, const std::function<void()> &action)
    {
        clearNotes();
        std::optional<QStringList> before;
        m_ftp.during = [&](const QString &sent) {
            before = before || !sent.startsWith(command) ? before : m_shell.calls;
        };
        action();
        m_ftp.during = nullptr;
        return before.value_or(QStringList());
    }
    /// Commands off, perhaps other calls, commands on again.
    void expectPaused()
    {
        ASSERT_GE(m_shell.calls.size(), 2);
        EXPECT_EQ(m_shell.calls.first(), QStringLiteral("SetCommandsEnabled 0 0 0 0"));
        EXPECT_EQ(m_shell.calls.last(), QStringLiteral("SetCommandsEnabled 0 1 1 1"));
    }

    Globals m_globals;
    ListingFtp m_ftp;
    FakeShell m_shell;
    RemotePane m_pane;
};
