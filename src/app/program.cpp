#include "app/program.h"

#include "app/commandline.h"
#include "app/frm_tarvelo.h"
#include "app/fusionstyle.h"
#include "app/qtsetup.h"
#include "app/startup.h"
#include "app/traynotifier.h"
#include "common/globals.h"
#include "dialogs/frm_info.h"
#include "dialogs/helpkeyfilter.h"
#include "dialogs/qtprompts.h"
#include "fileops/view.h"
#include "ftp/ftpcontrol.h"

#include <QApplication>
#include <QTranslator>

#include <cstdio>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Prints what a command line asks to be told. @return whether the program ends with it
bool answered(const QString &commandLine)
{
    const CommandLine kind = commandLineKind(commandLine);
    if (kind != CommandLine::Help && kind != CommandLine::Version) {
        return false;
    }
    const QString text = kind == CommandLine::Help ? helpText() : versionText();
    std::fputs(text.toLocal8Bit().constData(), stdout);
    return true;
}

/// The arguments behind the program's name, before there is an application to ask.
QString commandLineOf(int argc, char **argv)
{
    QStringList arguments;
    for (int at = 1; at < argc; ++at) {
        arguments.append(QString::fromLocal8Bit(argv[at]));
    }
    return commandLineText(arguments);
}

/// One run: everything lives as long as the application.
class Run {
public:
    explicit Run(const QString &commandLine)
        : m_commandLine(commandLine)
        , m_addresses(readAddresses(addressFiles(QCoreApplication::applicationDirPath())))
    {
    }

    int exec()
    {
        frm_info info(m_globals, m_addresses.addresses, m_prompts, openWithDesktop);
        // Between the two windows there is none; the program must not end there.
        QApplication::setQuitOnLastWindowClosed(false);
        QObject::connect(
            &info, &frm_info::closed, &info, [this] { load() ? start() : QApplication::exit(1); },
            Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        info.show();
        return QApplication::exec();
    }

private:
    /// Not before the info screen has closed: nothing is read or made while it stands.
    /// @return whether the program can go on; why not was told
    [[nodiscard]] bool load()
    {
        m_store.emplace();
        const auto loaded = loadProgramState(*m_store, FolderSources::ofThisUser(), m_globals);
        if (!loaded) {
            m_prompts.message(loaded.error().text());
            return false;
        }
        m_ftp.setTrustFile(trustFile(*m_store));
        return true;
    }

    void start()
    {
        m_window = std::make_unique<frm_tarvelo>(WindowServices { m_globals, m_ftp, m_prompts,
                                                                  *m_store, m_addresses.addresses,
                                                                  m_commandLine, &m_notifier });
        m_prompts.setWindow(m_window.get()); // also while another program is in front
        m_window->show();
        QApplication::setQuitOnLastWindowClosed(true);
        for (const QString &problem : m_addresses.problems) {
            m_window->AppendLog(problem + u"\r\n"_s);
        }
        takeCommandLineAddress();
        startDecision(m_commandLine) == StartDecision::LoadCommands ? m_window->load_commands()
                                                                    : m_window->show_login();
    }

    void takeCommandLineAddress()
    {
        // The log does not repeat the address: it may hold a password.
        if (commandLineKind(m_commandLine) == CommandLine::Address
            && !takeAddress(m_commandLine, m_globals)) {
            m_window->AppendLog(u"Die übergebene FTP-Adresse ist ungültig.\r\n"_s);
        }
    }

    QString m_commandLine;
    AddressesRead m_addresses;
    Globals m_globals;
    std::optional<SettingsStore> m_store; ///< from the end of the info screen on
    QtPrompts m_prompts;
    FtpControl m_ftp;
    HelpKeyFilter m_help;
    TrayNotifier m_notifier;
    std::unique_ptr<frm_tarvelo> m_window;
};

} // namespace

int runProgram(int argc, char **argv)
{
    const QString commandLine = commandLineOf(argc, argv);
    if (answered(commandLine)) {
        return 0;
    }
    quietenQt();
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"Tarvelo FTP"_s);
    QGuiApplication::setDesktopFileName(u"tarvelo-ftp"_s);
    QTranslator texts;
    installGermanTexts(texts);
    FusionStyle::install();
    return Run(commandLineText(QCoreApplication::arguments().mid(1))).exec();
}
