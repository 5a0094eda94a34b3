#include "ftp/ftplocalnames.h"
#include "remote/icons.h"
#include "remote/itemkind.h"
#include "remote/panemodel.h"
#include "remote/roworder.h"

#include <QAbstractItemModelTester>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QPalette>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

PaneRow makeRow(const char *name, const QString &kind = ItemKind::File, const char *size = "")
{
    PaneRow row;
    row.name = QString::fromUtf8(name);
    row.kind = kind;
    row.size = QString::fromUtf8(size);
    row.date = QStringLiteral("2026-11-20 10:00");
    row.permissions = QStringLiteral("644");
    row.tag = QStringLiteral("/pub/") + row.name;
    return row;
}

std::string names(const QList<PaneRow> &rows)
{
    QStringList list;
    for (const PaneRow &row : rows) {
        list << (row.kind == ItemKind::Cdup ? QStringLiteral("<up>") : row.name);
    }
    return list.join(u'|').toStdString();
}

QStringList fourHeaders()
{
    return { QStringLiteral("Name"), QStringLiteral("Size"), QStringLiteral("Date"),
             QStringLiteral("Permission") };
}

QList<PaneRow> sample()
{
    return { upRow(), makeRow("cgi-bin", ItemKind::FolderClose),
             makeRow("index.html", ItemKind::File, "512"), makeRow("current", ItemKind::Link) };
}

} // namespace

TEST(RegroupRows, UpRowThenFoldersThenTheRestInTheirOrder)
{
    const QList<PaneRow> sorted {
        makeRow("0", ItemKind::Link),        makeRow("a.txt", ItemKind::TextFile),
        makeRow("b", ItemKind::FolderClose), upRow(),
        makeRow("c", ItemKind::Link),        makeRow("d", ItemKind::FolderLink),
        makeRow("a", ItemKind::FolderClose)
    };
    const QList<PaneRow> rows = RegroupRows(sorted);
    EXPECT_EQ(names(rows), "<up>|b|a|0|a.txt|c|d");
    EXPECT_EQ(rows.at(4).tag, QStringLiteral("/pub/a.txt"));
    EXPECT_EQ(rows.at(4).permissions, QStringLiteral("644"));
}

TEST(RegroupRows, GivesTheSameOrderAsAClickOnAColumn)
{
    std::mt19937 random(7);
    const QStringList kinds { ItemKind::FolderClose, ItemKind::FolderLink, ItemKind::Link,
                              ItemKind::File,        ItemKind::TextFile,   ItemKind::ExeFile };
    for (int round = 0; round < 50; ++round) {
        QList<PaneRow> rows { upRow() };
        for (auto count = random() % 20; count > 0; --count) {
            const QByteArray name = QByteArray::number(static_cast<int>(random() % 30));
            rows.append(makeRow(name.constData(),
                                kinds.at(static_cast<qsizetype>(random() % kinds.size()))));
        }
        const QList<PaneRow> listed = RegroupRows(sortRows(rows, ColumnName, Qt::AscendingOrder));
        const QList<PaneRow> clicked
            = inOrder(rows, groupedOrder(rows, ColumnName, Qt::AscendingOrder));
        ASSERT_EQ(names(listed), names(clicked));
        for (qsizetype at = 0; at < rows.size(); ++at) {
            ASSERT_EQ(listed.at(at).kind, clicked.at(at).kind) << at;
        }
    }
}

TEST(RegroupRows, AnEmptyPaneGetsItsUpRow) { EXPECT_EQ(names(RegroupRows({})), "<up>"); }

TEST(SortRows, NamesIgnoreCaseAndFollowTheLocale)
{
    const QList<PaneRow> rows { makeRow("zebra"), makeRow("Öl"), makeRow("apfel"), makeRow("Ofen"),
                                makeRow("Birne") };
    EXPECT_EQ(names(sortRows(rows, ColumnName, Qt::AscendingOrder)), "apfel|Birne|Ofen|Öl|zebra");
}

