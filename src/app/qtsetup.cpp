#include "app/qtsetup.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTranslator>

using namespace Qt::StringLiterals;

/// The texts lie in a static library, whose resources nobody would link without being asked.
static void initialiseTexts() { Q_INIT_RESOURCE(qttexts); }

void quietenQt()
{
    QLoggingCategory::setFilterRules(u"*.debug=false\n*.info=false\n*.warning=false"_s);
}

void installGermanTexts(QTranslator &translator)
{
    initialiseTexts();
    if (translator.load(u":/texts/qtbase_de.qm"_s)) {
        QCoreApplication::installTranslator(&translator);
    }
}
