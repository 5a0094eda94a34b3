#include "transfer/progressmodel.h"
#include "transfer/progresspanel.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 GiB = 1024LL * 1024 * 1024;

FtpEvent bytes(int operation, qint64 count, qint64 total = 0)
{
    return { operation, FtpEvent::InProgress, {}, count, total };
}

QString labelText(const QWidget &panel, const char *name)
{
    return panel.findChild<QLabel *>(QLatin1String(name))->text();
}

} // namespace

TEST(ProgressModel, CountsFromTheOffsetOfItsDirection)
{
    TransferState state;
    state.LocalSize = 100;
    state.RemoteSize = 1000;
    ProgressModel model;
    model.setMaximumFor(10000);
    EXPECT_TRUE(model.report(bytes(14, 5), state));
    EXPECT_EQ(model.value(), 105);
    EXPECT_TRUE(model.report(bytes(15, 7), state));
    EXPECT_EQ(model.value(), 7);
    EXPECT_TRUE(model.report(bytes(16, 8), state));
    EXPECT_EQ(model.value(), 8);
    EXPECT_TRUE(model.report(bytes(17, 9), state));
    EXPECT_EQ(model.value(), 1009);
    EXPECT_EQ(model.rateText(), u"1,0 KB"_s);
}

TEST(ProgressModel, LeavesTheBarAloneForOtherEvents)
{
    ProgressModel model;
    model.setMaximumFor(100);
    model.setValue(40);
    EXPECT_FALSE(model.report(bytes(13, 5), {}));
    EXPECT_FALSE(model.report(bytes(18, 5), {}));
    EXPECT_FALSE(model.report({ 14, FtpEvent::Completed, {}, 5, 0 }, {}));
    EXPECT_EQ(model.value(), 40);
    EXPECT_EQ(model.rateText(), QString());
}

TEST(ProgressModel, AReplyCountsNoBytes)
{
    ProgressModel model;
    model.setMaximumFor(1000);
    for (const int operation : { OpGetFile, OpGetMultiple, OpPutMultiple, OpPutFile }) {
        ASSERT_TRUE(model.report(bytes(operation, 700), {}));
        EXPECT_FALSE(model.report(
            { operation, FtpEvent::InProgress, u"150 Opening data connection.\r\n"_s, 0, 0 }, {}));
        EXPECT_EQ(model.value(), 700);
        EXPECT_EQ(model.rateText(), u"700 B"_s);
    }
}

TEST(ProgressModel, AStalledFileShowsThatNothingCameYet)
{
    ProgressModel model;
    model.ShowTransferItem(u"Datei: a"_s, u"2048"_s);
    EXPECT_TRUE(model.report(bytes(OpGetFile, 0), {}));
    EXPECT_EQ(model.rateText(), u"0 Bytes"_s);
    model.ShowTransferItem(u"Ordner: b"_s, {});
    EXPECT_TRUE(model.report(bytes(OpGetMultiple, 0), {}));
    EXPECT_EQ(model.rateText(), QString()) << "of a folder no size is told";
}

TEST(ProgressModel, AFileThatBeginsAnewShowsNoOldAmount)
{
    ProgressModel model;
    model.setMaximumFor(2048);
    model.ShowTransferItem(u"Datei: a"_s, u"2048"_s);
    ASSERT_TRUE(model.report(bytes(OpGetFile, 700), {}));
    ASSERT_TRUE(model.report(bytes(OpGetFile, 0), {}));
    EXPECT_EQ(model.value(), 0);
    EXPECT_EQ(model.rateText(), u"0 Bytes"_s);
    model.ShowTransferItem(u"Ordner: b"_s, {});
    ASSERT_TRUE(model.report(bytes(OpGetMultiple, 700), {}));
    ASSERT_TRUE(model.report(bytes(OpGetMultiple, 0), {}));
    EXPECT_EQ(model.rateText(), QString());
}

TEST(ProgressModel, RaisesAMaximumThatWasTooSmall)
{
    ProgressModel model;
    model.setMaximumFor(1000);
    ASSERT_TRUE(model.report(bytes(14, 2000), {}));
    EXPECT_EQ(model.value(), 1000);
    EXPECT_EQ(model.maximum(), 2200);
    EXPECT_EQ(model.rateText(), u"1000 B"_s);
    ASSERT_TRUE(model.report(bytes(14, 2200), {}));
    EXPECT_EQ(model.value(), 2200);
    EXPECT_EQ(model.maximum(), 2200);
}

TEST(ProgressModel, ASizeOfZeroLeavesTheMaximum)
{
    ProgressModel model;
    EXPECT_EQ(model.maximum(), 100);
    model.setMaximumFor(777);
    model.setMaximumFor(0);
    EXPECT_EQ(model.maximum(), 777);
}

TEST(ProgressModel, CountsBeyondThirtyTwoBits)
{
    TransferState state;
    state.LocalSize = 4 * GiB + GiB / 2;
    ProgressModel model;
    model.setMaximumFor(5 * GiB);
    ASSERT_TRUE(model.report(bytes(14, GiB / 4), state));
    EXPECT_EQ(model.value(), 4 * GiB + GiB * 3 / 4);
    EXPECT_EQ(model.percent(), 95);
    ASSERT_TRUE(model.report(bytes(14, 20 * GiB), {}));
    EXPECT_EQ(model.maximum(), 22 * GiB);
}