TEST(SortRows, NumbersCompareAsText)
{
    const QList<PaneRow> rows { makeRow("9"), makeRow("10"), makeRow("1") };
    EXPECT_EQ(names(sortRows(rows, ColumnName, Qt::AscendingOrder)), "1|10|9");
    const QList<PaneRow> sizes { makeRow("a", ItemKind::File, "10"),
                                 makeRow("b", ItemKind::File, "9"),
                                 makeRow("c", ItemKind::File, "") };
    EXPECT_EQ(names(sortRows(sizes, ColumnSize, Qt::DescendingOrder)), "b|a|c");
}

TEST(SortRows, EqualTextsKeepTheirOrderInBothDirections)
{
    const QList<PaneRow> rows { makeRow("b", ItemKind::File, "1"),
                                makeRow("a", ItemKind::File, "1"),
                                makeRow("c", ItemKind::File, "1") };
    EXPECT_EQ(names(sortRows(rows, ColumnSize, Qt::AscendingOrder)), "b|a|c");
    EXPECT_EQ(names(sortRows(rows, ColumnSize, Qt::DescendingOrder)), "b|a|c");
}

TEST(SortRows, WithoutALanguageNamesStillIgnoreCase)
{
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    const std::string sorted
        = names(sortRows({ makeRow("Z"), makeRow("a"), makeRow("ä"), makeRow("b") }, ColumnName,
                         Qt::AscendingOrder));
    QLocale::setDefault(before);
    EXPECT_EQ(sorted, "a|ä|b|Z");
}

TEST(SortRows, TextsOfAnyLengthAndScriptComeInTheOrderOfTheirCodes)
{
    std::mt19937 random(11);
    const QString alphabet = QStringLiteral("01 -:9\u00fe\u00ff\u0100\u0661\u0662");
    QList<PaneRow> rows;
    for (int number = 0; number < 3000; ++number) {
        PaneRow row = makeRow("x");
        row.tag = QString::number(number);
        for (auto length = random() % 20; length > 0; --length) {
            row.date += alphabet.at(static_cast<qsizetype>(random() % alphabet.size()));
        }
        rows.append(row);
    }
    for (const Qt::SortOrder order : { Qt::AscendingOrder, Qt::DescendingOrder }) {
        QList<PaneRow> expected = rows;
        std::stable_sort(expected.begin(), expected.end(),
                         [order](const PaneRow &a, const PaneRow &b) {
                             return order == Qt::AscendingOrder ? a.date < b.date : b.date < a.date;
                         });
        const QList<PaneRow> sorted = sortRows(rows, ColumnDate, order);
        for (qsizetype at = 0; at < rows.size(); ++at) {
            ASSERT_EQ(sorted.at(at).tag, expected.at(at).tag) << at;
        }
    }
}

TEST(SortRows, RowsComeBackToTheOrderOfNamesAlsoWithNewOnesAmongThem)
{
    QList<PaneRow> rows { makeRow("b", ItemKind::File, "1"), makeRow("Ä", ItemKind::File, "3"),
                          makeRow("c", ItemKind::File, "2") };
    rows = sortRows(rows, ColumnName, Qt::AscendingOrder);
    rows = sortRows(rows, ColumnSize, Qt::DescendingOrder);
    EXPECT_EQ(names(rows), "Ä|c|b");
    EXPECT_EQ(names(sortRows(rows, ColumnName, Qt::AscendingOrder)), "Ä|b|c");
    rows.append(makeRow("bb"));
    EXPECT_EQ(names(sortRows(rows, ColumnName, Qt::AscendingOrder)), "Ä|b|bb|c");
}

TEST(SortRows, NamesThatDifferInCaseOnlyKeepTheOrderTheyHad)
{
    QList<PaneRow> rows { makeRow("readme", ItemKind::File, "2"),
                          makeRow("README", ItemKind::File, "1") };
    rows = sortRows(rows, ColumnName, Qt::AscendingOrder);
    rows = sortRows(rows, ColumnSize, Qt::AscendingOrder);
    EXPECT_EQ(names(sortRows(rows, ColumnName, Qt::AscendingOrder)), "README|readme");
}

TEST(PaneModel, ARenamedRowIsSortedByItsNewName)
{
    PaneModel model(fourHeaders());
    model.setRows(sortRows({ makeRow("a"), makeRow("b") }, ColumnName, Qt::AscendingOrder));
    PaneRow renamed = model.row(0);
    renamed.name = QStringLiteral("c");
    model.changeRow(0, renamed);
    EXPECT_EQ(names(sortRows(model.rows(), ColumnName, Qt::AscendingOrder)), "b|c");
}

