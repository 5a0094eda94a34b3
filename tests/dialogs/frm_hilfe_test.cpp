#include "dialogs/frm_hilfe.h"
#include "dialogs/helpkeyfilter.h"
#include "dialogs/helppages.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QVBoxLayout>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString html(const QString &page)
{
    QFile file(helpFile(page));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << page.toStdString();
    return QString::fromUtf8(file.readAll());
}

QStringList names(const QList<HelpPage> &pages)
{
    QStringList all;
    for (const HelpPage &page : pages) {
        all += page.name;
    }
    return all;
}

class HelpWindow : public testing::Test {
protected:
    QPushButton *back() { return m_window.findChild<QPushButton *>(u"cmd_zurueck"_s); }
    QListWidget *list() { return m_window.findChild<QListWidget *>(u"lst_inhalt"_s); }
    QLineEdit *search() { return m_window.findChild<QLineEdit *>(u"tx_suche"_s); }
    QString selected() { return list()->currentItem() ? list()->currentItem()->text() : QString(); }
    QString selectedByEye()
    {
        return list()->selectedItems().isEmpty() ? QString()
                                                 : list()->selectedItems().first()->text();
    }

    frm_hilfe m_window;
};

/// The help window that F1 has opened, nullptr for none.
frm_hilfe *openHelpWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *help = qobject_cast<frm_hilfe *>(window); help && help->isVisible()) {
            return help;
        }
    }
    return nullptr;
}

} // namespace

TEST(HelpPages, EveryFormHasAPageOfItsOwn)
{
    for (const QString &form :
         { u"frm_tarvelo"_s, u"frmConnect"_s, u"frm_zertifikat"_s, u"frmTransfer"_s, u"frmRename"_s,
           u"frm_rechte"_s, u"frm_einstellungen"_s, u"frm_get_folder"_s, u"frm_info"_s,
           u"frmAbout"_s, u"frm_hilfe"_s }) {
        EXPECT_EQ(helpPageOfControl(form), form) << form.toStdString();
    }
    for (const QString &topic : { u"ersteschritte"_s, u"wennesnichtklappt"_s, u"sicherheit"_s }) {
        EXPECT_FALSE(helpFile(topic).isEmpty()) << topic.toStdString();
    }
}

TEST(HelpPages, ControlsOfThePanesLeadToTheirPane)
{
    EXPECT_EQ(helpPageOfControl(u"pane_lokal"_s), u"lokal"_s);
    EXPECT_EQ(helpPageOfControl(u"pane_server"_s), u"server"_s);
    EXPECT_EQ(helpPageOfControl(u"op_transfer_2"_s), u"uebertragen"_s);
    EXPECT_EQ(helpPageOfControl(u"tab_proxy"_s), u"proxy"_s);
    EXPECT_EQ(helpPageOfControl(u"txtLog"_s), u"protokoll"_s);
    EXPECT_EQ(helpPageOfControl(u"anything"_s), QString());
    EXPECT_EQ(helpPageOfControl(QString()), QString());
}

TEST(HelpPages, HaveTitlesThatAreAlsoTheirHeadings)
{
    ASSERT_EQ(helpPages().size(), 27);
    for (const HelpPage &page : helpPages()) {
        EXPECT_FALSE(page.title.isEmpty()) << page.name.toStdString();
        EXPECT_TRUE(html(page.name).contains(u"<h1>"_s + page.title + u"</h1>"_s))
            << page.name.toStdString();
    }
}

TEST(HelpPages, LeadOnlyToPagesAndPicturesThatExist)
{
    static const QRegularExpression target(u"(?:href|src)=\"([^\"]*)\""_s);
    for (const HelpPage &page : helpPages()) {
        auto matches = target.globalMatch(html(page.name));
        while (matches.hasNext()) {
            const QString file = matches.next().captured(1);
            EXPECT_TRUE(QFile::exists(u":/tarveloftp.hlp/"_s + file))
                << page.name.toStdString() << " -> " << file.toStdString();
        }
    }
}

