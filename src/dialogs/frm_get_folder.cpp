#include "dialogs/frm_get_folder.h"

#include "common/intime.h"
#include "common/mo_standard.h"
#include "common/prompts.h"
#include "dialogs/dialogparts.h"

#include <QAbstractFileIconProvider>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QTreeView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using DialogParts::button;
using DialogParts::labelFor;

namespace {

/// One folder icon for all: asking the desktop for each folder's own is slow and may find none.
class FolderIcons : public QAbstractFileIconProvider {
public:
    explicit FolderIcons(const QIcon &folder)
        : m_icon(folder)
    {
    }
    QIcon icon(IconType) const override { return m_icon; }
    QIcon icon(const QFileInfo &) const override { return m_icon; }

private:
    QIcon m_icon;
};

/// A tree whose only column is as wide as its longest row, and never narrower than the tree: the
/// mark of a row goes from edge to edge.
class FolderTree : public QTreeView {
protected:
    void resizeEvent(QResizeEvent *event) override
    {
        header()->setMinimumSectionSize(viewport()->width());
        QTreeView::resizeEvent(event);
    }
};

/// Whether a folder is the drive's or lies below it.
bool isOnDrive(const QString &folder, const QString &drive)
{
    return folder == drive || folder.startsWith(withSeparator(drive, LocalSeparator));
}

} // namespace

frm_get_folder::frm_get_folder(Globals &globals, Prompts &prompts, const QList<Drive> &drives,
                               const QIcon &folderIcon, QWidget *parent)
    : QDialog(parent)
    , m_globals(globals)
    , m_prompts(prompts)
    , m_drives(drives)
    , m_icons(std::make_unique<FolderIcons>(
          folderIcon.isNull() ? style()->standardIcon(QStyle::SP_DirIcon) : folderIcon))
    , m_model(new QFileSystemModel(this))
    , m_Drive1(new QComboBox)
    , m_Dir1(new FolderTree)
    , m_tx_pfad(new QLineEdit)
{
    setObjectName(u"frm_get_folder"_s);
    setWindowTitle(u"Ordner wählen"_s);
    setModal(true);
    m_globals.folderChoice.FolderPicked = false;
    buildLayout();
    const QString &start = m_globals.folderChoice.PickedFolder;
    const bool exists = !start.isEmpty() && isFolderInTime(start);
    showFolder(exists ? QDir(start).absolutePath() : m_globals.folders.profiles);
}

frm_get_folder::~frm_get_folder()
{
    delete m_model; // before the icons that it asks for
}

void frm_get_folder::buildLayout()
{
    // Hidden folders too: the default folder may lie in one.
    m_model->setFilter(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    m_model->setIconProvider(m_icons.get());
    m_model->setRootPath(u"/"_s);
    // Folders are read aside, and sorted still later; rows that come in then push the shown folder
    // out of sight, which stays there until the user scrolls.
    connect(m_model, &QFileSystemModel::directoryLoaded, this, &frm_get_folder::keepInSight);
    connect(m_model, &QFileSystemModel::layoutChanged, this, &frm_get_folder::keepInSight,
            Qt::QueuedConnection);
    connect(m_Dir1->verticalScrollBar(), &QScrollBar::actionTriggered, this,
            [this] { m_keepsInSight = false; });
    m_Dir1->setObjectName(u"Dir1"_s);
    m_Dir1->setModel(m_model);
    m_Dir1->setHeaderHidden(true);
    for (int column = 1; column < m_model->columnCount(); ++column) {
        m_Dir1->hideColumn(column);
    }
    m_Dir1->header()->setStretchLastSection(false);
    m_Dir1->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_Dir1->setMinimumSize(420, 260);
    m_tx_pfad->setObjectName(u"tx_pfad"_s);
    connect(m_Dir1->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { m_tx_pfad->setText(shownFolder()); });

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(6);
    column->addWidget(labelFor(m_Drive1, u"&Laufwerk"_s));
    column->addLayout(driveRow());
    column->addSpacing(6);
    column->addWidget(labelFor(m_Dir1, u"&Verzeichnis"_s));
    column->addWidget(m_Dir1, 1);
    column->addSpacing(6);
    column->addWidget(labelFor(m_tx_pfad, u"&Pfad zum gewählten Verzeichnis"_s));
    column->addWidget(m_tx_pfad);
    column->addSpacing(6);
    column->addLayout(buttonRow());
}

QLayout *frm_get_folder::driveRow()
{
    m_Drive1->setObjectName(u"Drive1"_s);
    for (const Drive &drive : m_drives) {
        m_Drive1->addItem(drive.display(), drive.path);
    }
    connect(m_Drive1, &QComboBox::currentIndexChanged, this, &frm_get_folder::showDrive);
    auto *desktop = button(u"cmd_desktop"_s, u"&Desktop"_s, u"Desktop anzeigen"_s);
    connect(desktop, &QPushButton::clicked, this, [this] {
        isFolderInTime(m_globals.folders.desktop) ? showFolder(m_globals.folders.desktop) : void();
    });
    auto *fresh = button(u"cmd_new_folder"_s, u"&Neuer Ordner"_s, u"Neuen Ordner erstellen"_s);
    connect(fresh, &QPushButton::clicked, this, &frm_get_folder::makeFolder);
    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(m_Drive1, 1);
    row->addWidget(desktop);
    row->addWidget(fresh);
    return row;
}

QLayout *frm_get_folder::buttonRow()
{
    auto *ok = button(u"cmd_ok"_s, u"OK"_s);
    auto *cancel = button(u"cmd_abbrechen"_s, u"Abbrechen"_s);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &frm_get_folder::confirm);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addStretch();
    row->addWidget(ok);
    row->addWidget(cancel);
    return row;
}

