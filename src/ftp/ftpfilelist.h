#pragma once

#include "ftp/file_list.h"
#include "ftp/ftpbridge.h"

#include <deque>

/// Hands what the engine tells about a list of files to the control's thread, one report after the
/// other: while a message box that one of them has opened still stands, the next ones wait.
class FtpFileList : public std::enable_shared_from_this<FtpFileList> {
public:
    using Event = std::function<void(const FtpEvent &)>;

    /// @param event, done  called on the control's thread, only while the control's call runs
    FtpFileList(std::shared_ptr<FtpBridge> bridge, int operation, Event event, FtpFileDone done)
        : m_bridge(std::move(bridge))
        , m_operation(operation)
        , m_event(std::move(event))
        , m_done(std::move(done))
    {
    }

    /// For the engine's thread.
    [[nodiscard]] ftp::FileReports reports();
    /// The call is over; nobody is told any more.
    void close() { m_closed = true; }

private:
    using Report = std::function<void(FtpFileList &)>;
    void post(Report report);
    void deliver(Report report);

    std::shared_ptr<FtpBridge> m_bridge;
    int m_operation;
    Event m_event;
    FtpFileDone m_done;
    std::deque<Report> m_waiting;
    bool m_delivering = false, m_closed = false;
};

/// A list in the engine's form.
[[nodiscard]] std::vector<ftp::FilePair> enginePairs(const QList<FtpFile> &files);
