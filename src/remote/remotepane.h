#pragma once

#include "ftp/ftpoperations.h"
#include "remote/filepane.h"

#include <functional>

class Shell;
struct Globals;

/// The right half of the window: the server's current folder.
///
/// Commands of the user do and say nothing unless the session is connected and idle; listFolder and
/// ListRemoteFolder are steps of such commands and look at nothing. What the server
/// answers reaches the log through the control's reply event; nothing here shows a box.
class RemotePane : public FilePane {
    Q_OBJECT

public:
    RemotePane(FtpOperations &ftp, Globals &globals, Shell &shell, QWidget *parent = nullptr);

    void listFolder(const QString &folder) override;
    void rememberFolder(const QString &folder) override;
    [[nodiscard]] bool isUnread() const override { return m_unread; }

    /// Lists a folder into the pane and changes the server's folder to it where that differs.
    /// @param folder  becomes the folder that is listed in the end, with "/" at its end
    void ListRemoteFolder(QString &folder, FolderSource source = FolderSource::Derived);
    void DoRemoteRefresh(const QString &folder);
    /// @param folder  absolute, or relative to the current folder
    void EnterRemoteFolder(const QString &folder);
    void GoUpRemote();
    /// @param byMouse  files are transferred by a double click only
    void OpenRemoteRow(int row, bool byMouse);
    /// Puts the control's current folder into the history of the folder box.
    void RememberRemoteFolder();
    /// Finds out whether a link leads to a folder; the pane stays where it is.
    void ResolveLink(int row);
    void SortRemoteByName();
    void ReportListingFailure(const QString &rawText);
    /// Row of a marked entry. @param index  slot in Globals::marked, from 1 @return -1 for none
    [[nodiscard]] int RemoteItem(int index) const;

    /// Rows are being built while the window paints.
    [[nodiscard]] bool isWorking() const { return m_working; }
    /// Work of the window that the session knows nothing of counts as busy, too.
    void setBusyCheck(std::function<bool()> busy) { m_othersWork = std::move(busy); }
    /// Connected, and nothing runs.
    [[nodiscard]] bool isReady() const;
    /// Grey line of an empty list, as the session stands.
    void showHint();

Q_SIGNALS:
    void downloadWanted(); ///< a file row was double-clicked

protected:
    [[nodiscard]] bool maySort() const override;

private:
    void chooseFolder();
    void forgetClosedSession();
    void takeEntry(); ///< an entry of the folder box was chosen
    [[nodiscard]] QString goTo(const QString &wanted);
    void fillRows(const QString &folder, bool listed);

    FtpOperations &m_ftp;
    Globals &m_globals;
    Shell &m_shell;
    std::function<bool()> m_othersWork = [] { return false; };
    bool m_working = false;
    QString m_listed; ///< folder of the listing that the control holds
    bool m_unread = false; ///< the rows are missing, not the files
};
