#pragma once

#include <QString>
#include <QStringList>

/// Kinds of a pane row: the keys of the icons in imgSmallIcon. Compared exactly.
namespace ItemKind {
inline const QString Cdup = QStringLiteral("Cdup");
inline const QString FolderClose = QStringLiteral("FolderClose");
inline const QString Link = QStringLiteral("Link");
inline const QString FolderLink = QStringLiteral("FolderLink");
inline const QString File = QStringLiteral("File");
inline const QString TextFile = QStringLiteral("TextFile");
inline const QString ZipFile = QStringLiteral("ZipFile");
inline const QString ExeFile = QStringLiteral("ExeFile");
inline const QString ImageFile = QStringLiteral("ImageFile");
inline const QString HelpFile = QStringLiteral("HelpFile");

/// All 22 keys of the image list, in its fixed order.
[[nodiscard]] const QStringList &imageKeys();

/// Folders, folder links and unresolved links: what transfers and delete treat as a folder.
[[nodiscard]] bool isFolderLike(const QString &kind);

/// Kind of a file by the last four characters of its name, in upper case.
[[nodiscard]] QString byExtension(const QString &name);
} // namespace ItemKind
