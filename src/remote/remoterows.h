#pragma once

#include "ftp/ftptypes.h"
#include "remote/panemodel.h"

/// Rows of a listing in its order: up row, folders, then links and files. Names that would lead
/// elsewhere ("." and "..") are left out.
/// @param folder  listed folder, ends in "/"; every tag is this folder and the name
[[nodiscard]] QList<PaneRow> buildRemoteRows(const RemoteListing &listing, const QString &folder);

/// Explanation for the log of a listing that could not be read. @param rawText  as received
[[nodiscard]] QString listingFailureText(const QString &rawText);
