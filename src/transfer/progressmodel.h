#pragma once

#include "common/globals.h"
#include "fileops/progressdisplay.h"
#include "ftp/ftptypes.h"

#include <QObject>

/// What the progress bar and its three labels show, in 64 bits.
class ProgressModel : public QObject, public ProgressDisplay {
    Q_OBJECT

public:
    using QObject::QObject;

    void beginBatch() override;
    void setMaximumFor(qint64 size) override;
    void setValue(qint64 value) override;
    void finish() override;

    /// Takes one event.
    /// @return whether it was a progress report (in progress, operations 14 to 17); any other
    ///         event changes nothing
    bool report(const FtpEvent &event, const TransferState &state);

    /// Labels of the item about to be worked on; two empty texts clear them.
    void ShowTransferItem(const QString &text, const QString &sizeText);

    [[nodiscard]] qint64 value() const { return m_value; }
    [[nodiscard]] qint64 maximum() const { return m_maximum; }
    [[nodiscard]] int percent() const; ///< 0 to 100
    [[nodiscard]] QString rateText() const { return m_rate; }
    [[nodiscard]] QString sizeText() const { return m_size; }
    [[nodiscard]] QString fileText() const { return m_file; }

Q_SIGNALS:
    void changed();
    void batchBegan();
    void batchEnded();

private:
    void advance(qint64 done);
    [[nodiscard]] QString nothingYet() const;

    qint64 m_value = 0;
    qint64 m_maximum = 100;
    bool m_inBatch = false;
    QString m_rate, m_size, m_file;
};
