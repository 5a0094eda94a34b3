#include "dialogs/frm_info.h"

#include "support/scriptedprompts.h"

#include <QAbstractButton>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString hint
    = u"Es ist oft hilfreich, wenn Sie uns den Inhalt des LogFensters zusammen mit Ihrer Anfrage senden. Kopieren Sie dazu den Inhalt des LogFensters in die Zwischenablage und fügen Sie den Text dann in die e-Mail ein."_s;

const Addresses own { u"https://a.example/"_s,     u"https://b.example/"_s,
                      u"https://c.example/"_s,     u"https://d.example/"_s,
                      u"hilfe@morlanda.example"_s, u"buero@morlanda.example"_s };

class InfoScreen : public testing::Test {
protected:
    QAbstractButton *button(int index)
    {
        return m_screen.findChild<QAbstractButton *>(u"cmd_auswahl_"_s + QString::number(index));
    }
    QTimer *timer() { return m_screen.findChild<QTimer *>(u"Timer1"_s); }
    void showScreen()
    {
        m_screen.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_screen));
    }

    Globals m_globals;
    ScriptedPrompts m_prompts;
    QStringList m_opened;
    frm_info m_screen { m_globals, own, m_prompts, [this](const QString &address) {
                           m_opened += address;
                           return 42;
                       } };
    QSignalSpy m_closed { &m_screen, &frm_info::closed };
};

} // namespace

TEST_F(InfoScreen, LoadingSetsTheVersionAndShowsIt)
{
    EXPECT_EQ(m_globals.ProgramVersion, 220);
    QStringList texts;
    for (const QLabel *label : m_screen.findChildren<QLabel *>()) {
        texts += label->text();
    }
    EXPECT_TRUE(texts.contains(u"V 2.20"_s));
    EXPECT_TRUE(texts.contains(u"Drücken Sie eine Taste oder klicken Sie auf das Bild."_s));
    EXPECT_EQ(m_screen.objectName(), u"frm_info"_s);
}

TEST_F(InfoScreen, ButtonsBearTheirCaptionsAndToolTips)
{
    EXPECT_EQ(button(0)->text(), u"Morlanda Online"_s);
    EXPECT_EQ(button(0)->toolTip(), u"Besuchen Sie unsere Homepage"_s);
    EXPECT_EQ(button(1)->text(), u"E-Mail (Support)"_s);
    EXPECT_EQ(button(1)->toolTip(), u"e-Mail bei Problemen, Anregungen, Fragen"_s);
    EXPECT_EQ(button(3)->text(), u"Auf Update prüfen"_s);
    EXPECT_EQ(button(3)->toolTip(), QString());
    EXPECT_EQ(button(2), nullptr);
}

TEST_F(InfoScreen, EveryClickStopsTheTimerAndOnlySixCloses)
{
    const QHash<int, QStringList> opened {
        { 0, { own.secondHomePage } },
        { 3, { own.update } },
    };
    for (const int index : { 0, 3, 4, 5 }) {
        showScreen();
        m_opened.clear();
        ASSERT_TRUE(timer()->isActive()) << index;
        button(index)->click();
        EXPECT_FALSE(timer()->isActive()) << index;
        EXPECT_TRUE(m_screen.isVisible()) << index;
        EXPECT_EQ(m_opened, opened.value(index)) << index;
        m_screen.hide();
    }
    EXPECT_EQ(m_closed.count(), 0);
    showScreen();
    button(6)->click();
    EXPECT_FALSE(timer()->isActive());
    EXPECT_FALSE(m_screen.isVisible());
    EXPECT_EQ(m_closed.count(), 1);
}

TEST_F(InfoScreen, MailShowsTheHintAndNamesTheLogin)
{
    m_globals.connection.UserName = u"web 01&x"_s;
    m_prompts.expectMessage(hint).meanwhile([this] {
        EXPECT_TRUE(m_opened.isEmpty());
        EXPECT_FALSE(timer()->isActive()) << "the screen would close itself under the hint";
    });
    showScreen();
    button(1)->click();
    EXPECT_FALSE(timer()->isActive());
    EXPECT_TRUE(m_screen.isVisible());
    EXPECT_EQ(
        m_opened,
        QStringList(u"mailto:buero@morlanda.example?subject=Tarvelo FTP&body=Hallo,%0A%0Aich ("
                    u"web%2001%26x) habe folgende Probleme/Fragen:"_s));
}

