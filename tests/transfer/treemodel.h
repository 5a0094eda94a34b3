#pragma once

#include "transfer/conflict.h"

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QString>
#include <QStringList>
#include <vector>

/// What one side of the window ought to hold: relative paths with their content; a folder has none.
class TreeModel {
public:
    using Content = std::optional<QByteArray>;

    static TreeModel ofDisk(const QString &folder)
    {
        TreeModel result;
        QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            QFile file(path);
            const bool readable = it.fileInfo().isFile() && file.open(QIODevice::ReadOnly);
            result.m_entries.insert(path.mid(folder.size() + 1),
                                    readable ? Content(file.readAll()) : Content());
        }
        return result;
    }

    [[nodiscard]] bool has(const QString &path) const { return m_entries.contains(path); }
    [[nodiscard]] bool isFolder(const QString &path) const { return has(path) && !m_entries[path]; }
    [[nodiscard]] QByteArray content(const QString &path) const
    {
        return m_entries.value(path).value_or(QByteArray());
    }
    [[nodiscard]] QStringList topLevel() const
    {
        QStringList result;
        for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
            if (!it.key().contains(u'/')) {
                result.append(it.key());
            }
        }
        return result;
    }
    void setFile(const QString &path, const QByteArray &content)
    {
        m_entries.insert(path, content);
    }
    void setFolder(const QString &path) { m_entries.insert(path, {}); }
    void remove(const QString &path)
    {
        for (const QString &each : whole(path)) {
            m_entries.remove(each);
        }
    }
    void rename(const QString &from, const QString &to)
    {
        for (const QString &each : whole(from)) {
            m_entries.insert(to + each.mid(from.size()), m_entries.take(each));
        }
    }
    /// Puts everything of an entry of another tree over what is here.
    void merge(const TreeModel &from, const QString &path)
    {
        for (const QString &each : from.whole(path)) {
            m_entries.insert(each, from.m_entries.value(each));
        }
    }
    /// An entry and everything in it.
    [[nodiscard]] QStringList whole(const QString &path) const
    {
        QStringList result;
        for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
            if (it.key() == path || it.key().startsWith(path + u'/')) {
                result.append(it.key());
            }
        }
        return result;
    }
    /// What is different; empty when the trees are equal.
    [[nodiscard]] QString difference(const TreeModel &other) const
    {
        QStringList result;
        for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
            if (!other.has(it.key())) {
                result.append(it.key() + QStringLiteral(" is missing"));
            } else if (other.m_entries.value(it.key()) != it.value()) {
                result.append(it.key()
                              + QStringLiteral(" has %1 bytes, expected %2")
                                    .arg(other.content(it.key()).size())
                                    .arg(content(it.key()).size()));
            }
        }
        for (auto it = other.m_entries.begin(); it != other.m_entries.end(); ++it) {
            if (!has(it.key())) {
                result.append(it.key() + QStringLiteral(" should not be there"));
            }
        }
        return result.join(QStringLiteral("; "));
    }

private:
    QMap<QString, Content> m_entries;
};

/// An answer that was given to a conflict question.
struct GivenAnswer {
    ConflictReply reply;
    std::optional<QString> newName;
};

/// What a batch does to its target, by the answers that were given in it.
class BatchModel {
public:
    BatchModel(bool upload, const TreeModel &source, TreeModel &target,
               std::vector<GivenAnswer> answers)
        : m_upload(upload)
        , m_source(source)
        , m_target(target)
        , m_answers(std::move(answers))
    {
    }

    void run(const QStringList &names)
    {
        for (const QString &name : names) {
            if (!m_skipRest) {
                item(name);
            }
        }
    }
    [[nodiscard]] bool usedAll() const { return m_next == m_answers.size(); }

private:
    void item(const QString &name)
    {
        const bool folder = m_source.isFolder(name);
        const bool conflict = folder ? m_target.has(name) : !m_target.content(name).isEmpty();
        bool resume = false;
        if (conflict && m_standing) {
            resume = m_upload && *m_standing == ConflictAnswer::Resume;
        } else if (conflict) {
            const ConflictReply last = ask(name, !m_upload && !folder);
            const bool skip
                = last.answer == ConflictAnswer::Skip || last.answer == ConflictAnswer::Rename;
            if (last.applyToAll) {
                m_skipRest = skip;
                m_standing = last.answer;
            }
            if (skip) {
                return;
            }
            resume = last.answer == ConflictAnswer::Resume;
        }
        transfer(name, folder, resume);
    }
    void transfer(const QString &name, bool folder, bool resume)
    {
        if (folder || !resume) {
            m_target.merge(m_source, name);
            return;
        }
        const QByteArray kept = m_target.content(name); // empty after a rename
        m_target.setFile(name, kept + m_source.content(name).mid(kept.size()));
    }
    ConflictReply ask(const QString &name, bool onceMore)
    {
        GivenAnswer given = dialogs(name);
        if (onceMore && given.reply.answer == ConflictAnswer::Rename) {
            given = dialogs(name);
        }
        return given.reply;
    }
    GivenAnswer dialogs(const QString &name)
    {
        for (;;) {
            const GivenAnswer given
                = m_next < m_answers.size() ? m_answers[m_next++] : GivenAnswer {};
            if (given.reply.answer != ConflictAnswer::Rename || !given.newName) {
                return given;
            }
            if (!m_target.has(*given.newName) && m_target.has(name)) {
                m_target.rename(name, *given.newName);
            }
        }
    }

    bool m_upload;
    const TreeModel &m_source;
    TreeModel &m_target;
    std::vector<GivenAnswer> m_answers;
    std::size_t m_next = 0;
    bool m_skipRest = false;
    std::optional<ConflictAnswer> m_standing;
};
