#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QTimer>

/// A fingerprint of a file's content; empty when it cannot be read.
[[nodiscard]] QByteArray contentHash(const QString &path);

/// What a file's record on the disk says. While it stays the same, so does the content, as long as
/// nobody takes pains.
struct FileStamp {
    quint64 inode = 0;
    qint64 size = -1; ///< bytes, -1 when there is no such file
    qint64 changed = 0, modified = 0; ///< nanoseconds since 1970
    bool operator==(const FileStamp &) const = default;

    [[nodiscard]] static FileStamp of(const QString &path);
};

/// Notices when files get another content, whether a program writes into them or puts a new file in
/// their place. One report for each saving, even when that takes several steps.
class EditWatch : public QObject {
    Q_OBJECT

public:
    explicit EditWatch(QObject *parent = nullptr);

    /// Watches a file from its present content on.
    void watch(const QString &path);
    void forget(const QString &path);
    /// The next saving is reported even when it leaves the content as it is.
    void reportNextSaving(const QString &path);
    /// How long a file must have been left alone before it counts as saved.
    void setQuietTime(int milliseconds) { m_quiet.setInterval(milliseconds); }

Q_SIGNALS:
    void saved(const QString &path);

private:
    struct Known {
        FileStamp stamp;
        QByteArray hash;
    };

    void look();

    QFileSystemWatcher m_watcher;
    QTimer m_quiet;
    QHash<QString, Known> m_known; ///< by path
};