TEST_F(InfoScreen, MailWithoutALoginLeavesAPlaceToFillIn)
{
    m_prompts.expectMessage(hint);
    button(1)->click();
    ASSERT_EQ(m_opened.size(), 1);
    EXPECT_TRUE(m_opened.constFirst().endsWith(
        u"&body=Hallo,%0A%0Aich (Benutzername) habe folgende Probleme/Fragen:"_s));
}

TEST_F(InfoScreen, AClickOnThePictureCloses)
{
    showScreen();
    auto *picture = m_screen.findChild<QWidget *>(u"bgbild"_s);
    QTest::mouseClick(picture, Qt::RightButton);
    QTest::mouseRelease(picture, Qt::LeftButton); // pressed elsewhere
    EXPECT_TRUE(m_screen.isVisible());
    QTest::mouseClick(picture, Qt::LeftButton);
    EXPECT_FALSE(m_screen.isVisible());
    EXPECT_EQ(m_closed.count(), 1);
}

TEST_F(InfoScreen, TheWindowFrameCountsAsClosing)
{
    showScreen();
    m_screen.close();
    EXPECT_EQ(m_closed.count(), 1);
    EXPECT_FALSE(timer()->isActive());
}

// Intended: the screen invites a key press, yet Esc and Space only keep it from closing by itself.
TEST_F(InfoScreen, EscAndSpaceOnlyStopTheTimer)
{
    for (const Qt::Key key : { Qt::Key_Escape, Qt::Key_Space }) {
        for (QWidget *target :
             { static_cast<QWidget *>(&m_screen), static_cast<QWidget *>(button(0)) }) {
            showScreen();
            QTest::keyPress(target, key);
            EXPECT_TRUE(timer()->isActive()) << "only the release counts";
            QTest::keyRelease(target, key);
            EXPECT_FALSE(timer()->isActive());
            EXPECT_TRUE(m_screen.isVisible());
            m_screen.hide();
        }
    }
    EXPECT_EQ(m_closed.count(), 0);
    EXPECT_TRUE(m_opened.isEmpty());
}

TEST_F(InfoScreen, ASpaceDoesNotPressTheFocusedButton)
{
    showScreen();
    for (const int index : { 0, 3, 6 }) {
        button(index)->setFocus();
        QTest::keyClick(button(index), Qt::Key_Space);
    }
    EXPECT_TRUE(m_opened.isEmpty());
    EXPECT_TRUE(m_screen.isVisible());
}

TEST_F(InfoScreen, EnterPressesTheFocusedButton)
{
    showScreen();
    QTest::keyClick(button(3), Qt::Key_Enter);
    EXPECT_EQ(m_opened.size(), 1);
    QTest::keyClick(button(6), Qt::Key_Return); // has the focus when the screen opens
    EXPECT_FALSE(m_screen.isVisible());
}

TEST_F(InfoScreen, ClosesItselfAtTheTwentyFifthTick)
{
    showScreen();
    EXPECT_EQ(timer()->intervalAsDuration(), std::chrono::milliseconds(200));
    int ticks = 0;
    QObject::connect(timer(), &QTimer::timeout, &m_screen, [&ticks] { ++ticks; });
    timer()->setInterval(1);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_screen.isVisible(); }));
    EXPECT_EQ(ticks, 25);
    EXPECT_FALSE(timer()->isActive());
    EXPECT_EQ(m_closed.count(), 1);
}

TEST_F(InfoScreen, ClosesItselfAlsoWhenShownModally)
{
    timer()->setInterval(1);
    EXPECT_EQ(m_screen.exec(), QDialog::Rejected);
    EXPECT_EQ(m_closed.count(), 1);
}

TEST_F(InfoScreen, DoesNotCloseBelowABox)
{
    timer()->setInterval(1);
    QTimer::singleShot(0, &m_screen, [this] {
        QDialog box(&m_screen);
        int ticks = 0;
        QObject::connect(timer(), &QTimer::timeout, &box, [&] {
            if (++ticks > 50) {
                box.accept();
            }
        });
        QObject::connect(&m_screen, &QDialog::finished, &box, &QDialog::reject);
        EXPECT_EQ(box.exec(), QDialog::Accepted) << "its parent closed";
    });
    EXPECT_EQ(m_screen.exec(), QDialog::Rejected); // afterwards it does
}
