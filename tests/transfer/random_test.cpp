#include "fileops/delete.h"
#include "fileops/newfolder.h"
#include "fileops/rename.h"
#include "servers/everyserver.h"
#include "support/serverbench.h"
#include "treemodel.h"

#include <QElapsedTimer>
#include <random>

using namespace Qt::StringLiterals;

// A user who does one thing after the other at random, on every real server: after each step both
// sides must hold exactly what a simple model says.

class RandomUser : public servers::EveryServerWith<ServerBench> {
protected:
    static constexpr int Steps = 500;
    static constexpr int TimeLimit = 40; ///< seconds; a slow machine makes fewer steps

    void SetUp() override
    {
        EveryServerWith::SetUp();
        if (IsSkipped()) {
            return;
        }
        server = std::make_unique<servers::Server>(GetParam());
        for (int number = 0; number < 6; ++number) {
            servers::writeFile(server->root() / fileName().toStdString(), bytes().toStdString());
            writeLocal(fileName(), bytes());
            writeLocal(folderName() + u'/' + fileName(), bytes());
        }
        server->adoptFiles();
        readBoth();
        dialogs.answer = [this](const ConflictQuestion &question) { return answer(question); };
        dialogs.newName = [this](const QString &) { return given.back().newName; };
        ASSERT_TRUE(login(*server));
    }

