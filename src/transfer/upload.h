#pragma once

#include "transfer/tools.h"

/// Stores the marked local rows (Globals::marked) in a remote folder.
class Upload {
public:
    explicit Upload(const TransferTools &tools)
        : m_tools(tools)
    {
    }

    /// The whole batch. @param target  remote folder, ends in "/"
    void UploadSelection(const QString &target);
    /// One record of the batch. @param folder  local folder @param record  slot, from 1
    void UploadFile(const QString &folder, int record);
    void UploadFolder(const QString &folder, int record);

private:
    TransferTools m_tools;
    QString m_target; ///< remote folder of the batch, ends in "/"
};
