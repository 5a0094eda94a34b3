#pragma once

#include "ftp/client.h"
#include "ftp/tree_listing.h"

#include <atomic>
#include <functional>
#include <string>
#include <vector>

namespace ftp {

/// How deep folders may be nested below the first one; what lies deeper is refused.
inline constexpr int deepestFolder = 64;

/// Enters a folder. @return where the server says that is, empty when it does not say so
Awaitable<Result<std::string>> enterFolder(Session &session, std::string path);

/// The folder that a reply to PWD tells, empty when it tells none.
[[nodiscard]] std::string folderTold(const Reply &told);

/// Whether a folder that was entered is not the one below its parent but another that a link leads
/// to. A server that does not tell its places is believed.
/// @param above, here  the server's own words for the parent and for the folder
[[nodiscard]] bool leadsElsewhere(const std::string &above, const std::string &name,
                                  const std::string &here);

/// What a listing of the folder above tells about a folder.
struct FolderNature {
    bool link = false; ///< it is no folder but a link
    bool known = true; ///< false when the folder above may never be entered or listed
    std::string above; ///< where the server says that the folder above is; empty = unknown
};
/// Looks into the folder above. A folder above that may never be entered or listed tells nothing.
Awaitable<Result<FolderNature>> natureOf(Session &session, std::string path);

/// The links that a walk has to know as such: those that look like folders, since it would follow
/// them, or all of them.
enum class LinksOf { Folders, Everything };

/// Lists the current folder for a walk that must not follow links.
Awaitable<Result<TreeListing>> listWithLinks(Session &session, LinksOf of);

/// Looks at one folder of a walk. The session stands in it.
using FolderVisitor = std::function<Awaitable<Status>(Session &session, std::string path,
                                                      const TreeListing &listing)>;
/// Hears of what could not be looked at.
using WalkFailed = std::function<void(const std::string &path, const Error &error)>;

/// Visits folders and all folders in them, parents first, one after another. Links are not
/// followed. The client's session is back in its folder afterwards.
/// @param tops  raw absolute paths; what cannot be listed is told to failed and passed over
/// @param stop  ends the walk before its next folder when it becomes true
Awaitable<Status> walkFolders(Client &client, std::vector<std::string> tops, LinksOf of,
                              FolderVisitor visit, WalkFailed failed, const std::atomic_bool &stop);

} // namespace ftp