TEST(HelpPages, AreAllReachableFromTheContentsPage)
{
    const QString contents = html(contentsPage());
    for (const HelpPage &page : helpPages()) {
        EXPECT_TRUE(page.name == contentsPage()
                    || contents.contains(u"href=\""_s + page.name + u".html\""_s))
            << page.name.toStdString();
    }
}

TEST(HelpPages, TheFailuresAreTenEachWithCauseAndRemedy)
{
    const QString text = html(u"wennesnichtklappt"_s);
    for (int number = 1; number <= 10; ++number) {
        EXPECT_TRUE(text.contains(u"<h2>%1. "_s.arg(number))) << number;
    }
    EXPECT_EQ(text.count(u"<b>Ursache:</b>"_s), 10);
    EXPECT_EQ(text.count(u"<b>Abhilfe:</b>"_s), 10);
}

TEST(HelpSearch, FindsPagesWithAllWordsTitlesFirst)
{
    EXPECT_EQ(searchHelp(u"  "_s).size(), helpPages().size());
    EXPECT_EQ(names(searchHelp(u"WINSOCK info"_s)).value(0), u"frmAbout"_s);
    const QStringList hits = names(searchHelp(u"chmod besitzer"_s));
    EXPECT_EQ(hits.value(0), u"frm_rechte"_s);
    EXPECT_FALSE(hits.contains(u"frmAbout"_s));
    EXPECT_TRUE(searchHelp(u"chmod gibtesnicht"_s).isEmpty());
    EXPECT_TRUE(searchHelp(u"href"_s).isEmpty()) << "mark-up is no text";
}

TEST_F(HelpWindow, StartsWithTheContents)
{
    EXPECT_EQ(m_window.currentPage(), contentsPage());
    EXPECT_EQ(list()->count(), helpPages().size());
    EXPECT_FALSE(back()->isEnabled());
    m_window.openPage(u"no such page"_s);
    EXPECT_EQ(m_window.currentPage(), contentsPage());
}

TEST_F(HelpWindow, GoesBackToThePageBefore)
{
    m_window.openPage(u"frmConnect"_s);
    m_window.openPage(u"proxy"_s);
    EXPECT_EQ(selected(), u"Proxy / Firewall"_s);
    EXPECT_EQ(selectedByEye(), u"Proxy / Firewall"_s);
    back()->click();
    EXPECT_EQ(m_window.currentPage(), u"frmConnect"_s);
    EXPECT_EQ(selected(), u"Verbindungen"_s);
    m_window.findChild<QPushButton *>(u"cmd_inhalt"_s)->click();
    EXPECT_EQ(m_window.currentPage(), contentsPage());
}

TEST_F(HelpWindow, ListsTheHitsWhileThePageStays)
{
    m_window.openPage(u"sicherheit"_s);
    search()->setText(u"besitzer chmod"_s);
    ASSERT_GE(list()->count(), 1);
    EXPECT_LT(list()->count(), helpPages().size());
    EXPECT_EQ(m_window.currentPage(), u"sicherheit"_s);
    list()->setCurrentRow(0);
    EXPECT_EQ(m_window.currentPage(), u"frm_rechte"_s);
    search()->clear();
    EXPECT_EQ(list()->count(), helpPages().size());
    EXPECT_EQ(selected(), u"Dateirechte einstellen"_s);
}

TEST_F(HelpWindow, EscCloses)
{
    m_window.show();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    QTest::keyClick(&m_window, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_window.isVisible(); }));
}

TEST(HelpKey, FindsThePageOfTheNearestNamedParent)
{
    QWidget window;
    window.setObjectName(u"frm_tarvelo"_s);
    QWidget pane(&window);
    pane.setObjectName(u"pane_server"_s);
    const QWidget viewport(&pane);
    const QWidget other(&window);
    QDialog box(&window); // a message box without a name of its own
    const QWidget button(&box);
    EXPECT_EQ(helpPageFor(&viewport), u"server"_s);
    EXPECT_EQ(helpPageFor(&other), u"frm_tarvelo"_s);
    EXPECT_EQ(helpPageFor(&button), u"frm_tarvelo"_s) << "beyond the border of the box";
    EXPECT_EQ(helpPageFor(nullptr), contentsPage());
}

