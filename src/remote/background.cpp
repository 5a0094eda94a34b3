#include "remote/background.h"

#include <QEventLoop>

#include <system_error>
#include <thread>

void runBesideWindow(const std::function<void()> &work)
{
    QEventLoop loop;
    std::thread worker;
    try {
        worker = std::thread([&] {
            work();
            QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        });
    } catch (const std::system_error &) {
        work(); // no thread to be had: better a short standstill than no result
        return;
    }
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    worker.join();
}
