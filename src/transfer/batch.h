#pragma once

#include "common/names.h"
#include "transfer/tools.h"

#include <functional>
#include <optional>

/// Start and end of every batch, and what an item of either direction has in common.
class Batch {
public:
    explicit Batch(const TransferTools &tools);

    /// Runs the marked items in order. The row mark of every item in the source pane is cleared;
    /// after an abort, a lost connection or stop() no further item begins.
    /// @param prepare  called once before the first item; may be empty
    /// @param list     called once behind the last item, while boxes and toolbars are still off
    /// @param some     carries out the items from a slot on, as many as it likes; returns the slot
    ///                 behind them
    void run(Pane &source, const std::function<void()> &prepare, const std::function<void()> &list,
             const std::function<int(int record)> &some);
    /// Slot behind the last item.
    [[nodiscard]] int behindLast() const { return m_items.MarkedCount; }
    [[nodiscard]] const MarkedItem &item(int record) const
    {
        return m_items.MarkedItems.at(record);
    }

    /// To be called before every transfer call: labels, transfer type and start time.
    void announce(const QString &label, const QString &sizeText);
    /// Adds the queue row of an item and clears the labels.
    /// @param failure  nothing when all went well
    void record(QueueRow row, const std::optional<FtpError> &failure, const QString &success);
    /// Ends the batch behind the current item.
    void stop() { m_stopped = true; }
    [[nodiscard]] bool isStopped() const { return m_stopped; }

    /// Seconds since midnight.
    [[nodiscard]] static double now();

private:
    [[nodiscard]] bool goesOn() const;
    void begin();
    void end();

    TransferTools m_tools;
    MarkedItemList m_items; ///< a copy: clicks during a call may mark anew
    bool m_stopped = false;
};
