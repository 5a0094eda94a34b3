#include "app/transfernotice.h"

#include "app/notifier.h"
#include "transfer/progressmodel.h"

#include <QElapsedTimer>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 LongBatch = 10000; ///< milliseconds

qint64 monotonicNow()
{
    static const QElapsedTimer timer = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return timer.elapsed();
}

} // namespace

TransferNotice::TransferNotice(QWidget &window, ProgressModel &progress, Notifier *notifier,
                               Clock clock)
    : QObject(&window)
    , m_window(window)
    , m_progress(progress)
    , m_notifier(notifier)
    , m_clock(clock ? std::move(clock) : Clock(monotonicNow))
    , m_caption(window.windowTitle())
{
    connect(&progress, &ProgressModel::batchBegan, this, &TransferNotice::begin);
    connect(&progress, &ProgressModel::batchEnded, this, &TransferNotice::end);
    connect(&progress, &ProgressModel::changed, this, &TransferNotice::showTitle);
}

void TransferNotice::setCaption(const QString &caption)
{
    m_caption = caption;
    showTitle();
}

void TransferNotice::count(const QueueRow &row) { ++(row.failed ? m_failed : m_done); }

void TransferNotice::begin()
{
    m_running = true;
    m_done = m_failed = 0;
    m_start = m_clock();
    showTitle();
}

void TransferNotice::end()
{
    m_running = false;
    showTitle();
    const bool seen = m_window.isVisible() && !m_window.isMinimized();
    if (m_notifier != nullptr && !seen && m_clock() - m_start > LongBatch) {
        m_notifier->notify(u"Übertragung beendet"_s, summary());
    }
}

void TransferNotice::showTitle()
{
    const QString title
        = m_running ? QString::number(m_progress.percent()) + u" % - "_s + m_caption : m_caption;
    if (title != m_window.windowTitle()) {
        m_window.setWindowTitle(title);
    }
}

QString TransferNotice::summary() const
{
    const QString done = QString::number(m_done) + u" übertragen"_s;
    return m_failed == 0 ? done : done + u", "_s + QString::number(m_failed) + u" fehlgeschlagen"_s;
}
