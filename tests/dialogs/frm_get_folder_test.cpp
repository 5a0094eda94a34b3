#include "dialogs/frm_get_folder.h"

#include "support/accesskeys.h"
#include "support/scriptedprompts.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct FolderPicker : ::testing::Test {
    QTemporaryDir base;
    QString root = QDir(base.path()).canonicalPath();
    Globals globals;
    ScriptedPrompts prompts;
    QList<Drive> drives { { root, {} }, { u"/"_s, {} }, { root + u"/stick"_s, u"STICK"_s } };
    std::unique_ptr<frm_get_folder> dialog;

    void SetUp() override
    {
        for (const auto *name : { "mo_def", "desktop", "stick/fotos", "haus/küche" }) {
            QDir(root).mkpath(QString::fromUtf8(name));
        }
        globals.folders.profiles = root + u"/mo_def"_s;
        globals.folders.desktop = root + u"/desktop"_s;
    }
    void open(const QString &start)
    {
        globals.folderChoice.PickedFolder = start;
        dialog = std::make_unique<frm_get_folder>(globals, prompts, drives);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    template <class T> T *find(const char *name) const
    {
        auto *found = dialog->findChild<T *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    void press(const char *name) const { find<QPushButton>(name)->click(); }
    QString path() const { return find<QLineEdit>("tx_pfad")->text(); }
    QString drive() const { return find<QComboBox>("Drive1")->currentText(); }
};

} // namespace

TEST_F(FolderPicker, NoTwoPartsShareAnAccessKey)
{
    open({});
    EXPECT_EQ(sharedAccessKeys(*dialog), QStringList());
}

TEST_F(FolderPicker, TheMarkOfARowGoesFromEdgeToEdge)
{
    open({});
    const auto *tree = find<QTreeView>("Dir1");
    EXPECT_GE(tree->columnWidth(0), tree->viewport()->width());
    dialog->resize(dialog->width() + 200, dialog->height());
    EXPECT_TRUE(
        QTest::qWaitFor([tree] { return tree->columnWidth(0) >= tree->viewport()->width(); }));
}

TEST_F(FolderPicker, CaptionsAreTheGivenOnes)
{
    open({});
    EXPECT_EQ(dialog->objectName(), u"frm_get_folder"_s);
    EXPECT_EQ(dialog->windowTitle(), u"Ordner wählen"_s);
    EXPECT_EQ(find<QPushButton>("cmd_abbrechen")->text(), u"Abbrechen"_s);
    EXPECT_EQ(find<QPushButton>("cmd_desktop")->toolTip(), u"Desktop anzeigen"_s);
    EXPECT_EQ(find<QPushButton>("cmd_new_folder")->toolTip(), u"Neuen Ordner erstellen"_s);
    QMap<QString, QString> labels;
    for (const auto *label : dialog->findChildren<QLabel *>()) {
        if (label->buddy() != nullptr) {
            labels[label->buddy()->objectName()] = label->text().remove(u'&');
        }
    }
    EXPECT_EQ(labels.value(u"Drive1"_s), u"Laufwerk"_s);
    EXPECT_EQ(labels.value(u"Dir1"_s), u"Verzeichnis"_s);
    EXPECT_EQ(labels.value(u"tx_pfad"_s), u"Pfad zum gewählten Verzeichnis"_s);
}

TEST_F(FolderPicker, StartsAtAnExistingFolderWithItsDrive)
{
    open(root + u"/haus/küche"_s);
    EXPECT_EQ(path(), root + u"/haus/küche"_s);
    EXPECT_EQ(dialog->shownFolder(), path());
    EXPECT_EQ(drive(), root);
    open(root + u"/stick/fotos/"_s);
    EXPECT_EQ(path(), root + u"/stick/fotos"_s);
    EXPECT_EQ(drive(), root + u"/stick [STICK]"_s);
    open(u"/usr"_s);
    EXPECT_EQ(path(), u"/usr"_s);
    EXPECT_EQ(drive(), u"/"_s);
}

TEST_F(FolderPicker, TheShownFolderIsInSightOnceItsNeighboursAreRead)
{
    for (int number = 0; number < 200; ++number) {
        QDir(root).mkpath(u"viele/%1"_s.arg(number, 3, 10, QChar(u'0')));
    }
    open(root + u"/viele/150"_s);
    auto *tree = find<QTreeView>("Dir1");
    constexpr int patience = 20000; // milliseconds
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            const QModelIndex shown = tree->currentIndex();
            return shown.isValid() && tree->model()->rowCount(shown.parent()) == 200
                && tree->viewport()->rect().contains(tree->visualRect(shown).center());
        },
        patience));
}

TEST_F(FolderPicker, WithoutAnExistingStartItOpensOnTheProfileFolder)
{
    QFile file(root + u"/datei"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const QString &start : { QString(), root + u"/fehlt"_s, root + u"/datei"_s }) {
        open(start);
        EXPECT_EQ(path(), root + u"/mo_def"_s);
        EXPECT_EQ(drive(), root);
    }
}

TEST_F(FolderPicker, AnotherDriveShowsItsRoot)
{
    open({});
    find<QComboBox>("Drive1")->setCurrentIndex(2);
    EXPECT_EQ(path(), root + u"/stick"_s);
    EXPECT_EQ(dialog->shownFolder(), path());
    find<QComboBox>("Drive1")->setCurrentIndex(1);
    EXPECT_EQ(path(), u"/"_s);
}

