#include "dialogs/qtprompts.h"

#include "support/modalbox.h"

#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QStringList buttonTexts(const QMessageBox &box)
{
    QStringList texts;
    for (const auto *button : box.buttons()) {
        texts << button->text();
    }
    texts.sort();
    return texts;
}

void expectPlain(const QMessageBox &box, const QString &title)
{
    EXPECT_EQ(box.windowTitle(), title);
    EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
}

} // namespace

TEST(QtPrompts, AMessageIsAPlainBoxWithOk)
{
    QtPrompts prompts;
    const WhenModalOpens<QMessageBox> box([](QMessageBox &opened) {
        EXPECT_EQ(opened.text(), u"Erste Zeile\nZweite <b>Zeile</b>"_s);
        EXPECT_EQ(opened.windowTitle(), u"Tarvelo FTP"_s);
        EXPECT_EQ(opened.icon(), QMessageBox::NoIcon);
        EXPECT_EQ(buttonTexts(opened), QStringList { u"OK"_s });
        EXPECT_EQ(opened.findChild<QLabel *>(u"qt_msgbox_label"_s)->textFormat(), Qt::PlainText);
        QTest::keyClick(&opened, Qt::Key_Escape);
    });
    prompts.message(u"Erste Zeile\r\nZweite <b>Zeile</b>"_s);
}

TEST(QtPrompts, TheMarginsOfABoxAreEqual)
{
    QtPrompts prompts;
    const WhenModalOpens<QMessageBox> box([](QMessageBox &opened) {
        const QRect text = opened.findChild<QLabel *>(u"qt_msgbox_label"_s)->geometry();
        EXPECT_EQ(text.left(), opened.width() - 1 - text.right());
        opened.close();
    });
    prompts.message(u"Ein Text, der breiter ist als sein Knopf, und das um ein gutes Stück"_s);
}

TEST(QtPrompts, TitleAndIconAreTheCallers)
{
    QtPrompts prompts;
    const WhenModalOpens<QMessageBox> box([](QMessageBox &opened) {
        EXPECT_EQ(opened.windowTitle(), u"Titel"_s);
        EXPECT_EQ(opened.icon(), QMessageBox::Warning);
        QTest::keyClick(&opened, Qt::Key_Return);
    });
    prompts.message(u"Text"_s, u"Titel"_s, Prompts::Icon::Exclamation);
}

TEST(QtPrompts, AConfirmationHasOkAndAbbrechen)
{
    QtPrompts prompts;
    {
        const WhenModalOpens<QMessageBox> box([](QMessageBox &opened) {
            EXPECT_EQ(opened.text(), u"Trennen?"_s);
            expectPlain(opened, u"Titel"_s);
            EXPECT_EQ(opened.informativeText(), u"<i>3</i> Dateien"_s);
            for (const auto *label : opened.findChildren<QLabel *>()) {
                EXPECT_EQ(label->textFormat(), Qt::PlainText);
            }
            EXPECT_EQ(buttonTexts(opened), (QStringList { u"Abbrechen"_s, u"OK"_s }));
            opened.button(QMessageBox::Ok)->click();
        });
        EXPECT_TRUE(prompts.confirm(u"Trennen?"_s, u"Titel"_s, u"<i>3</i> Dateien"_s));
    }
    const WhenModalOpens<QMessageBox> box([](QMessageBox &opened) {
        expectPlain(opened, u"Tarvelo FTP"_s);
        QTest::keyClick(&opened, Qt::Key_Escape);
    });
    EXPECT_FALSE(prompts.confirm(u"Trennen?"_s));
}

TEST(QtPrompts, AQuestionHasJaAndNein)
{
    QtPrompts prompts;
    {
        const WhenModalOpens<QMessageBox> box([](QMessageBox &opened) {
            EXPECT_EQ(buttonTexts(opened), (QStringList { u"Ja"_s, u"Nein"_s }));
            expectPlain(opened, u"Titel"_s);
            QTest::keyClick(&opened, Qt::Key_Return);
        });
        EXPECT_TRUE(prompts.question(u"Wirklich?"_s, u"Titel"_s));
    }
    {
        const WhenModalOpens<QMessageBox> box(
            [](QMessageBox &opened) { opened.button(QMessageBox::No)->click(); });
        EXPECT_FALSE(prompts.question(u"Wirklich?"_s));
    }
    const WhenModalOpens<QMessageBox> box(
        [](QMessageBox &opened) { QTest::keyClick(&opened, Qt::Key_Escape); });
    EXPECT_FALSE(prompts.question(u"Wirklich?"_s));
}

