#include "support/fakepane.h"

#include "common/mo_standard.h"
#include "ftp/ftpoperations.h"
#include "remote/itemkind.h"

#include <QDir>

using namespace Qt::StringLiterals;

FakePane::FakePane(Lister lister, int columns)
    : m_lister(std::move(lister))
    , m_model(QStringList { u"Name"_s, u"Size"_s, u"Date"_s, u"Permission"_s }.mid(0, columns))
{
}

FakePane::Lister FakePane::disk()
{
    return [](const QString &folder) {
        QList<PaneRow> rows { upRow() };
        const auto entries = QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden
                                                            | QDir::System | QDir::NoDotAndDotDot,
                                                        QDir::Name | QDir::DirsFirst);
        for (const QFileInfo &entry : entries) {
            const bool isFolder = entry.isDir();
            rows.append({ entry.fileName(),
                          isFolder
                              ? (entry.isSymLink() ? ItemKind::FolderLink : ItemKind::FolderClose)
                              : ItemKind::byExtension(entry.fileName()),
                          QString::number(entry.size()),
                          {},
                          {},
                          withSeparator(folder, u'/') + entry.fileName(),
                          false });
        }
        return rows;
    };
}

FakePane::Lister FakePane::server(FtpOperations &ftp)
{
    return [&ftp](const QString &folder) {
        if (withSeparator(ftp.currentFolder(), u'/') != withSeparator(folder, u'/')) {
            ignoreError(ftp.setCurrentFolder(folder), "the pane shows what it can");
        }
        ignoreError(ftp.list(), "the pane shows what it can");
        QList<PaneRow> rows { upRow() };
        for (const ListingEntry &entry : ftp.listing().entries) {
            const QString kind = entry.type == u"d"_s ? ItemKind::FolderClose
                : entry.type == u"l"_s                ? ItemKind::Link
                                                      : ItemKind::byExtension(entry.name);
            rows.append({ entry.name, kind, QString::number(entry.size), entry.date,
                          QString::number(entry.permissions),
                          withSeparator(folder, u'/') + entry.name, false });
        }
        return rows;
    };
}

void FakePane::show(const QString &folder)
{
    listFolder(folder);
    text = withSeparator(folder, u'/');
    calls.clear();
}

void FakePane::select(const QStringList &names)
{
    selected.clear();
    current = -1;
    for (int row = 0; row < m_model.rowCount(); ++row) {
        if (names.contains(m_model.row(row).name)) {
            selected.append(row);
            current = row;
        }
    }
}

QStringList FakePane::names() const
{
    QStringList result;
    for (const PaneRow &row : m_model.rows()) {
        if (!row.name.isEmpty()) {
            result.append(row.name);
        }
    }
    return result;
}

QStringList FakePane::markedNames() const
{
    QStringList result;
    for (const PaneRow &row : m_model.rows()) {
        if (row.marked) {
            result.append(row.name);
        }
    }
    return result;
}

void FakePane::setFolderText(const QString &folder)
{
    calls.append(u"text "_s + folder);
    text = folder;
}

void FakePane::listFolder(const QString &folder)
{
    calls.append(u"list "_s + folder);
    m_model.setRows(m_lister(folder));
    clearSelection();
}

void FakePane::rememberFolder(const QString &folder)
{
    calls.append(u"remember "_s + folder);
    text = folder;
}

void FakePane::forgetFolder(const QString &folder) { calls.append(u"forget "_s + folder); }

void FakePane::clearSelection()
{
    calls.append(u"clear selection"_s);
    selected.clear();
    current = -1;
}

void FakePane::selectAll()
{
    selected.clear();
    for (int row = 0; row < m_model.rowCount(); ++row) {
        selected.append(row);
    }
}

void FakePane::editCaption(int row)
{
    calls.append(u"edit "_s + m_model.row(row).name);
    current = row;
}
