#include "ftp/localfile.h"

#include <cerrno>
#include <gtest/gtest.h>

using ftp::ErrorKind;

TEST(LocalError, OnlyADiskWithoutRoomIsFull)
{
    for (const int code : { ENOSPC, EDQUOT }) {
        EXPECT_EQ(ftp::localError(code, "/x").value().kind, ErrorKind::LocalDiskFull);
    }
    // One file that is too big for the file system leaves room for the others of its batch.
    for (const int code : { EFBIG, EACCES, ENOENT, EISDIR }) {
        EXPECT_EQ(ftp::localError(code, "/x").value().kind, ErrorKind::LocalFile);
    }
}
