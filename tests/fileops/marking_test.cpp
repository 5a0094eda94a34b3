#include "support/workbench.h"

using namespace Qt::StringLiterals;

class Marking : public Workbench {
protected:
    Marking()
    {
        ftp.addFile(u"/www/a.txt"_s, "eins");
        ftp.addFolder(u"/www/ordner"_s);
        showBoth();
    }
};

TEST_F(Marking, TakesOverTheSelectedRows)
{
    remote.select({ u"a.txt"_s, u"ordner"_s });
    EXPECT_EQ(MarkSelectedRemote(remote, globals, false), 2);
    ASSERT_EQ(globals.marked.MarkedCount, 3);
    const MarkedItem &file = globals.marked.MarkedItems[1];
    EXPECT_EQ(file.name, u"a.txt"_s);
    EXPECT_EQ(file.folder, u"/www/"_s);
    EXPECT_EQ(file.kind, u"TextFile"_s);
    EXPECT_EQ(file.sizeText, u"4"_s);
    EXPECT_EQ(file.rowIndex, remote.model().findRow(u"a.txt"_s));
    EXPECT_EQ(globals.marked.MarkedItems[2].kind, u"FolderClose"_s);
    EXPECT_EQ(remote.markedNames(), (QStringList { u"a.txt"_s, u"ordner"_s }));
}

TEST_F(Marking, BeginsAnewEveryTime)
{
    remote.select({ u"a.txt"_s, u"ordner"_s });
    MarkSelectedRemote(remote, globals, false);
    remote.select({ u"ordner"_s });
    EXPECT_EQ(MarkSelectedRemote(remote, globals, false), 1);
    EXPECT_EQ(globals.marked.MarkedItems.value(1).name, u"ordner"_s);
}

TEST_F(Marking, SingleOnlyTakesTheCurrentRow)
{
    remote.selected = { 1, 2 };
    remote.current = 2;
    EXPECT_EQ(MarkSelectedRemote(remote, globals, true), 1);
    EXPECT_EQ(globals.marked.MarkedItems.value(1).name, remote.model().row(2).name);
    remote.current = -1;
    EXPECT_EQ(MarkSelectedRemote(remote, globals, true), 0);
}

TEST_F(Marking, PassesTheUpRowOver)
{
    remote.selectAll();
    EXPECT_EQ(MarkSelectedRemote(remote, globals, false), 2);
    EXPECT_FALSE(remote.model().row(0).marked);
}

TEST_F(Marking, TheFolderIsTheRowsAndNotTheTextOfTheBox)
{
    remote.text = u"/woanders [x]"_s; // typed, not listed
    remote.select({ u"a.txt"_s });
    MarkSelectedRemote(remote, globals, false);
    EXPECT_EQ(pathOf(globals.marked.MarkedItems[1], u'/'), u"/www/a.txt"_s);
}

TEST_F(Marking, UnmarkingFindsRowsThatMoved)
{
    remote.selectAll();
    MarkSelectedRemote(remote, globals, false);
    remote.model().removeRowAt(0);
    UnmarkAll(remote, globals);
    EXPECT_TRUE(remote.markedNames().isEmpty());
}

TEST_F(Marking, ARowOfAnotherFolderIsNotTheItem)
{
    writeLocal(u"a.txt"_s, "x");
    writeLocal(u"unter/a.txt"_s, "y");
    local.show(root.path());
    local.select({ u"a.txt"_s });
    MarkSelectedLocal(local, globals, false);
    local.show(disk(u"unter"_s));
    EXPECT_EQ(rowOf(local, globals.marked.MarkedItems[1]), -1);
}