TEST(QtPrompts, AltAndTheFirstLetterAnswer)
{
    QtPrompts prompts;
    const WhenModalOpens<QMessageBox> box(
        [](QMessageBox &opened) { QTest::keyClick(&opened, Qt::Key_N, Qt::AltModifier); });
    EXPECT_FALSE(prompts.question(u"Wirklich?"_s));
}

TEST(QtPrompts, AnInputGivesTheLineOrNothing)
{
    QtPrompts prompts;
    {
        const WhenModalOpens<QInputDialog> box([](QInputDialog &opened) {
            EXPECT_EQ(opened.labelText(), u"Name <b>?"_s);
            EXPECT_EQ(opened.windowTitle(), u"Titel"_s);
            EXPECT_EQ(opened.textValue(), u"log.txt"_s);
            EXPECT_EQ(opened.okButtonText(), u"OK"_s);
            EXPECT_EQ(opened.cancelButtonText(), u"Abbrechen"_s);
            EXPECT_EQ(opened.findChild<QLabel *>()->textFormat(), Qt::PlainText);
            opened.findChild<QLineEdit *>()->setText(u"neu.txt"_s);
            QTest::keyClick(&opened, Qt::Key_Return);
        });
        EXPECT_EQ(prompts.input(u"Name <b>?"_s, u"log.txt"_s, u"Titel"_s), u"neu.txt"_s);
    }
    const WhenModalOpens<QInputDialog> box(
        [](QInputDialog &opened) { QTest::keyClick(&opened, Qt::Key_Escape); });
    EXPECT_EQ(prompts.input(u"Name?"_s, u"log.txt"_s), std::nullopt);
}

TEST(QtPrompts, ABoxBelongsToTheWindowInFront)
{
    QWidget window;
    window.show();
    QtPrompts prompts(&window);
    const WhenModalOpens<QMessageBox> box([&](QMessageBox &opened) {
        EXPECT_EQ(opened.parentWidget(), &window);
        QTest::keyClick(&opened, Qt::Key_Return);
    });
    prompts.message(u"Text"_s);
}

TEST(QtPrompts, AConfirmationGetsALateLineWhileItStands)
{
    QtPrompts prompts;
    const auto stop = std::make_shared<std::atomic_bool>(false);
    bool found = false;
    const WhenModalOpens<QMessageBox> box([&](QMessageBox &opened) {
        expectPlain(opened, u"Titel"_s);
        ASSERT_TRUE(QTest::qWaitFor([&] { return found; }));
        EXPECT_EQ(opened.informativeText(), u"<i>3</i> Dateien"_s);
        for (const auto *label : opened.findChildren<QLabel *>()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
        }
        QTest::keyClick(&opened, Qt::Key_Return);
    });
    QTimer watcher;
    QObject::connect(&watcher, &QTimer::timeout, [&] {
        const auto *opened = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        found = opened != nullptr && opened->informativeText().contains(u"Dateien"_s);
    });
    watcher.start(1);
    EXPECT_TRUE(
        prompts.confirmLate(u"Löschen?"_s, u"Titel"_s,
                            { u"Wird gezählt ..."_s, [] { return u"<i>3</i> Dateien"_s; }, stop }));
    EXPECT_TRUE(*stop);
}

TEST(QtPrompts, TheAnswerEndsTheSearchForTheLateLine)
{
    QtPrompts prompts;
    const auto stop = std::make_shared<std::atomic_bool>(false);
    const WhenModalOpens<QMessageBox> box([](QMessageBox &opened) {
        EXPECT_EQ(opened.informativeText(), u"Wird gezählt ..."_s);
        QTest::keyClick(&opened, Qt::Key_Escape);
    });
    EXPECT_FALSE(prompts.confirmLate(u"Löschen?"_s, {},
                                     { u"Wird gezählt ..."_s,
                                       [&] {
                                           EXPECT_TRUE(
                                               QTest::qWaitFor([&] { return stop->load(); }));
                                           return QString();
                                       },
                                       stop }));
}

TEST(QtPrompts, WhileNoWindowIsActiveABoxBelongsToTheGivenOne)
{
    QWidget window; // as while another program is in front
    QtPrompts prompts;
    prompts.setWindow(&window);
    const WhenModalOpens<QMessageBox> box([&](QMessageBox &opened) {
        EXPECT_EQ(opened.parentWidget(), &window);
        QTest::keyClick(&opened, Qt::Key_Return);
    });
    prompts.message(u"Text"_s);
}
