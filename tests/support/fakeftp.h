#pragma once

#include "ftp/ftpconnection.h"

#include <QByteArray>
#include <QMap>
#include <QRegularExpression>
#include <QStringList>
#include <functional>
#include <optional>

/// A session whose server is a tree in memory. Notes every command, refuses what a test wants
/// refused, and raises events as the real control does.
class FakeFtp : public FtpConnection {
public:
    struct Node {
        QString type = QStringLiteral("d"); ///< "d" folder, "l" link, "-" file
        QByteArray content;
        QString target; ///< of a link
        std::optional<qint64> time = 1700000000; ///< seconds since 1970; nothing = not told
    };

    FakeFtp();

    void addFolder(const QString &path); ///< with everything above it
    void addFile(const QString &path, const QByteArray &content);
    void addLink(const QString &path, const QString &target);
    [[nodiscard]] bool has(const QString &path) const { return nodes.contains(path); }
    [[nodiscard]] QByteArray content(const QString &path) const
    {
        return nodes.value(path).content;
    }

    int lists = 0; ///< calls of getFiles and putFiles

    /// The commands so far: "GET remote local @offset", "PUT local remote @offset mode",
    /// "MGET pattern local", "MPUT pattern remote", "CWD", "LIST", "MKD", "RMD", "DELE", "RMTREE",
    /// "RENAME old new", "RAW command", "COUNT folders", "MODES folder files folders", "FACTS
    /// path". TYPE stands in front of transfers as "[type]".
    QStringList commands;
    /// The commands that begin with a word.
    [[nodiscard]] QStringList commandsOf(const QString &word) const;

    /// Asked before every command; an error refuses it.
    std::function<std::optional<FtpError>(const QString &command)> refuse;
    /// Files of a list that are never begun, as after a lost connection: they have no outcome.
    std::function<bool(const FtpFile &file)> neverBegun;
    /// Called while a command runs, after refuse; may call close().
    std::function<void(const QString &command)> during;
    std::function<void(const FtpEvent &event)> onEvent;

    /// Refuses every command that holds the text.
    void refuseAll(const QString &part, const QString &reply,
                   ftp::ErrorKind kind = ftp::ErrorKind::Refused);

    QMap<QString, Node> nodes; ///< by absolute path without a separator at the end
    int connectionState = Connected;
    bool busy = false;
    QString current = QStringLiteral("/");

    /// What was handed over for the next connect.
    struct Properties {
        int timeout = 0; ///< milliseconds
        bool passive = false;
        FtpProxy proxy;
        FtpEncryption encryption = FtpEncryption::Automatic;
        int sessions = 0;
    } properties;
    /// Answers connect ("CONNECT server user password account port"), logout ("QUIT") and the
    /// question for resume support ("REST"); without it they succeed.
    std::function<std::optional<FtpError>(const QString &command)> login;
    bool resumes = true; ///< what the server says about restarting transfers

    void setTimeout(int milliseconds) override { properties.timeout = milliseconds; }
    void setPassiveMode(bool passive) override { properties.passive = passive; }
    void setProxy(const FtpProxy &proxy) override { properties.proxy = proxy; }
    void setEncryption(FtpEncryption encryption) override { properties.encryption = encryption; }
    void setSessionLimit(int sessions) override { properties.sessions = sessions; }
    FtpStatus connectAndLogin(const QString &server, const QString &user, const QString &password,
                              const QString &account, int port) override;
    FtpStatus logout() override;
    FtpStatus drop() override; ///< closes; "DROP" may be refused by login
    FtpResult<bool> resumeSupport() override;

    [[nodiscard]] int state() const override { return connectionState; }
    [[nodiscard]] bool isBusy() const override { return busy; }
    void close() override { connectionState = Closed; }
    void setTransferType(int type) override { m_type = type; }
    [[nodiscard]] int transferType() const override { return m_type; }
    void setStoreMode(int mode) override { m_storeMode = mode; }
    [[nodiscard]] QString currentFolder() const override { return current; }
    FtpStatus setCurrentFolder(const QString &folder) override;
    FtpStatus changeToParentFolder() override;
    FtpStatus list() override;
    [[nodiscard]] const RemoteListing &listing() const override { return m_listing; }
    FtpStatus getFile(const QString &remotePath, const QString &localPath, qint64 &offset) override;
    FtpStatus putFile(const QString &localPath, const QString &remotePath, qint64 &offset) override;
    /// One "GET" or "PUT" after the other.
    FtpStatus getFiles(const QList<FtpFile> &files, const FtpFileDone &done) override;
    FtpStatus putFiles(const QList<FtpFile> &files, const FtpFileDone &done) override;
    FtpStatus getMultiple(const QString &pattern, const QString &localFolder) override;
    FtpStatus putMultiple(const QString &pattern, const QString &remoteFolder) override;
    FtpStatus makeFolder(const QString &name) override;
    FtpStatus removeFolder(const QString &path) override;
    FtpStatus deleteFile(const QString &path) override;
    FtpStatus rename(const QString &oldName, const QString &newName) override;
    FtpStatus sendRaw(const QString &command) override;
    FtpStatus removeTree(const QString &folder) override;
    /// Notes one "DELE" for each file.
    FtpStatus removeFiles(const QStringList &paths, const FtpFileDone &done) override;
    FtpResult<FtpFolderContent>
    countInside(const QStringList &folders,
                const std::shared_ptr<const std::atomic_bool> &stop) override;
    FtpStatus changeModesInside(const QString &folder, int files, int folders) override;
    FtpResult<FtpFileFacts> fileFacts(const QString &path) override;

private:
    [[nodiscard]] std::optional<FtpError> answer(const QString &command);
    using Work = std::function<std::optional<FtpError>()>;
    FtpStatus run(int operation, const QString &command, const Work &work);
    template <class Move>
    FtpStatus runList(const QList<FtpFile> &files, const FtpFileDone &done, Move move);
    [[nodiscard]] QString absolute(const QString &path) const;
    [[nodiscard]] QStringList below(const QString &folder) const;
    void reply(int operation, int status, const QString &text) const;
    void progress(int operation, qint64 bytes, qint64 total = 0) const;

    int m_type = TypeBinary;
    int m_storeMode = StoreReplace;
    RemoteListing m_listing;
};
