#include "fileops/aside.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <system_error>
#include <thread>

namespace {

constexpr int lookTime = 10; ///< milliseconds between two looks at the work
constexpr qint64 grace = 300; ///< milliseconds that work which was told to stop has for it

} // namespace

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

bool runAsideUntil(const std::function<void()> &work,
                   const std::shared_ptr<const std::atomic_bool> &stop)
{
    const auto done = std::make_shared<std::atomic_bool>(false);
    try {
        std::thread([work, done] {
            work();
            *done = true;
        }).detach();
    } catch (const std::system_error &) {
        return false; // no thread to be had
    }
    QEventLoop loop;
    QElapsedTimer stopped;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (*stop && !stopped.isValid()) {
            stopped.start();
        }
        if (*done || (stopped.isValid() && stopped.hasExpired(grace))) {
            loop.quit();
        }
    });
    look.start(lookTime);
    loop.exec();
    return *done;
}
