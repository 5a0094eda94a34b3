#include "app/transfernotice.h"

#include "app/notifier.h"
#include "app/traynotifier.h"
#include "transfer/progressmodel.h"

#include <QApplication>
#include <QWidget>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct NotedMessages : Notifier {
    QStringList messages;
    void notify(const QString &title, const QString &text) override
    {
        messages.append(title + u'|' + text);
    }
};

class Notice : public testing::Test {
protected:
    Notice() { window.setWindowTitle(u"Tarvelo FTP"_s); }
    void batch(qint64 milliseconds)
    {
        progress.beginBatch();
        now += milliseconds;
        progress.finish();
    }
    QueueRow row(bool failed)
    {
        QueueRow made;
        made.failed = failed;
        return made;
    }

    qint64 now = 1000;
    QWidget window;
    ProgressModel progress;
    NotedMessages notifier;
    TransferNotice notice { window, progress, &notifier, [this] { return now; } };
};

} // namespace

TEST_F(Notice, TheTitleShowsThePercentageOnlyDuringABatch)
{
    notice.setCaption(u"Tarvelo FTP (Connected to: web)"_s);
    EXPECT_EQ(window.windowTitle(), u"Tarvelo FTP (Connected to: web)"_s);
    progress.setMaximumFor(200);
    progress.setValue(50);
    EXPECT_EQ(window.windowTitle(), u"Tarvelo FTP (Connected to: web)"_s) << "a file is viewed";
    progress.beginBatch();
    progress.setValue(50);
    EXPECT_EQ(window.windowTitle(), u"25 % - Tarvelo FTP (Connected to: web)"_s);
    notice.setCaption(u"Tarvelo FTP"_s); // the line was lost
    EXPECT_EQ(window.windowTitle(), u"25 % - Tarvelo FTP"_s);
    progress.finish();
    EXPECT_EQ(window.windowTitle(), u"Tarvelo FTP"_s);
}

TEST_F(Notice, ALongBatchIsToldOnceWhenTheWindowIsNotSeen)
{
    batch(10001);
    progress.finish();
    EXPECT_EQ(notifier.messages, QStringList { u"Übertragung beendet|0 übertragen"_s });
}

TEST_F(Notice, AShortOneOrOneThatIsSeenIsNot)
{
    batch(10000);
    window.show();
    batch(60000);
    EXPECT_TRUE(notifier.messages.isEmpty());
    window.showMinimized();
    batch(60000);
    EXPECT_EQ(notifier.messages.size(), 1);
}

TEST_F(Notice, TheMessageTellsWhatFailed)
{
    progress.beginBatch();
    notice.count(row(false));
    progress.finish();
    progress.beginBatch();
    notice.count(row(false));
    notice.count(row(false));
    notice.count(row(true));
    now += 20000;
    progress.finish();
    EXPECT_EQ(notifier.messages,
              QStringList { u"Übertragung beendet|2 übertragen, 1 fehlgeschlagen"_s });
}

TEST(TrayNotifier, NothingHappensWithoutATray)
{
    TrayNotifier tray;
    tray.notify(u"Übertragung beendet"_s, u"1 übertragen"_s);
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}
