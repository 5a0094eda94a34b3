#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QTimer>

/// A fingerprint of a file's content; empty when it cannot be read.
[[nodiscard]] QByteArray contentHash(const QString &path);

/// Notices when files get another content, whether a program writes into them or puts a new file in
/// their place. One report for each saving, even when that takes several steps.
class EditWatch : public QObject {
    Q_OBJECT

public:
    explicit EditWatch(QObject *parent = nullptr);

    /// Watches a file from its present content on.
    void watch(const QString &path);
    void forget(const QString &path);
    /// How long a file must have been left alone before it counts as saved.
    void setQuietTime(int milliseconds) { m_quiet.setInterval(milliseconds); }

Q_SIGNALS:
    void saved(const QString &path);

private:
    void look();

    QFileSystemWatcher m_watcher;
    QTimer m_quiet;
    QHash<QString, QByteArray> m_known; ///< content hashes by path
};
