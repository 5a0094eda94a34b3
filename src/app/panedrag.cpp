#include "app/panedrag.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"

#include <QCoreApplication>
#include <QMimeData>
#include <QUrl>

namespace {

const QString rowsFormat = QStringLiteral("application/x-tarvelo-ftp-rows");

/// Name of the pane with the number of this process: a second program's rows are not ours.
QByteArray tokenOf(const QString &pane)
{
    return pane.toLatin1() + ' ' + QByteArray::number(QCoreApplication::applicationPid());
}

} // namespace

QMimeData *PaneDrag::rowsOf(const QString &pane, const QStringList &paths)
{
    auto *data = new QMimeData;
    data->setData(rowsFormat, tokenOf(pane));
    QList<QUrl> urls;
    for (const QString &path : paths) {
        urls.append(urlOfPath(path));
    }
    if (!urls.isEmpty()) {
        data->setUrls(urls);
    }
    return data;
}

bool PaneDrag::isFrom(const QMimeData &data, const QString &pane)
{
    return data.data(rowsFormat) == tokenOf(pane);
}

QStringList PaneDrag::localFiles(const QMimeData &data)
{
    QStringList paths;
    if (data.hasFormat(rowsFormat)) {
        return paths;
    }
    for (const QUrl &url : data.urls()) {
        if (const QString path = pathOfUrl(url); !path.isEmpty()) {
            paths.append(path);
        }
    }
    return paths;
}

MarkedItemList PaneDrag::markedFiles(const QStringList &paths)
{
    MarkedItemList marked;
    for (const QString &path : paths) {
        QString plain = path; // file managers write folders with a separator at the end
        while (plain.size() > 1 && plain.endsWith(LocalSeparator)) {
            plain.chop(1);
        }
        const LocalEntry entry = localEntry(plain);
        const QString name = plain.section(LocalSeparator, -1);
        if (name.isEmpty() || !entry.exists) {
            continue;
        }
        marked.MarkedItems.append(
            { name, plain.chopped(name.size()),
              entry.isFolder ? ItemKind::FolderClose : ItemKind::byExtension(name),
              entry.isFolder ? QString() : QString::number(entry.size), -1 });
        ++marked.MarkedCount;
    }
    return marked;
}