TEST(PaneModel, BytesThatAreNoTextAreShownAsReplacedAndEditedAsTheyAre)
{
    PaneModel model(fourHeaders());
    PaneRow row = makeRow("x");
    row.name = textOfName("\xe4.txt");
    model.setRows({ row });
    EXPECT_EQ(model.index(0, 0).data(), QStringLiteral("\uFFFD.txt"));
    EXPECT_EQ(model.index(0, 0).data(Qt::EditRole), row.name);
    EXPECT_EQ(model.findRow(row.name), 0);
}

TEST(PaneModel, KeepsTheRulesOfAModel)
{
    PaneModel model(fourHeaders());
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.setRows(sample());
    EXPECT_EQ(model.appendRow(makeRow("neu")), 4);
    model.setMarked(2, true);
    model.removeRowAt(1);
    model.changeRow(1, makeRow("anders"));
    model.unmarkAll();
    EXPECT_EQ(names(model.rows()), "<up>|anders|current|neu");
    model.clear();
    EXPECT_EQ(model.rowCount(), 0);
}

TEST(PaneModel, ShowsTheTextsOfItsRows)
{
    PaneModel model(fourHeaders());
    model.setRows(sample());
    EXPECT_EQ(model.columnCount(), 4);
    EXPECT_EQ(model.headerData(3, Qt::Horizontal).toString(), QStringLiteral("Permission"));
    const QStringList expected { QStringLiteral("index.html"), QStringLiteral("512"),
                                 QStringLiteral("2026-11-20 10:00"), QStringLiteral("644") };
    for (int column = 0; column < 4; ++column) {
        EXPECT_EQ(model.index(2, column).data().toString(), expected.at(column));
        EXPECT_TRUE(model.index(0, column).data().toString().isEmpty())
            << "the up row has no texts";
    }
    EXPECT_EQ(model.index(2, ColumnSize).data(Qt::TextAlignmentRole).value<Qt::Alignment>(),
              Qt::AlignRight | Qt::AlignVCenter);
}

TEST(PaneModel, NamedRolesTellKindTagKeyAndGhost)
{
    PaneModel model(fourHeaders());
    model.setRows(sample());
    const auto role = [&model](int row, const char *name) {
        return model.index(row, 0).data(model.roleNames().key(name, -1));
    };
    EXPECT_EQ(role(0, "kind").toString(), QStringLiteral("Cdup"));
    EXPECT_EQ(role(0, "key").toString(), QStringLiteral("Cdup"));
    EXPECT_TRUE(role(0, "tag").toString().isEmpty());
    EXPECT_EQ(role(1, "kind").toString(), QStringLiteral("FolderClose"));
    EXPECT_TRUE(role(1, "key").toString().isEmpty());
    EXPECT_EQ(role(1, "tag").toString(), QStringLiteral("/pub/cgi-bin"));
    EXPECT_FALSE(role(1, "ghosted").toBool());
    model.setMarked(1, true);
    EXPECT_TRUE(role(1, "ghosted").toBool());
}

TEST(PaneModel, MarkedRowsAreColouredAndUnmarkedOnesTakeThePalette)
{
    PaneModel model(fourHeaders());
    model.setRows(sample());
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.setMarked(1, true);
    EXPECT_TRUE(model.index(1, 2).data(Qt::ForegroundRole).isValid());
    EXPECT_FALSE(model.index(2, 2).data(Qt::ForegroundRole).isValid());
    model.setMarked(3, true);
    EXPECT_EQ(changed.count(), 2);
    model.unmarkAll();
    EXPECT_EQ(changed.count(), 3) << "one notice for all rows";
    EXPECT_FALSE(model.index(1, 2).data(Qt::ForegroundRole).isValid());
    EXPECT_FALSE(model.row(3).marked);
    model.unmarkAll();
    EXPECT_EQ(changed.count(), 3) << "nothing marked, nothing to tell";
}

