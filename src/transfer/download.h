#pragma once

#include "transfer/tools.h"

/// Fetches the marked remote rows (Globals::marked) into a local folder.
class Download {
public:
    explicit Download(const TransferTools &tools)
        : m_tools(tools)
    {
    }

    /// The whole batch. @param target  local folder, ends in the separator
    void DownloadSelection(const QString &target);
    /// One record of the batch. @param record  slot in Globals::marked, from 1
    void DownloadFile(const QString &target, int record);
    void DownloadFolder(const QString &target, int record);

private:
    TransferTools m_tools;
};