QString frm_get_folder::shownFolder() const
{
    const QModelIndex current = m_Dir1->currentIndex();
    return m_model->filePath(current.isValid() ? current : m_Dir1->rootIndex());
}

void frm_get_folder::showFolder(const QString &folder)
{
    selectDriveOf(folder);
    m_keepsInSight = true;
    const QModelIndex index = m_model->index(folder);
    m_Dir1->setCurrentIndex(index);
    m_Dir1->expand(index);
    m_Dir1->scrollTo(index, QAbstractItemView::PositionAtCenter);
    m_Dir1->horizontalScrollBar()->setValue(0);
    m_tx_pfad->setText(folder);
}

void frm_get_folder::keepInSight()
{
    const QRect row = m_Dir1->visualRect(m_Dir1->currentIndex());
    if (m_keepsInSight && !m_Dir1->viewport()->rect().contains(row.center())) {
        m_Dir1->scrollTo(m_Dir1->currentIndex(), QAbstractItemView::PositionAtCenter);
        m_Dir1->horizontalScrollBar()->setValue(0);
    }
}

void frm_get_folder::selectDriveOf(const QString &folder)
{
    // The longest drive that holds the folder: "/media/anna/STICK" before "/".
    int best = -1;
    for (int at = 0; at < m_drives.size(); ++at) {
        const qsizetype length = best < 0 ? -1 : m_drives.at(best).path.size();
        if (isOnDrive(folder, m_drives.at(at).path) && m_drives.at(at).path.size() > length) {
            best = at;
        }
    }
    const QSignalBlocker quiet(m_Drive1);
    m_Drive1->setCurrentIndex(best);
    m_Dir1->setRootIndex(m_model->index(best < 0 ? u"/"_s : m_drives.at(best).path));
}

void frm_get_folder::showDrive(int index)
{
    if (index >= 0 && !isFolderInTime(m_drives.at(index).path)) {
        selectDriveOf(shownFolder());
    } else if (index >= 0) {
        const QString root = m_drives.at(index).path;
        m_Dir1->setRootIndex(m_model->index(root));
        m_Dir1->setCurrentIndex(m_Dir1->rootIndex());
        m_tx_pfad->setText(root);
    }
}

void frm_get_folder::makeFolder()
{
    const auto name
        = m_prompts.input(u"Geben Sie einen Namen für den Ordner an."_s, u"NeuerOrdner"_s);
    if (!name || name->isEmpty()) {
        return;
    }
    const QString path = joinPath(shownFolder(), *name);
    if (isFolderInTime(path)) {
        m_prompts.message(u"Der Ordner konnte nicht erstelt werden, da ein Ordner mit diesem Namen "
                          "bereits vorhanden ist."_s);
        return;
    }
    constexpr std::chrono::seconds patience { 2 }; // as for every other question about a folder
    if (!yesInTime([path] { return QDir().mkdir(path); }, patience)) {
        m_prompts.message(u"Der Ordner konnte nicht erstellt werden:\n%1"_s.arg(path));
        return;
    }
    showFolder(path);
}

void frm_get_folder::confirm()
{
    const QString path = m_tx_pfad->text();
    if (!isFolderInTime(path)) {
        m_prompts.message(
            u"Sie müssen einen Ordner(Verzeichnis) angeben oder 'Abbrechen' wählen"_s);
        return;
    }
    m_globals.folderChoice.PickedFolder = withoutSeparator(path);
    m_globals.folderChoice.FolderPicked = true;
    accept();
}
