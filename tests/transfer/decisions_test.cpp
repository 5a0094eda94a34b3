#include "transfer/decisions.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

TransferState conflictOf(bool upload, qint64 local, qint64 remote)
{
    TransferState state;
    state.IsUpload = upload;
    state.LocalDir = u"/home/a/"_s;
    state.LocalName = u"x.txt"_s;
    state.LocalSize = local;
    state.RemoteDir = u"/www/"_s;
    state.RemoteName = u"x.txt"_s;
    state.RemoteSize = remote;
    return state;
}

struct Flags {
    bool skip, overwrite, rename;
    int all;
    bool operator==(const Flags &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Flags &flags)
{
    return out << "skip " << flags.skip << " overwrite " << flags.overwrite << " rename "
               << flags.rename << " all " << flags.all;
}

Flags flagsOf(const TransferState &state)
{
    return { state.SkipCurrent, state.OverwriteChosen, state.RenameChosen, state.ApplyToAll };
}

} // namespace

TEST(ConflictQuestion, NamesTheOverwrittenFileFirst)
{
    const ConflictQuestion upload = conflictQuestion(conflictOf(true, 30, 20), false);
    EXPECT_EQ(upload.caption, u"Dateiupload..."_s);
    EXPECT_EQ(upload.message.join(u' '), u"Überschreiben /www/x.txt(20) mit /home/a/x.txt(30)"_s);
    const ConflictQuestion download = conflictQuestion(conflictOf(false, 20, 30), true);
    EXPECT_EQ(download.caption, u"Dateiupload fortsetzen..."_s);
    EXPECT_EQ(download.message.join(u' '), u"Überschreiben /home/a/x.txt(20) mit /www/x.txt(30)"_s);
}

TEST(ConflictQuestion, WritesSizesAboveTwoGigabytesInFull)
{
    EXPECT_TRUE(conflictQuestion(conflictOf(true, 5368709120, 4831838208), true)
                    .message.first()
                    .contains(u"(4831838208)"_s));
}

TEST(ConflictQuestion, OffersResumingOnlyForShorterTargets)
{
    // An upload does not ask whether the server supports it.
    EXPECT_TRUE(conflictQuestion(conflictOf(true, 30, 29), false).mayResume);
    EXPECT_FALSE(conflictQuestion(conflictOf(true, 30, 30), true).mayResume);
    EXPECT_FALSE(conflictQuestion(conflictOf(true, 30, 31), true).mayResume);
    EXPECT_TRUE(conflictQuestion(conflictOf(false, 29, 30), true).mayResume);
    EXPECT_FALSE(conflictQuestion(conflictOf(false, 29, 30), false).mayResume);
    EXPECT_FALSE(conflictQuestion(conflictOf(false, 30, 30), true).mayResume);
    EXPECT_FALSE(conflictQuestion(conflictOf(false, 31, 30), true).mayResume);
    EXPECT_FALSE(conflictQuestion(conflictOf(true, 0, 0), true).mayResume);
}

TEST(ConflictFlags, LoadingResetsAllButTheOverwriteFlag)
{
    for (const bool overwrite : { false, true }) {
        TransferState state;
        state.OverwriteChosen = overwrite;
        state.RenameChosen = true;
        state.ApplyToAll = 1;
        loadConflict(state);
        EXPECT_EQ(flagsOf(state), (Flags { true, overwrite, false, 0 }));
    }
}

TEST(ConflictFlags, EachButtonSetsItsFlags)
{
    for (const bool before : { false, true }) {
        for (const bool all : { false, true }) {
            const auto after = [&](ConflictAnswer answer) {
                TransferState state;
                state.OverwriteChosen = before;
                loadConflict(state);
                applyReply(state, { answer, all });
                return flagsOf(state);
            };
            const int value = all ? 1 : 0;
            EXPECT_EQ(after(ConflictAnswer::Overwrite), (Flags { false, true, false, value }));
            EXPECT_EQ(after(ConflictAnswer::Resume), (Flags { false, false, false, value }));
            EXPECT_EQ(after(ConflictAnswer::Skip), (Flags { true, before, false, value }));
            EXPECT_EQ(after(ConflictAnswer::Rename), (Flags { true, before, true, value }));
        }
    }
}

TEST(ConflictFlags, EndOfAnItemKeepsTheSkipOnlyWithAll)
{
    TransferState state;
    state.SkipCurrent = true;
    state.ApplyToAll = 1;
    FinishTransferItem(state);
    EXPECT_TRUE(state.SkipCurrent);
    state.ApplyToAll = 0;
    FinishTransferItem(state);
    EXPECT_FALSE(state.SkipCurrent);
}