TEST(HelpKey, OutsideItsTabsAWindowMeansTheOpenOne)
{
    QWidget window;
    window.setObjectName(u"frmConnect"_s);
    auto *tabs = new QTabWidget(&window);
    const auto *help = new QPushButton(&window);
    auto *plain = new QWidget;
    auto *proxy = new QWidget;
    proxy->setObjectName(u"tab_proxy"_s);
    tabs->addTab(plain, u"Verbindung"_s);
    tabs->addTab(proxy, u"Proxy / Firewall"_s);
    EXPECT_EQ(helpPageFor(help), u"frmConnect"_s);
    EXPECT_EQ(helpPageFor(tabs->tabBar()), u"frmConnect"_s);
    tabs->setCurrentWidget(proxy);
    EXPECT_EQ(helpPageFor(help), u"proxy"_s);
    EXPECT_EQ(helpPageFor(tabs->tabBar()), u"proxy"_s);
    EXPECT_EQ(helpPageFor(&window), u"proxy"_s);
}

TEST(HelpKey, OpensThePageOfTheFocusedControl)
{
    HelpKeyFilter filter;
    QWidget window;
    window.setObjectName(u"frmConnect"_s);
    QVBoxLayout layout(&window);
    QLineEdit host, proxy;
    host.setObjectName(u"txtRemoteHost"_s);
    proxy.setObjectName(u"tab_proxy"_s);
    layout.addWidget(&host);
    layout.addWidget(&proxy);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    host.setFocus();
    QTest::keyClick(window.windowHandle(), Qt::Key_F1); // as the window system delivers it
    ASSERT_TRUE(openHelpWindow());
    EXPECT_EQ(openHelpWindow()->currentPage(), u"frmConnect"_s);

    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    proxy.setFocus();
    sendHelpKey();
    EXPECT_TRUE(QTest::qWaitFor([] { return openHelpWindow()->currentPage() == u"proxy"_s; }));
}

TEST(HelpKey, AnEarlierSearchDoesNotHideThePage)
{
    HelpKeyFilter filter;
    filter.openHelp(contentsPage());
    ASSERT_TRUE(openHelpWindow());
    auto *list = openHelpWindow()->findChild<QListWidget *>(u"lst_inhalt"_s);
    openHelpWindow()->findChild<QLineEdit *>(u"tx_suche"_s)->setText(u"chmod besitzer"_s);
    ASSERT_LT(list->count(), helpPages().size());
    filter.openHelp(u"proxy"_s);
    EXPECT_EQ(list->count(), helpPages().size());
    ASSERT_TRUE(list->currentItem());
    EXPECT_EQ(list->currentItem()->text(), u"Proxy / Firewall"_s);
}

TEST(HelpKey, AnOpenHelpDoesNotKeepTheProgramRunning)
{
    HelpKeyFilter filter;
    QWidget window;
    window.show();
    filter.openHelp(contentsPage());
    ASSERT_TRUE(openHelpWindow());
    QTimer::singleShot(0, &window, &QWidget::close);
    QTimer::singleShot(5000, &filter, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QApplication::exec(), 0) << "the help was waited for";
}

TEST(HelpKey, WorksInsideAModalDialog)
{
    HelpKeyFilter filter;
    QDialog dialog;
    dialog.setObjectName(u"frm_rechte"_s);
    QLineEdit field(&dialog);
    dialog.open();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    sendHelpKey();
    ASSERT_TRUE(QTest::qWaitFor([] { return openHelpWindow() != nullptr; }));
    frm_hilfe *help = openHelpWindow();
    EXPECT_EQ(help->currentPage(), u"frm_rechte"_s);
    // A window that the dialog blocks would not react to the mouse.
    QTest::mouseClick(help->findChild<QPushButton *>(u"cmd_inhalt"_s), Qt::LeftButton);
    EXPECT_EQ(help->currentPage(), contentsPage());
    dialog.close();
    EXPECT_TRUE(help->isVisible()) << "the help outlives the dialog that it was opened from";
}
