#pragma once

#include "local/locallisting.h"
#include "remote/filepane.h"

#include <functional>
#include <memory>

struct Drive;
struct Globals;

/// The left half of the window: one folder of this computer.
///
/// Folders are read beside the window. A listing that is quick is there when the call returns; a
/// slow one shows its rows when they have come, and a folder that never answers is left alone as
/// soon as another one is asked for.
class LocalPane : public FilePane {
    Q_OBJECT

public:
    using Reader = std::function<LocalListing(const LocalRequest &, const std::atomic_bool &stop)>;

    explicit LocalPane(Globals &globals, QWidget *parent = nullptr,
                       Reader reader = readLocalFolder);
    ~LocalPane() override;

    /// Appends the drives to the folder box's list.
    void addDrives(const QList<Drive> &drives);

    /// The folder shown, without what an annotation in the box may add; ends in the separator.
    [[nodiscard]] QString folder() const override { return m_shown; }
    void listFolder(const QString &folder) override;
    void rememberFolder(const QString &folder) override;

    void ListLocalFolder(const QString &path, FolderSource source);
    /// Lists the parent of a folder that ends in the separator.
    void LocalUp(const QString &folder);
    void RememberLocalFolder(const QString &folder);
    /// The up command: the parent of the folder shown, remembered.
    void goUp();
    /// Lists the folder in the box again.
    void refresh();
    /// @param byMouse  files are transferred by a double click only
    void OpenLocalRow(int row, bool byMouse);

    /// A folder is still being read.
    [[nodiscard]] bool isReading() const { return m_job != nullptr; }

Q_SIGNALS:
    void uploadWanted(); ///< a file row was double-clicked
    void listed(); ///< the rows of the folder asked for last are shown

protected:
    [[nodiscard]] bool sameFolder(const QString &entry, const QString &folder) const override;

private:
    struct Job;

    void showDesktop();
    void abandonJob();
    void takeResult();
    void showPending();
    void setShown(const QString &folder);

    Globals &m_globals;
    Reader m_reader;
    std::shared_ptr<Job> m_job;
    QString m_shown;
};
