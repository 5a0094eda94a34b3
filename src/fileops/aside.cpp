#include "fileops/aside.h"

#include <QEventLoop>
#include <QThread>
#include <memory>

void runAside(const std::function<void()> &work)
{
    const std::unique_ptr<QThread> thread(QThread::create(work));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec();
    // The loop ends early when the program is told to quit; the work is never left behind.
    thread->wait();
}
