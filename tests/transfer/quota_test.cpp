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
        SpaceReplies(prompts, shell).explain(reply("451 Quota exceeded.\r\n", status));
        EXPECT_EQ(shell.log, message + u"\r\n"_s);
    }
}

TEST(QuotaReply, NoSecondBoxOpensOverTheFirst)
{
    ScriptedPrompts prompts;
    FakeShell shell;
    SpaceReplies space(prompts, shell);
    const FtpEvent refused = reply("451 Quota exceeded.\r\n");
    prompts.expectMessage(message).meanwhile([&] {
        space.explain(refused); // a folder transfer goes on below the box
        space.explain(refused);
    });
    space.explain(refused);
    EXPECT_EQ(shell.log.count(message), 3);
    prompts.expectMessage(message); // closed: the next refusal tells again
    space.explain(refused);
}

TEST(QuotaReply, OtherSpaceRepliesAreOnlyLogged)
{
    ScriptedPrompts prompts;
    FakeShell shell;
    SpaceReplies(prompts, shell).explain(reply("452 Disk full.\r\n"));
    EXPECT_TRUE(shell.log.endsWith(u".\r\n"_s));
    const QString first = shell.log;
    SpaceReplies(prompts, shell).explain(reply("552 Quota.\r\n"));
    EXPECT_GT(shell.log.size(), first.size());
}

TEST(QuotaReply, OtherTextsSayNothing)
{
    ScriptedPrompts prompts;
    FakeShell shell;
    SpaceReplies(prompts, shell).explain(reply("226 451 files.\r\n", FtpEvent::Completed));
    SpaceReplies(prompts, shell).explain(reply(" 451\r\n"));
    EXPECT_EQ(shell.log, QString());
}
