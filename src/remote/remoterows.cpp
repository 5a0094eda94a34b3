#include "remote/remoterows.h"

#include "common/mo_standard.h"
#include "remote/itemkind.h"

#include <QHash>

namespace {

bool isFolder(const ListingEntry &entry) { return entry.type == u"d"; }

QString kindOf(const ListingEntry &entry)
{
    if (isFolder(entry)) {
        return ItemKind::FolderClose;
    }
    // Intended: case counts for folders and not for links, so "D" is a file.
    return entry.type.compare(u"L", Qt::CaseInsensitive) == 0 ? ItemKind::Link
                                                              : ItemKind::byExtension(entry.name);
}

/// Makes rows; equal permission texts share their memory, which counts in big folders.
class RowMaker {
public:
    explicit RowMaker(const QString &folder)
        : m_folder(folder)
    {
    }

    PaneRow row(const ListingEntry &entry)
    {
        QString &permissions = m_permissions[entry.permissions];
        if (permissions.isEmpty()) {
            permissions = QString::number(entry.permissions);
        }
        return { entry.name, kindOf(entry), QString::number(entry.size),
                 entry.date, permissions,   m_folder + entry.name,
                 false };
    }

private:
    QString m_folder;
    QHash<int, QString> m_permissions;
};

} // namespace

QList<PaneRow> buildRemoteRows(const RemoteListing &listing, const QString &folder)
{
    QList<PaneRow> rows { upRow() };
    if (listing.format == RemoteListing::Uninterpretable) {
        return rows;
    }
    rows.reserve(listing.entries.size() + 1);
    RowMaker maker(folder);
    for (const bool folders : { true, false }) {
        for (const ListingEntry &entry : listing.entries) {
            if (isFolder(entry) == folders && entry.name != u"." && entry.name != u"..") {
                rows.append(maker.row(entry));
            }
        }
    }
    return rows;
}

QString listingFailureText(const QString &rawText)
{
    QString text = QStringLiteral("Die Auflösung der gelieferten Dateiliste schlug fehl.\r\n");
    if (trimBlanks(rawText).isEmpty()) {
        return text
            + QStringLiteral(
                   "Dieser Fehler tritt häufig auf wenn ein leeres Verzeichnis aufgerufen "
                   "wird und kann in den meisten Fällen ignoriert werden.");
    }
    return text
        + QStringLiteral("Vermutlich haben Sie sich nicht mit einem Unixserver verbunden.\r\n")
        + QStringLiteral("Zur Information wird ein Teil der Liste gezeigt.\r\n") + rawText;
}
