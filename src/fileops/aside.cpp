#include "fileops/aside.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <semaphore>
#include <system_error>
#include <thread>

namespace {

constexpr int lookTime = 10; ///< milliseconds between two looks at the work
constexpr std::chrono::milliseconds unfelt(25); ///< below what anybody feels as a standstill
constexpr qint64 grace = 300; ///< milliseconds that work which was told to stop has for it

using Done = std::shared_ptr<std::binary_semaphore>;

/// Begins the work. @return released when it is done
Done begin(const std::function<void()> &work)
{
    const auto done = std::make_shared<std::binary_semaphore>(0);
    const auto run = [work, done] {
        work();
        done->release();
    };
    try {
        std::thread(run).detach();
    } catch (const std::system_error &) {
        run(); // no thread to be had: better a standstill than no result
    }
    return done;
}

/// Runs the event loop until the work is done, or for a grace once it has to stop.
bool waitFor(const Done &done, const std::function<bool()> &stop)
{
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

} // namespace

bool runAsideUntil(const std::function<void()> &work,
                   const std::shared_ptr<const std::atomic_bool> &stop)
{
    return waitFor(begin(work), [stop] { return stop->load(); });
}

bool runAsideUntil(const std::function<void()> &work, const std::function<bool()> &stop,
                   const std::function<void()> &slow)
{
    const Done done = begin(work);
    if (done->try_acquire_for(unfelt)) {
        return true;
    }
    slow();
    return waitFor(done, stop);
}
