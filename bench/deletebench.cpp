// What the user waits for when a folder of the server is deleted: from the answer OK until the pane
// is listed again, in the real main window.
//
//   deletebench HOST PORT USER PASSWORD FOLDER NAME      deletes FOLDER/NAME
//
// Prints the seconds. Runs without a display (QT_QPA_PLATFORM=offscreen).

#include "app/frm_tarvelo.h"
#include "common/globals.h"
#include "common/prompts.h"
#include "common/settingsstore.h"
#include "common/workingfolders.h"
#include "ftp/ftpcontrol.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QItemSelectionModel>
#include <QTemporaryDir>
#include <QToolBar>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// Says yes to everything, and starts the clock at the confirmation.
class Yes : public Prompts {
public:
    QElapsedTimer clock;

    void message(const QString &, const QString &, Icon) override { }
    bool confirm(const QString &, const QString &, const QString &) override
    {
        clock.start();
        return true;
    }
    bool confirmLate(const QString &text, const QString &title, const LateDetails &details) override
    {
        std::fprintf(stderr, "%s\n", qPrintable(details.find()));
        return confirm(text, title, {});
    }
    bool question(const QString &, const QString &) override { return true; }
    std::optional<QString> input(const QString &, const QString &, const QString &) override
    {
        return std::nullopt;
    }
};

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList words = QApplication::arguments();
    if (words.size() != 7) {
        std::fputs("usage: deletebench HOST PORT USER PASSWORD FOLDER NAME\n", stderr);
        return 2;
    }
    const QTemporaryDir home;
    Globals globals;
    globals.folders.temporary = home.filePath(u"temp/"_s);
    globals.folders.profiles = home.filePath(u"mo_def"_s);
    SettingsStore store(home.filePath(u"settings.ini"_s));
    FtpControl ftp;
    Yes prompts;
    const QStringList fields { words[1], words[3], words[4], home.path(), words[5], u"30"_s,
                               words[2], u"1"_s,   u"1"_s,   {},          {} };
    frm_tarvelo window({ globals, ftp, prompts, store, Addresses(), fields.join(u'\t') });
    window.show();
    window.load_commands();
    RemotePane &pane = window.remotePane();
    const int row = pane.model().findRow(words[6]);
    if (row < 0) {
        std::fputs("the folder is not there\n", stderr);
        return 1;
    }
    pane.view().selectRowNumbers({ row });
    pane.view().selectionModel()->setCurrentIndex(pane.model().index(row, 0),
                                                  QItemSelectionModel::NoUpdate);
    auto *bar = window.findChild<QToolBar *>(u"tbToolBar_rem"_s);
    bar->findChild<QAction *>(u"DeleteFiles"_s)->trigger();
    std::printf("%.2f\n", static_cast<double>(prompts.clock.elapsed()) / 1000);
    return pane.model().findRow(words[6]) < 0 ? 0 : 1;
}
