#include "dialogs/helpmenu.h"

#include "support/scriptedprompts.h"

#include <QAction>
#include <QMenu>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const Addresses own { u"https://a.example/"_s,     u"https://b.example/"_s,
                      u"https://c.example/"_s,     u"https://d.example/"_s,
                      u"hilfe@morlanda.example"_s, u"buero@morlanda.example"_s };

class HelpMenuItems : public testing::Test {
protected:
    HelpMenuItems()
    {
        m_globals.ProgramVersion = 220;
        new HelpMenu(m_menu, m_globals, own, m_prompts,
                     { [this] { m_done += u"F1"_s; }, [this] { m_done += u"info"_s; },
                       [this] { m_done += u"about"_s; },
                       [this](const QString &address) {
                           m_done += address;
                           return 42;
                       } });
    }
    void trigger(int index)
    {
        m_done.clear();
        m_menu.findChild<QAction *>(u"m_h_"_s + QString::number(index))->trigger();
    }

    QMenu m_menu;
    Globals m_globals;
    ScriptedPrompts m_prompts;
    QStringList m_done;
};

} // namespace

TEST_F(HelpMenuItems, StandInTheGivenOrder)
{
    QStringList seen;
    for (const QAction *action : m_menu.actions()) {
        seen += action->objectName() + u' ' + (action->isSeparator() ? u"-"_s : action->text());
    }
    EXPECT_EQ(seen,
              (QStringList { u"m_h_0 &Hilfe"_s, u"m_h_1 &Info"_s, u"m_h_2 &Winsock Info"_s,
                             u"m_h_3 -"_s, u"m_h_4 Morlanda Homepage"_s, u"m_h_5 -"_s,
                             u"m_h_6 e-&Mail an Morlanda (Support)"_s,
                             u"m_h_7 Häufig gestellte &Fragen FAQ"_s, u"m_h_9 -"_s,
                             u"m_h_10 Auf Update prüfen"_s }));
}

TEST_F(HelpMenuItems, RunTheirActions)
{
    const QList<std::pair<int, QString>> expected {
        { 0, u"F1"_s },      { 1, u"info"_s }, { 2, u"about"_s },
        { 4, own.homePage }, { 7, own.faq },   { 10, own.update },
    };
    for (const auto &[index, done] : expected) {
        trigger(index);
        EXPECT_EQ(m_done, QStringList(done)) << index;
    }
}

TEST_F(HelpMenuItems, SupportMailComesAfterTheHintAndNamesTheVersion)
{
    m_prompts.expectMessage(
        u"Es ist oft hilfreich, wenn Sie uns den Inhalt des LogFensters zusammen mit Ihrer Anfrage senden. Kopieren Sie dazu den Inhalt des LogFensters in die Zwischenablage und fügen Sie den Text dann in die e-Mail ein."_s);
    m_prompts.meanwhile([this] { EXPECT_TRUE(m_done.isEmpty()); });
    trigger(6);
    EXPECT_EQ(
        m_done,
        QStringList(u"mailto:hilfe@morlanda.example?subject=Tarvelo FTP V220&body=Hallo,%0A%0A"
                    u"ich habe folgende Probleme/Fragen:"_s));
}
