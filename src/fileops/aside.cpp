#include "fileops/aside.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <semaphore>
#include <system_error>
#include <thread>

namespace {

constexpr int lookTime = 10; ///< milliseconds between two looks at the work
constexpr std::chrono::milliseconds unfelt(25); ///< below what anybody feels as a standstill
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
    return runAsideUntil(
        work, [stop] { return stop->load(); }, [] {});
}

bool runAsideUntil(const std::function<void()> &work, const std::function<bool()> &stop,
                   const std::function<void()> &slow)
{
    const auto done = std::make_shared<std::binary_semaphore>(0);
    try {
        std::thread([work, done] {
            work();
            done->release();
        }).detach();
    } catch (const std::system_error &) {
        return false; // no thread to be had
    }
    if (done->try_acquire_for(unfelt)) {
        return true;
    }
    slow();
    bool finished = false;
    QEventLoop loop;
    QElapsedTimer stopped;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (!stopped.isValid() && stop()) {
            stopped.start();
        }
        finished = finished || done->try_acquire();
        if (finished || (stopped.isValid() && stopped.hasExpired(grace))) {
            loop.quit();
        }
    });
    look.start(lookTime);
    loop.exec();
    return finished;
}
