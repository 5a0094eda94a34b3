// Figures of the panes with big folders:
//
//   panebench [ENTRIES] [HOST PORT USER PASSWORD FOLDER]
//
// Lists a local folder of so many empty files (100,000 unless said otherwise), sorts it by every
// column, and, with a server, lists a folder there. Prints milliseconds until all rows are shown,
// the longest stall of the event loop meanwhile, and what the rows need in memory. The second
// listing has the rows of the first one to free.
#include "common/globals.h"
#include "common/shell.h"
#include "ftp/ftpcontrol.h"
#include "local/localpane.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <malloc.h>

namespace {

class SilentShell : public Shell {
public:
    void AppendLog(const QString &) override { }
    void SetFtpProperties() override { }
    void DoRemoteRefresh(const QString &) override { }
    void SetCommandsEnabled(bool, bool, bool, bool, bool) override { }
    void SetToolbarsEnabled(bool) override { }
    void SetFolderBoxesEnabled(bool) override { }
    void SetAbortEnabled(bool) override { }
    void UpdateRemoteCommandStates() override { }
    void UpdateLocalCommandStates() override { }
    void AddQueueRow(const QueueRow &) override { }
    void ShowTransferItem(const QString &, const QString &) override { }
    int vorschau(const QString &) override { return 0; }
};

/// Longest time between two turns of the event loop while it lives.
class StallMeter {
public:
    StallMeter()
    {
        m_since.start();
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { take(); });
        m_timer.start(1); // a timer without pause would take a processor from what is measured
    }
    double longest()
    {
        take();
        return m_longest;
    }

private:
    void take()
    {
        m_longest = std::max(m_longest, static_cast<double>(m_since.nsecsElapsed()) / 1e6);
        m_since.restart();
    }

    QTimer m_timer;
    QElapsedTimer m_since;
    double m_longest = 0;
};

/// Bytes in use, those of big blocks too, which lie outside the heap.
double memoryInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1048576.0;
}

void measureSorts(FilePane &pane)
{
    for (int column = 0; column < pane.model().columnCount(); ++column) {
        QElapsedTimer clock;
        clock.start();
        StallMeter stalls;
        pane.sortByColumn(column);
        pane.view().viewport()->repaint();
        const double sorted = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        QCoreApplication::processEvents();
        std::printf("  sort by %-10s %6.0f ms  longest stall %6.1f ms\n",
                    qPrintable(pane.model().headerData(column, Qt::Horizontal).toString()), sorted,
                    stalls.longest());
    }
}

/// Lists a folder into an empty pane and, a second time, into one that is full.
void measure(const char *what, FilePane &pane, const std::function<void()> &list)
{
    const double before = memoryInUse();
    for (const char *which : { "", " again" }) {
        QElapsedTimer clock;
        clock.start();
        StallMeter stalls;
        list();
        pane.view().viewport()->repaint();
        const double shown = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        QCoreApplication::processEvents(); // what is left to be done counts as a stall too
        std::printf("%s%-6s %7d rows %6.0f ms  longest stall %6.1f ms  memory %6.1f MiB\n", what,
                    which, pane.model().rowCount(), shown, stalls.longest(),
                    memoryInUse() - before);
    }
    measureSorts(pane);
}

void measureLocal(Globals &globals, int entries)
{
    const QTemporaryDir folder;
    for (int i = 0; i < entries; ++i) {
        QFile file(folder.filePath(QStringLiteral("Seite %1.html").arg((i * 7919) % entries)));
        if (!file.open(QIODevice::WriteOnly)) {
            std::fprintf(stderr, "cannot write test files\n");
            return;
        }
        file.resize(i % 4000);
        // No two files of a grown folder have the same time.
        file.setFileTime(QDateTime::fromSecsSinceEpoch(1500000000 + qint64(i) * 1777),
                         QFileDevice::FileModificationTime);
    }
    LocalPane pane(globals);
    pane.resize(700, 500);
    pane.show();
    QCoreApplication::processEvents();
    measure("local", pane, [&] {
        QEventLoop loop;
        QObject::connect(&pane, &LocalPane::listed, &loop, &QEventLoop::quit);
        pane.listFolder(folder.path());
        if (pane.isReading()) {
            loop.exec();
        }
    });
}

int measureRemote(Globals &globals, const QStringList &arguments)
{
    FtpControl ftp;
    SilentShell shell;
    const FtpStatus connected = ftp.connectAndLogin(arguments.at(0), arguments.at(2),
                                                    arguments.at(3), {}, arguments.at(1).toInt());
    if (!connected) {
        std::fprintf(stderr, "%s\n", qPrintable(connected.error().text));
        return 1;
    }
    RemotePane pane(ftp, globals, shell);
    pane.resize(700, 500);
    pane.show();
    QCoreApplication::processEvents();
    measure("remote", pane, [&] { pane.DoRemoteRefresh(arguments.at(4)); });
    ftp.close();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    Globals globals;
    measureLocal(globals, arguments.size() > 1 ? arguments.at(1).toInt() : 100000);
    return arguments.size() > 6 ? measureRemote(globals, arguments.mid(2)) : 0;
}
