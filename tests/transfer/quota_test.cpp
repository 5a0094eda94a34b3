#include "support/fakeshell.h"
#include "support/scriptedprompts.h"
#include "transfer/quota.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString message = QStringLiteral(
    "Der Platzbedarf auf Ihrem Server ist verbraucht.\r\n"
    "Wir empfehlen wir Ihnen daher, ein Upgrade auf ein höherwertiges KALMAR-Paket "
    "durchzuführen.\r\n"
    "Bitte löschen Sie nicht benötigte Dateien, bevor Sie das Uploaden fortsetzen.");

FtpEvent reply(const char *text, int status = FtpEvent::Failed)
{
    return { OpPutFile, status, QString::fromLatin1(text), 0, 0 };
}

} // namespace

TEST(QuotaReply, Is451InLogAndBoxOncePerReply)
{
    for (const int status : { FtpEvent::Completed, FtpEvent::InProgress, FtpEvent::Failed }) {
        ScriptedPrompts prompts;
        FakeShell shell;
        prompts.expectMessage(message);
        explainSpaceReply(reply("451 Quota exceeded.\r\n", status), prompts, shell);
        EXPECT_EQ(shell.log, message + u"\r\n"_s);
    }
}

TEST(QuotaReply, OtherSpaceRepliesAreOnlyLogged)
{
    ScriptedPrompts prompts;
    FakeShell shell;
    explainSpaceReply(reply("452 Disk full.\r\n"), prompts, shell);
    EXPECT_TRUE(shell.log.endsWith(u".\r\n"_s));
    const QString first = shell.log;
    explainSpaceReply(reply("552 Quota.\r\n"), prompts, shell);
    EXPECT_GT(shell.log.size(), first.size());
}

TEST(QuotaReply, OtherTextsSayNothing)
{
    ScriptedPrompts prompts;
    FakeShell shell;
    explainSpaceReply(reply("226 451 files.\r\n", FtpEvent::Completed), prompts, shell);
    explainSpaceReply(reply(" 451\r\n"), prompts, shell);
    EXPECT_EQ(shell.log, QString());
}
