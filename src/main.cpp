#include "app/frm_tarvelo.h"
#include "common/globals.h"
#include "common/settingsstore.h"
#include "common/workingfolders.h"
#include "dialogs/helpkeyfilter.h"
#include "dialogs/qtprompts.h"
#include "ftp/ftpcontrol.h"

#include <QApplication>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Tarvelo FTP"));
    Globals globals;
    globals.folders = workingFolders(FolderSources::ofThisUser());
    SettingsStore store;
    QtPrompts prompts;
    FtpControl ftp;
    const HelpKeyFilter help;
    frm_tarvelo window({ globals, ftp, prompts, store, Addresses() });
    window.show();
    return QApplication::exec();
}