TEST_F(FolderPicker, ChoosingInTheTreeFillsThePath)
{
    open(root + u"/haus"_s);
    auto *tree = find<QTreeView>("Dir1");
    const auto *model = qobject_cast<QFileSystemModel *>(tree->model());
    tree->setCurrentIndex(model->index(root + u"/haus/küche"_s));
    EXPECT_EQ(path(), root + u"/haus/küche"_s);
    // Only folders are offered.
    QFile file(root + u"/haus/datei"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const QModelIndex house = model->index(root + u"/haus"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return model->rowCount(house) == 1; }));
}

TEST_F(FolderPicker, TheDesktopIsOnePressAway)
{
    open({});
    press("cmd_desktop");
    EXPECT_EQ(path(), root + u"/desktop"_s);
    EXPECT_EQ(dialog->shownFolder(), path());
}

TEST_F(FolderPicker, OkHandsTheFolderOver)
{
    open(root + u"/haus"_s);
    EXPECT_FALSE(globals.folderChoice.FolderPicked);
    find<QLineEdit>("tx_pfad")->setText(root + u"/stick/"_s);
    press("cmd_ok");
    EXPECT_TRUE(globals.folderChoice.FolderPicked);
    EXPECT_EQ(globals.folderChoice.PickedFolder, root + u"/stick"_s);
    EXPECT_FALSE(dialog->isVisible());
    open(root);
    find<QLineEdit>("tx_pfad")->setText(u"/"_s);
    press("cmd_ok");
    EXPECT_EQ(globals.folderChoice.PickedFolder, u"/"_s);
}

TEST_F(FolderPicker, AMissingFolderIsRefused)
{
    open(root + u"/haus"_s);
    for (const QString &typed : { root + u"/fehlt"_s, QString() }) {
        find<QLineEdit>("tx_pfad")->setText(typed);
        prompts.expectMessage(
            u"Sie müssen einen Ordner(Verzeichnis) angeben oder 'Abbrechen' wählen"_s);
        press("cmd_ok");
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_FALSE(globals.folderChoice.FolderPicked);
    }
    EXPECT_EQ(globals.folderChoice.PickedFolder, root + u"/haus"_s);
}

TEST_F(FolderPicker, CancelAfterAnEarlierOkPicksNothing)
{
    open(root + u"/haus"_s);
    press("cmd_ok");
    EXPECT_TRUE(globals.folderChoice.FolderPicked);
    open(root + u"/haus"_s);
    EXPECT_FALSE(globals.folderChoice.FolderPicked);
    press("cmd_abbrechen");
    EXPECT_FALSE(globals.folderChoice.FolderPicked);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(FolderPicker, ANewFolderIsMadeAndShown)
{
    open(root + u"/haus"_s);
    prompts.expectInput(u"Geben Sie einen Namen für den Ordner an."_s, u"NeuerOrdner"_s, u"Bad"_s);
    press("cmd_new_folder");
    EXPECT_TRUE(QFileInfo(root + u"/haus/Bad"_s).isDir());
    EXPECT_EQ(path(), root + u"/haus/Bad"_s);
    EXPECT_EQ(dialog->shownFolder(), path());
    press("cmd_ok");
    EXPECT_EQ(globals.folderChoice.PickedFolder, root + u"/haus/Bad"_s);
}

TEST_F(FolderPicker, ANewFolderIsMadeInTheOneShownNotInTheOneTyped)
{
    open(root + u"/haus"_s);
    find<QLineEdit>("tx_pfad")->setText(root + u"/stick"_s);
    prompts.expectInput(u"Geben Sie einen Namen für den Ordner an."_s, u"NeuerOrdner"_s, u"Bad"_s);
    press("cmd_new_folder");
    EXPECT_TRUE(QFileInfo(root + u"/haus/Bad"_s).isDir());
    EXPECT_FALSE(QFileInfo::exists(root + u"/stick/Bad"_s));
    EXPECT_EQ(path(), root + u"/haus/Bad"_s);
}

TEST_F(FolderPicker, NoNameMakesNoFolder)
{
    open(root + u"/haus"_s);
    for (const auto &answer : { std::optional<QString>(), std::optional<QString>(QString()) }) {
        prompts.expectInput(u"Geben Sie einen Namen für den Ordner an."_s, u"NeuerOrdner"_s,
                            answer);
        press("cmd_new_folder");
    }
    EXPECT_EQ(QDir(root + u"/haus"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList { u"küche"_s });
}

TEST_F(FolderPicker, AnExistingFolderIsNotMadeAgain)
{
    open(root + u"/haus"_s);
    prompts.expectInput(u"Geben Sie einen Namen für den Ordner an."_s, u"NeuerOrdner"_s, u"küche"_s)
        .expectMessage(u"Der Ordner konnte nicht erstelt werden, da ein Ordner mit diesem Namen "
                       "bereits vorhanden ist."_s);
    press("cmd_new_folder");
    EXPECT_EQ(path(), root + u"/haus"_s);
}

TEST_F(FolderPicker, AFileInTheWayIsTold)
{
    QFile file(root + u"/haus/datei"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    open(root + u"/haus"_s);
    prompts.expectInput(u"Geben Sie einen Namen für den Ordner an."_s, u"NeuerOrdner"_s, u"datei"_s)
        .expectMessage(u"Der Ordner konnte nicht erstellt werden:\n"_s + root + u"/haus/datei"_s);
    press("cmd_new_folder");
    EXPECT_EQ(path(), root + u"/haus"_s);
}
