#pragma once

#include "common/shell.h"

#include <QObject>
#include <functional>

class Notifier;
class ProgressModel;
class QWidget;

/// What is seen of a transfer when nobody looks at the window: the percentage in its title, and one
/// notification at the end of a long batch.
class TransferNotice : public QObject {
    Q_OBJECT

public:
    using Clock = std::function<qint64()>; ///< milliseconds since any fixed moment

    /// @param notifier  may be null
    TransferNotice(QWidget &window, ProgressModel &progress, Notifier *notifier, Clock clock = {});

    void setCaption(const QString &caption); ///< the title without a percentage
    void count(const QueueRow &row); ///< a row of the batch

private:
    void begin();
    void end();
    void showTitle();
    [[nodiscard]] QString summary() const;

    QWidget &m_window;
    ProgressModel &m_progress;
    Notifier *m_notifier;
    Clock m_clock;
    QString m_caption;
    qint64 m_start = 0;
    int m_done = 0, m_failed = 0;
    bool m_running = false;
};