TEST(ConflictDecision, EmptyTargetsAreNoConflict)
{
    EXPECT_FALSE(fileConflict(conflictOf(false, 0, 30)));
    EXPECT_TRUE(fileConflict(conflictOf(false, 1, 30)));
    EXPECT_FALSE(fileConflict(conflictOf(true, 30, 0)));
    EXPECT_TRUE(fileConflict(conflictOf(true, 30, 1)));
}

TEST(ConflictDecision, AllAnswersLaterConflicts)
{
    TransferState download = conflictOf(false, 20, 30);
    TransferState upload = conflictOf(true, 30, 20);
    EXPECT_TRUE(asksForFile(download));
    EXPECT_TRUE(asksForFile(upload));
    EXPECT_TRUE(asksForFolder(upload));
    download.ApplyToAll = upload.ApplyToAll = 1;
    EXPECT_FALSE(asksForFile(download));
    EXPECT_FALSE(asksForFile(upload));
    EXPECT_FALSE(asksForFolder(upload));
    download.RenameChosen = upload.RenameChosen = true;
    EXPECT_FALSE(asksForFile(download));
    EXPECT_TRUE(asksForFile(upload));
    EXPECT_TRUE(asksForFolder(upload));
}

TEST(ConflictDecision, AllOverwritesDownloadsAndRepeatsUploads)
{
    TransferState download = conflictOf(false, 20, 30);
    download.OverwriteChosen = false; // the earlier answer was to resume
    decideAgain(download);
    EXPECT_EQ(download.LocalSize, 0);
    EXPECT_EQ(download.RemoteSize, 30);

    TransferState resumed = conflictOf(true, 30, 20);
    decideAgain(resumed);
    EXPECT_EQ(resumed.RemoteSize, 20);
    resumed.OverwriteChosen = true;
    decideAgain(resumed);
    EXPECT_EQ(resumed.RemoteSize, 0);
    EXPECT_EQ(resumed.LocalSize, 30);
}

TEST(Runs, OnlyWhatStartsAtZeroWithoutAQuestionBelongsToOne)
{
    EXPECT_TRUE(startsWithoutQuestion(conflictOf(false, 0, 30)));
    EXPECT_TRUE(startsWithoutQuestion(conflictOf(true, 30, 0)));
    EXPECT_FALSE(startsWithoutQuestion(conflictOf(false, 20, 30)));
    EXPECT_FALSE(startsWithoutQuestion(conflictOf(true, 30, 20)));
    TransferState skipped = conflictOf(false, 0, 30);
    skipped.SkipCurrent = true;
    EXPECT_FALSE(startsWithoutQuestion(skipped));

    TransferState download = conflictOf(false, 20, 30);
    TransferState upload = conflictOf(true, 30, 20);
    download.ApplyToAll = upload.ApplyToAll = 1;
    EXPECT_TRUE(startsWithoutQuestion(download)) << "\"Alle\" overwrites";
    EXPECT_FALSE(startsWithoutQuestion(upload)) << "\"Alle\" resumes";
    upload.OverwriteChosen = true;
    EXPECT_TRUE(startsWithoutQuestion(upload));
    upload.RenameChosen = true;
    EXPECT_FALSE(startsWithoutQuestion(upload)) << "asks again";
}

TEST(Runs, ReachFromAnItemToTheNextThatIsNotPlain)
{
    const auto ends = [](const std::string &items) { // '.' plain, '?' not
        std::vector<int> result;
        const int behind = static_cast<int>(items.size());
        for (int slot = 0; slot < behind;) {
            slot = endOfRun(slot, behind, [&](int at) {
                EXPECT_LT(at, behind);
                return items[static_cast<std::size_t>(at)] == '.';
            });
            result.push_back(slot);
        }
        return result;
    };
    EXPECT_EQ(ends("."), (std::vector { 1 }));
    EXPECT_EQ(ends("...."), (std::vector { 4 }));
    EXPECT_EQ(ends("?..?"), (std::vector { 1, 3, 4 }));
    EXPECT_EQ(ends("..??."), (std::vector { 2, 3, 4, 5 }));
    EXPECT_EQ(ends(std::string(2500, '.')), (std::vector { 1000, 2000, 2500 }));
}

TEST(MultiplePattern, IsQuotedAsAWholeWhenThePathHoldsABlank)
{
    EXPECT_EQ(multiplePattern(u"/www/bilder"_s, u'/'), u"/www/bilder/*"_s);
    EXPECT_EQ(multiplePattern(u"/www/neue bilder"_s, u'/'), u"\"/www/neue bilder/*\""_s);
    EXPECT_EQ(multiplePattern(u"c:\\a b"_s, u'\\'), u"\"c:\\a b\\*\""_s);
}
