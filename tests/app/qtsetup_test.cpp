#include "app/qtsetup.h"

#include <QCoreApplication>
#include <QTranslator>
#include <gtest/gtest.h>

TEST(QtSetup, QtsOwnTextsAreGermanWithoutAnyFileOfTheSystem)
{
    QTranslator texts;
    installGermanTexts(texts);
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Abbrechen"));
    EXPECT_EQ(texts.filePath(), QStringLiteral(":/texts/qtbase_de.qm"));
    QCoreApplication::removeTranslator(&texts);
}