    /// A number below a limit.
    int dice(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
    QString pick(const QStringList &list) { return list.at(dice(static_cast<int>(list.size()))); }
    QString fileName()
    {
        return pick({ u"f1.txt"_s, u"f 2"_s, u"fä.html"_s, u"f#%.cgi"_s, u"f[x]"_s, u"f-"_s });
    }
    QString folderName() { return pick({ u"d1"_s, u"d 2"_s, u"dö"_s }); }
    QString freshName(const QString &like) { return like.left(1) + u"neu%1"_s.arg(++fresh); }
    QByteArray bytes()
    {
        static constexpr std::array sizes { 0, 1, 700, 5000, 40000, 300000 };
        const int size = sizes.at(static_cast<std::size_t>(dice(static_cast<int>(sizes.size()))));
        return QByteArray::fromStdString(servers::randomBytes(
            static_cast<std::size_t>(size), static_cast<std::uint32_t>(random())));
    }
    QStringList some(const QStringList &of)
    {
        QStringList result;
        for (const QString &name : of) {
            if (dice(3) == 0) {
                result.append(name);
            }
        }
        return result;
    }
    ConflictReply answer(const ConflictQuestion &question)
    {
        GivenAnswer reply;
        reply.reply.applyToAll = dice(5) == 0;
        switch (dice(4)) {
        case 0:
            reply.reply.answer = ConflictAnswer::Skip;
            break;
        case 1:
            reply.reply.answer
                = question.mayResume ? ConflictAnswer::Resume : ConflictAnswer::Overwrite;
            break;
        case 2:
            reply.reply.answer = ConflictAnswer::Rename;
            reply.newName = dice(3) == 0 ? std::nullopt
                                         : std::optional(freshName(globals.transfer.LocalName));
            break;
        default:
            reply.reply.answer = ConflictAnswer::Overwrite;
        }
        given.push_back(reply);
        return reply.reply;
    }

    void step()
    {
        switch (dice(10)) {
        case 0:
        case 1:
        case 2:
            transfer(false);
            break;
        case 3:
        case 4:
        case 5:
            transfer(true);
            break;
        case 6:
            renameOne();
            break;
        case 7:
            deleteSome();
            break;
        case 8:
            writeSomething();
            break;
        default:
            dice(2) == 0 ? abortOne() : makeFolder();
        }
    }
    void transfer(bool isUpload)
    {
        TreeModel &from = isUpload ? localModel : remoteModel;
        TreeModel &to = isUpload ? remoteModel : localModel;
        showBoth();
        FakePane &pane = isUpload ? local : remote;
        pane.select(some(from.topLevel()));
        QStringList names;
        for (const int row : pane.selected) {
            names.append(pane.model().row(row).name);
        }
        doing = (isUpload ? u"upload "_s : u"download "_s) + names.join(u", "_s);
        given.clear();
        isUpload ? commands.cmd_upload_Click() : commands.cmd_download_Click();
        BatchModel batch(isUpload, from, to, given);
        batch.run(names);
        EXPECT_TRUE(batch.usedAll());
    }
    void renameOne()
    {
        const bool isRemote = dice(2) == 0;
        TreeModel &model = isRemote ? remoteModel : localModel;
        const QString from = pick(model.topLevel());
        const QString to = dice(3) == 0 ? pick(model.topLevel()) : freshName(from);
        doing = u"rename "_s + from + u" to "_s + to;
        showBoth();
        RenameCommand rename(work);
        if (isRemote) {
            rename.RenameRemoteAfterEdit(remote.model().findRow(from), to);
        } else {
            rename.RenameLocalAfterEdit(local.model().findRow(from), to);
        }
        if (!model.has(to)) {
            model.rename(from, to);
        }
    }
    void deleteSome()
    {
        const bool isRemote = dice(2) == 0;
        TreeModel &model = isRemote ? remoteModel : localModel;
        // Something stays, so that the other steps have something to work on.
        const QStringList all = model.topLevel();
        const QStringList names = all.size() > 14 ? all.mid(6) : some(all.mid(4));
        showBoth();
        (isRemote ? remote : local).select(names);
        doing = u"delete "_s + names.join(u", "_s);
        DeleteCommand command(work);
        if (!names.isEmpty()) {
            prompts.anyConfirm(true);
        }
        isRemote ? command.DeleteRemoteItems() : command.DeleteLocalItems();
        for (const QString &name : names) {
            model.remove(name);
        }
    }
    void writeSomething()
    {
        const QString name = dice(2) == 0 ? fileName() : folderName() + u'/' + fileName();
        doing = u"write "_s + name;
        writeLocal(name, bytes());
        localModel = TreeModel::ofDisk(root.path());
    }
    void makeFolder()
    {
        showBoth();
        doing = u"make folders"_s;
        NewFolderCommand command(work);
        command.MakeRemoteFolder();
        command.MakeLocalFolder();
        const QString made = remote.model().rows().last().name;
        EXPECT_FALSE(remoteModel.has(made));
        remoteModel.setFolder(made);
        localModel.setFolder(local.model().rows().last().name);
    }
    /// Drops the line in the middle of a transfer. What was on its way may be old or cut short, and
    /// nothing else.
    void abortOne()
    {
        const bool isUpload = dice(2) == 0;
        const TreeModel localBefore = localModel;
        const TreeModel remoteBefore = remoteModel;
        int left = dice(4);
        onProgress = [this, &left] {
            if (left-- == 0) {
                abort();
            }
        };
        transfer(isUpload);
        onProgress = nullptr;
        doing += u", aborted"_s;
        if (ftp.state() == FtpControl::Connected) {
            return; // it was over before
        }
        server->restart(); // a server may still be storing what it got before the line was dropped
        expectOldNewOrPart(TreeModel::ofDisk(root.path()), localBefore, remoteBefore);
        expectOldNewOrPart(TreeModel::ofDisk(remoteRoot()), remoteBefore, localBefore);
        readBoth();
        ASSERT_TRUE(login(*server));
    }
    void expectOldNewOrPart(const TreeModel &now, const TreeModel &before, const TreeModel &other)
    {
        for (const QString &name : now.topLevel()) {
            for (const QString &path : now.whole(name)) {
                const QByteArray is = now.content(path);
                const QByteArray old = before.content(path);
                const QByteArray incoming = other.content(path);
                const bool part = incoming.startsWith(is)
                    || (is.startsWith(old)
                        && incoming.mid(old.size()).startsWith(is.mid(old.size())));
                // A rename in a conflict brings an old content under a fresh name.
                const bool fine
                    = now.isFolder(path) || is == old || part || path.contains(u"neu"_s);
                EXPECT_TRUE(fine) << path.toStdString();
            }
        }
    }
    [[nodiscard]] QString remoteRoot() const
    {
        return QString::fromStdString(server->root().string());
    }
    void readBoth()
    {
        localModel = TreeModel::ofDisk(root.path());
        remoteModel = TreeModel::ofDisk(remoteRoot());
    }

    std::unique_ptr<servers::Server> server;
    std::mt19937 random { 20261121 };
    TreeModel localModel, remoteModel;
    std::vector<GivenAnswer> given;
    QString doing;
    int fresh = 0;
};

TEST_P(RandomUser, BothSidesHoldWhatTheModelSays)
{
    QElapsedTimer clock;
    clock.start();
    int steps = 0;
    while (steps < Steps && clock.elapsed() < TimeLimit * 1000 && !HasFailure()) {
        step();
        ++steps;
        EXPECT_EQ(localModel.difference(TreeModel::ofDisk(root.path())), QString());
        EXPECT_EQ(remoteModel.difference(TreeModel::ofDisk(remoteRoot())), QString());
        if (HasFailure()) {
            ADD_FAILURE() << "step " << steps << ": " << doing.toStdString() << '\n'
                          << shell.log.toStdString() << remote.names().join(u", "_s).toStdString();
        }
    }
    RecordProperty("steps", steps);
    EXPECT_GE(steps, 50);
}

INSTANTIATE_TEST_SUITE_P(Servers, RandomUser, ::testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);
