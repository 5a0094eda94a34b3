#pragma once

#include "ftp/error.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <optional>

/// Transfer types as the program codes them in memory and in the settings.
enum FtpTransferType { TypeAscii = 0, TypeBinary = 1, TypeEbcdic = 2 };

/// What a put does with an existing remote file.
enum FtpStoreMode { StoreReplace = 0, StoreContinue = 2 };

/// Operation codes of FtpEvent. 14 to 17 carry byte counts, 25 drives the new-folder loop.
enum FtpOperation {
    OpConnect = 1,
    OpLogout = 2,
    OpChangeFolder = 5,
    OpList = 10,
    OpGetFile = 14, ///< bytes of one file, counted from the wanted restart offset
    OpGetMultiple = 15, ///< bytes of a whole tree
    OpPutMultiple = 16, ///< bytes of a whole tree
    OpPutFile = 17, ///< bytes of one file, counted from the wanted restart offset
    OpDelete = 20,
    OpRename = 22,
    OpMakeFolder = 25,
    OpRemoveFolder = 26,
    OpRawCommand = 30,
};

/// One report during or after an operation.
struct FtpEvent {
    enum Status { Completed = 0, InProgress = 1, Failed = 2 };
    int operation = 0; ///< FtpOperation
    int status = InProgress;
    /// One complete reply of the server (lines joined by CR LF, ending in CR LF) or a message of
    /// the engine in the same form; empty for pure byte counts.
    QString text;
    /// Bytes so far, for operations 14 to 17; below zero when a resumed file starts again at 0.
    qint64 bytes = 0;
    /// Bytes of the whole tree as far as known, for operations 15 and 16; 0 = unknown.
    qint64 total = 0;
    /// Why it failed, when no reply of the server says so; nothing otherwise.
    std::optional<ftp::ErrorKind> reason = std::nullopt;
};
Q_DECLARE_METATYPE(FtpEvent)

/// Why a call of FtpControl failed. number() is 1 or more, text is never empty.
struct FtpError {
    ftp::ErrorKind kind = ftp::ErrorKind::Protocol;
    int replyCode = 0; ///< 0 = no reply of the server involved
    QString text; ///< description: the server's reply or an English text of the engine
    [[nodiscard]] int number() const
    {
        return replyCode > 0 ? replyCode : 1000 + static_cast<int>(kind);
    }
};

/// A value or the reason why there is none; must be looked at.
template <class T> struct [[nodiscard]] FtpResult : tl::expected<T, FtpError> {
    using tl::expected<T, FtpError>::expected;
};
using FtpStatus = FtpResult<void>;

/// Drops a result on purpose; the reason is for the reader.
template <class T> void ignoreError(const FtpResult<T> &, const char * /*reason*/) { }

/// One entry of a parsed listing.
struct ListingEntry {
    QString name;
    QString type; ///< "d" folder, "l" or "L" link, anything else a file
    qint64 size = 0; ///< bytes
    QString date; ///< yyyy-MM-dd HH:mm in local time, empty when the listing has none
    int permissions = 0; ///< the octal digits as a decimal number: 755
    QString target; ///< target of a link, empty when unknown
};

/// The listing of the folder listed last.
struct RemoteListing {
    static constexpr int Uninterpretable = 2;
    QList<ListingEntry> entries;
    int format = Uninterpretable; ///< Uninterpretable: the text could not be read
    QString rawText; ///< the listing as received
};

/// What stands inside folders; links count as files.
struct FtpFolderContent {
    qint64 files = 0;
    qint64 folders = 0;
    bool complete = true; ///< false when the counting was stopped or a folder could not be read
};

/// What a server says about a file; two fetches of the same file have the same facts.
struct FtpFileFacts {
    std::optional<qint64> size; ///< bytes; nothing when the server does not say
    std::optional<qint64> time; ///< seconds since 1970, UTC; nothing when the server does not say
    bool operator==(const FtpFileFacts &) const = default;
};
