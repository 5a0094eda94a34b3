#include "app/panedrag.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "remote/itemkind.h"

#include <QCoreApplication>
#include <QFileInfo>
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
        urls.append(QUrl::fromLocalFile(path));
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
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
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
        const QFileInfo file(plain);
        if (file.fileName().isEmpty() || !file.exists()) {
            continue;
        }
        const QString folder = plain.chopped(file.fileName().size());
        marked.MarkedItems.append(
            { file.fileName(), folder,
              file.isDir() ? ItemKind::FolderClose : ItemKind::byExtension(file.fileName()),
              file.isDir() ? QString() : QString::number(file.size()), -1 });
        ++marked.MarkedCount;
    }
    return marked;
}
