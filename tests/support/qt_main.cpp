// Entry point of every test that needs Qt: headless, German, with settings and temporary files in
// a folder of its own that goes away at the end.
#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QTemporaryDir>
#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    if (!home.isValid()) {
        return 2;
    }
    for (const char *name :
         { "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TEMP" }) {
        const QString folder = home.filePath(QString::fromLatin1(name));
        QDir().mkpath(folder);
        qputenv(name, folder.toLocal8Bit());
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qputenv("TZ", "UTC");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QApplication application(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
