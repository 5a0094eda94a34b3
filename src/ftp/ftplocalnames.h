#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// Names of this computer's files are bytes, usually UTF-8. Each byte that is none becomes a
/// character of its own (the lone low surrogate U+DC00 + byte), so that such a name can be carried
/// through the program as text and come out as the very same bytes.

/// Text of a name or path.
[[nodiscard]] QString textOfName(QByteArrayView name);
/// The bytes of a name or path.
[[nodiscard]] QByteArray bytesOfName(const QString &text);
/// Whether a text carries bytes that are no UTF-8.
[[nodiscard]] bool holdsRawBytes(QStringView text);
/// The text for the eye: a replacement character for every such byte.
[[nodiscard]] QString shownName(const QString &text);
/// The name under which a file goes to a server: bytes that are no UTF-8 are read as Windows-1252,
/// as they are in a listing of a server.
[[nodiscard]] QString nameForServer(const QString &name);

/// A path as other programs take it, and back; empty for an address that is no path.
[[nodiscard]] QUrl urlOfPath(const QString &path);
[[nodiscard]] QString pathOfUrl(const QUrl &url);

/// What stands at a path of this computer. Links are followed.
struct LocalEntry {
    bool exists = false, isFolder = false, isFile = false;
    qint64 size = 0; ///< bytes of a file, else 0
};
[[nodiscard]] LocalEntry localEntry(const QString &path);
/// Makes one folder. @return whether it was made
[[nodiscard]] bool makeLocalFolder(const QString &path);