TEST(ProgressModel, FollowsTheKnownTotalOfATree)
{
    ProgressModel model;
    model.setMaximumFor(100);
    ASSERT_TRUE(model.report(bytes(15, 500, 4000), {}));
    EXPECT_EQ(model.value(), 500);
    EXPECT_EQ(model.maximum(), 4000);
    ASSERT_TRUE(model.report(bytes(15, 600, 6000), {}));
    EXPECT_EQ(model.maximum(), 6000);
    ASSERT_TRUE(model.report(bytes(15, 700), {}));
    EXPECT_EQ(model.maximum(), 6000) << "a tree of unknown size leaves it";
}

TEST(ProgressModel, FinishingEmptiesBarAndRate)
{
    ProgressModel model;
    model.setMaximumFor(10);
    ASSERT_TRUE(model.report(bytes(17, 10), {}));
    model.finish();
    EXPECT_EQ(model.value(), 0);
    EXPECT_EQ(model.rateText(), QString());
    EXPECT_EQ(model.maximum(), 10);
}

TEST(ShowTransferItem, CutsTextsOfSixteenCharacters)
{
    ProgressModel model;
    model.ShowTransferItem(u"Datei: 12345678"_s, u"2048"_s);
    EXPECT_EQ(model.fileText(), u"Datei: 12345678"_s);
    EXPECT_EQ(model.rateText(), u"0 Bytes"_s);
    EXPECT_EQ(model.sizeText(), u"von 2,0 KB"_s);
    model.ShowTransferItem(u"Datei: 123456789"_s, {});
    EXPECT_EQ(model.fileText(), u"Datei: 12345678..."_s);
    EXPECT_EQ(model.rateText(), QString());
    EXPECT_EQ(model.sizeText(), QString());
    model.ShowTransferItem({}, {});
    EXPECT_EQ(model.fileText(), QString());
}

TEST(ShowTransferItem, ASizeOfZeroIsASize)
{
    ProgressModel model;
    model.ShowTransferItem(u"Datei: leer"_s, u"0"_s);
    EXPECT_EQ(model.rateText(), u"0 Bytes"_s);
    EXPECT_EQ(model.sizeText(), u"von "_s);
}

TEST(ProgressPanel, ShowsTheModel)
{
    ProgressModel model;
    ProgressPanel panel(model);
    EXPECT_EQ(panel.objectName(), u"frame_transfer"_s);
    const auto *bar = panel.findChild<QProgressBar *>(u"Progress"_s);
    ASSERT_NE(bar, nullptr);
    model.ShowTransferItem(u"Datei: index.html"_s, u"3000"_s);
    model.setMaximumFor(3000);
    ASSERT_TRUE(model.report(bytes(14, 1500), {}));
    EXPECT_EQ(bar->maximum(), 3000);
    EXPECT_EQ(bar->value(), 1500);
    EXPECT_EQ(labelText(panel, "lblFileName"), u"Datei: index.ht..."_s);
    EXPECT_EQ(labelText(panel, "lblRate"), u"1,5 KB"_s);
    EXPECT_EQ(labelText(panel, "lblFileSize"), u"von 2,9 KB"_s);
    model.setMaximumFor(8 * GiB);
    ASSERT_TRUE(model.report(bytes(15, 2 * GiB), {}));
    EXPECT_NEAR(static_cast<double>(bar->value()) / bar->maximum(), 0.25, 1e-6);
}

TEST(ProgressPanel, PaintsWhenTheWindowDoesAndNotForEveryValue)
{
    class Paintings : public QObject {
    public:
        int count = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            count += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    } paintings;
    ProgressModel model;
    ProgressPanel panel(model);
    auto *bar = panel.findChild<QProgressBar *>(u"Progress"_s);
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
    model.setMaximumFor(100);
    QCoreApplication::processEvents();
    bar->installEventFilter(&paintings);
    for (int percent = 1; percent <= 100; ++percent) {
        ASSERT_TRUE(model.report(bytes(14, percent), {}));
    }
    EXPECT_EQ(paintings.count, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paintings.count > 0; }));
    EXPECT_EQ(bar->value(), 100);
}

TEST(ProgressPanel, WhateverKeepsTheUserWaitingCanBeAborted)
{
    ProgressModel model;
    ProgressPanel panel(model);
    const auto *abort = panel.findChild<QPushButton *>(u"cmdAbort"_s);
    panel.setPatience(0);
    panel.followCommand(true);
    EXPECT_FALSE(abort->isEnabled()) << "not at once";
    ASSERT_TRUE(QTest::qWaitFor([abort] { return abort->isEnabled(); }));
    panel.followCommand(true); // one of its steps
    panel.setAbortEnabled(false); // as every reply of the server says
    EXPECT_TRUE(abort->isEnabled());
    panel.followCommand(false);
    EXPECT_FALSE(abort->isEnabled());
    panel.setAbortEnabled(true); // bytes flow
    panel.followCommand(true);
    panel.followCommand(false);
    EXPECT_TRUE(abort->isEnabled()) << "for others to say";
}

TEST(ProgressPanel, AbortIsOffUntilItIsSwitchedOn)
{
    ProgressModel model;
    ProgressPanel panel(model);
    auto *abort = panel.findChild<QPushButton *>(u"cmdAbort"_s);
    ASSERT_NE(abort, nullptr);
    EXPECT_EQ(abort->text(), u"Abbrechen"_s);
    EXPECT_FALSE(abort->isEnabled());
    int clicks = 0;
    QObject::connect(&panel, &ProgressPanel::abortClicked, [&clicks] { ++clicks; });
    panel.setAbortEnabled(true);
    abort->click();
    EXPECT_EQ(clicks, 1);
}
