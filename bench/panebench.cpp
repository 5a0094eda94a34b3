// Figures of the panes with big folders:
//
//   panebench [ENTRIES] [HOST PORT USER PASSWORD FOLDER]
//
// Lists a local folder of so many empty files (100,000 unless said otherwise), sorts it by every
// column, and, with a server, lists a folder there. Prints milliseconds until all rows are shown,
// the longest stall of the event loop meanwhile, and what the rows need in memory.
#include "common/globals.h"
#include "common/shell.h"
#include "ftp/ftpcontrol.h"
#include "local/localpane.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"

#include <QApplication>
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
        m_timer.start(0);
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

void measure(const char *what, FilePane &pane, const std::function<void()> &list)
{
    const std::size_t before = mallinfo2().uordblks;
    QElapsedTimer clock;
    clock.start();
    StallMeter stalls;
    list();
    const double shown = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    QCoreApplication::processEvents(); // the first painting counts as a stall too
    const double memory = static_cast<double>(mallinfo2().uordblks - before) / 1048576.0;
    std::printf("%-14s %7d rows %8.0f ms  longest stall %6.1f ms  memory %6.1f MiB\n", what,
                pane.model().rowCount(), shown, stalls.longest(), memory);
    for (int column = 0; column < pane.model().columnCount(); ++column) {
        clock.restart();
        pane.sortByColumn(column);
        std::printf("  sort by %-10s %6.0f ms\n",
                    qPrintable(pane.model().headerData(column, Qt::Horizontal).toString()),
                    static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
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