TEST(PaneModel, MarkedRowsAreBlueAndReadableOnEveryPalette)
{
    PaneModel model(fourHeaders());
    model.setRows(sample());
    model.setMarked(1, true);
    const QPalette before = QGuiApplication::palette();
    // Relative luminance and contrast as the WCAG define them.
    const auto luminance = [](const QColor &colour) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
            + 0.0722 * linear(colour.blueF());
    };
    for (const QColor &base : { QColor(Qt::white), QColor(0x20, 0x22, 0x24) }) {
        QPalette palette = before;
        palette.setColor(QPalette::Base, base);
        QGuiApplication::setPalette(palette);
        const auto colour = model.index(1, 0).data(Qt::ForegroundRole).value<QColor>();
        EXPECT_GT(colour.blue(), colour.red()) << colour.name().toStdString();
        EXPECT_GT(colour.blue(), colour.green()) << colour.name().toStdString();
        const auto [darker, lighter] = std::minmax({ luminance(colour), luminance(base) });
        EXPECT_GE((lighter + 0.05) / (darker + 0.05), 4.5) << base.name().toStdString();
    }
    QGuiApplication::setPalette(before);
}

TEST(PaneModel, EveryRowHasThePictureOfItsKindPaleWhenMarked)
{
    const auto picture = [](const QVariant &icon) {
        return icon.value<QIcon>().pixmap(16).toImage().convertToFormat(QImage::Format_ARGB32);
    };
    const auto opacity = [](const QImage &image) {
        int sum = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                sum += qAlpha(image.pixel(x, y));
            }
        }
        return sum;
    };
    const QStringList kinds { ItemKind::Cdup, ItemKind::FolderClose, ItemKind::FolderLink,
                              ItemKind::Link, ItemKind::File,        ItemKind::TextFile };
    PaneModel model(fourHeaders());
    for (const QString &kind : kinds) {
        const int row = model.appendRow(makeRow("a", kind));
        const QImage plain = picture(model.index(row, 0).data(Qt::DecorationRole));
        EXPECT_EQ(plain, picture(Icons::icon(kind))) << kind.toStdString();
        for (int column = 1; column < 4; ++column) {
            EXPECT_FALSE(model.index(row, column).data(Qt::DecorationRole).isValid());
        }
        model.setMarked(row, true);
        const QImage pale = picture(model.index(row, 0).data(Qt::DecorationRole));
        EXPECT_EQ(pale, picture(Icons::ghosted(kind))) << kind.toStdString();
        EXPECT_GT(opacity(pale), 0) << kind.toStdString();
        EXPECT_LT(opacity(pale), opacity(plain)) << kind.toStdString();
    }
}

TEST(PaneModel, SetRowsResetsOnce)
{
    PaneModel model(fourHeaders());
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    model.setRows(sample());
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(inserted.count(), 0);
}

TEST(PaneModel, FindRowComparesWholeNamesExactly)
{
    PaneModel model(fourHeaders());
    model.setRows(sample());
    EXPECT_EQ(model.findRow(QStringLiteral("index.html")), 2);
    EXPECT_EQ(model.findRow(QStringLiteral("Index.html")), -1);
    EXPECT_EQ(model.findRow(QStringLiteral("index")), -1);
}

TEST(PaneModel, ACaptionEditOnlyReports)
{
    PaneModel model(fourHeaders());
    model.setRows(sample());
    QSignalSpy edited(&model, &PaneModel::captionEdited);
    model.setData(model.index(2, 0), QStringLiteral("neu.html"));
    ASSERT_EQ(edited.count(), 1);
    EXPECT_EQ(edited.at(0).at(0).toInt(), 2);
    EXPECT_EQ(edited.at(0).at(1).toString(), QStringLiteral("neu.html"));
    EXPECT_EQ(model.row(2).name, QStringLiteral("index.html")) << "the rename may still fail";

    model.setData(model.index(2, 0), QStringLiteral("index.html"));
    model.setData(model.index(2, 0), QString());
    model.setData(model.index(2, 1), QStringLiteral("9"));
    model.setData(model.index(0, 0), QStringLiteral("auf"));
    EXPECT_EQ(edited.count(), 1) << "unchanged, empty, other columns and the up row send nothing";
    EXPECT_FALSE(model.flags(model.index(0, 0)).testFlag(Qt::ItemIsEditable));
    EXPECT_TRUE(model.flags(model.index(1, 0)).testFlag(Qt::ItemIsEditable));
}
