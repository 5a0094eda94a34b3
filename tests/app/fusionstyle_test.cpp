#include "app/fusionstyle.h"

#include <QCheckBox>
#include <QImage>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleFactory>
#include <QToolButton>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

QImage drawn(QAbstractButton &button, QStyle &style, const QPalette &palette)
{
    button.setStyle(&style);
    button.setPalette(palette);
    button.resize(40, 30);
    QImage image(button.size(), QImage::Format_RGB32);
    image.fill(palette.window().color());
    button.render(&image);
    return image;
}

int brightest(const QImage &image)
{
    int most = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            most = std::max(most, image.pixelColor(x, y).lightness());
        }
    }
    return most;
}

} // namespace

TEST(FusionStyle, EmptyBoxesAndOptionsShowOnADarkDesktopAndStayOnALightOne)
{
    FusionStyle ours;
    const std::unique_ptr<QStyle> usual(QStyleFactory::create(QStringLiteral("fusion")));
    QPalette dark(QColor(0x31, 0x33, 0x38), QColor(0x2b, 0x2d, 0x31));
    dark.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
    const int ground = dark.window().color().lightness();
    const QPalette light(QColor(0xef, 0xef, 0xef), QColor(0xef, 0xef, 0xef));
    QRadioButton option;
    QCheckBox box;
    for (QAbstractButton *button :
         { static_cast<QAbstractButton *>(&option), static_cast<QAbstractButton *>(&box) }) {
        EXPECT_GE(brightest(drawn(*button, ours, dark)), ground + 60);
        EXPECT_EQ(drawn(*button, ours, light), drawn(*button, *usual, light));
        button->setStyle(nullptr);
    }
}

TEST(FusionStyle, TextsOfButtonsHaveRoomAndShortOnesAreAsWideAsTheirNeighbours)
{
    FusionStyle ours;
    const auto width = [&ours](const QString &text) {
        QPushButton button(text);
        button.setStyle(&ours);
        const int result = button.sizeHint().width();
        button.setStyle(nullptr);
        return result;
    };
    const QString text = QStringLiteral("Diesem Server immer vertrauen");
    EXPECT_GE(width(text), QPushButton(text).fontMetrics().horizontalAdvance(text) + 24);
    EXPECT_EQ(width(QStringLiteral("OK")), width(QStringLiteral("Ja")));
}

TEST(FusionStyle, DisabledTextsArePrintedOnceAndButtonsOfBoxesHaveNoIcons)
{
    FusionStyle ours;
    EXPECT_EQ(ours.styleHint(QStyle::SH_EtchDisabledText, nullptr, nullptr, nullptr), 0);
    // Whether the style below says so, too, is the desktop's affair.
    EXPECT_EQ(
        ours.styleHint(QStyle::SH_DialogButtonBox_ButtonsHaveIcons, nullptr, nullptr, nullptr), 0);
}

TEST(FusionStyle, MenusReachDownToTheEdgeOfTheirBar)
{
    FusionStyle ours;
    QMenuBar bar;
    auto *corner = new QToolButton(&bar);
    corner->setIcon(ours.standardIcon(QStyle::SP_MessageBoxWarning, nullptr, nullptr));
    corner->setStyle(&ours);
    bar.setStyle(&ours);
    bar.addMenu(QStringLiteral("Datei"));
    bar.setCornerWidget(corner);
    bar.resize(bar.sizeHint());
    EXPECT_EQ(bar.actionGeometry(bar.actions().first()).bottom(), bar.rect().bottom());
}

TEST(FusionStyle, BoxesShowTheProgramsOwnIconsAtEverySize)
{
    FusionStyle ours;
    for (const auto kind : { QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxCritical }) {
        const QIcon icon = ours.standardIcon(kind, nullptr, nullptr);
        EXPECT_EQ(icon.pixmap(64).size(), QSize(64, 64));
    }
}
