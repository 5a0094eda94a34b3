#pragma once

#include "connections/frmConnect.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/settingsstore.h"
#include "ftp/ftpconnection.h"
#include "support/scriptedprompts.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

/// The connection dialog with a profile folder of its own, scripted boxes and a picker that
/// answers.
struct ConnectDialog : ::testing::Test {
    QTemporaryDir base;
    Globals globals;
    SettingsStore store { base.filePath(QStringLiteral("settings.ini")) };
    ScriptedPrompts prompts;
    ProfileFolder profiles { base.path() };
    std::optional<FtpProxy> proxy;
    std::optional<QString> picked; ///< what the folder picker answers
    QString pickerStart;
    std::unique_ptr<frmConnect> dialog;

    ConnectDialog()
    {
        globals.folders.profiles = base.path();
        globals.connection.RemoteHost = QStringLiteral("alt01");
        globals.connection.UserName = QStringLiteral("altuser");
        globals.connection.Password = QStringLiteral("altpass");
    }
    void open(bool connectionStands = false)
    {
        dialog = std::make_unique<frmConnect>(
            ConnectDialogServices {
                globals, store, prompts, [this](const FtpProxy &given) { proxy = given; },
                [this](QWidget *) {
                    pickerStart = globals.folderChoice.PickedFolder;
                    globals.folderChoice.FolderPicked = picked.has_value();
                    globals.folderChoice.PickedFolder = picked.value_or(pickerStart);
                } },
            connectionStands);
        dialog->QWidget::show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    template <class T> T *find(const char *name) const
    {
        auto *found = dialog->findChild<T *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QLineEdit *edit(const char *name) const { return find<QLineEdit>(name); }
    void press(const char *name) const { find<QPushButton>(name)->click(); }
    QComboBox *names() const { return find<QComboBox>("cbo_profil"); }
    static ProfileFields homeProfile()
    {
        ProfileFields fields;
        fields.RemoteHost = QStringLiteral("files01");
        fields.UserName = QStringLiteral("web01");
        fields.Password = QStringLiteral("geheim");
        fields.LocalDir = QStringLiteral("/home/anna");
        fields.RemoteDir = QStringLiteral("/html");
        fields.Timeout = QStringLiteral("45");
        fields.RemotePort = QStringLiteral("2121");
        fields.Passive = false;
        fields.TransferPosition = 2;
        fields.Account = QStringLiteral("konto");
        fields.Bemerkungen = QStringLiteral("a\r\nb");
        fields.encryption = 1;
        return fields;
    }
    void writeHome() { ASSERT_TRUE(profiles.write(QStringLiteral("Heim"), homeProfile())); }
    QString saved(const QString &key) const
    {
        return store.text(QStringLiteral("Settings"), key, QStringLiteral("fehlt"));
    }
    QByteArray file(const QString &name) const
    {
        QFile in(base.filePath(name));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray("missing");
    }
};
