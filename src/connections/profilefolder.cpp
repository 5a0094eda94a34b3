#include "connections/profilefolder.h"

#include "common/globals.h"
#include "common/mo_standard.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString loginEnding = QStringLiteral(".login");
constexpr qint64 largestProfile = 1 << 20; ///< bytes; a profile is a few hundred

QString sidePath(const QString &loginPath)
{
    return loginPath.chopped(loginEnding.size()) + u".extra"_s;
}

/// Content of a regular file of sensible size; nothing otherwise. Opening a pipe would hang.
std::optional<QByteArray> contentOf(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || file.size() > largestProfile
        || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.read(largestProfile);
}

tl::expected<void, QString> replaceFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        && file.write(bytes) == bytes.size() && file.commit()) {
        return {};
    }
    return tl::unexpected(
        u"Die Verbindung konnte nicht gespeichert werden.\n%1: %2"_s.arg(path, file.errorString()));
}

/// Puts a file back as it was. That may fail, too; then the failure that is told already is the
/// reason.
void restore(const QString &path, const std::optional<QByteArray> &before)
{
    if (before) {
        (void)replaceFile(path, *before);
    } else {
        (void)QFile::remove(path);
    }
}

bool removeFile(const QString &path) { return !QFileInfo::exists(path) || QFile::remove(path); }

} // namespace

ProfileFolder::ProfileFolder(const QString &folder)
    : m_folder(folder)
{
}

QStringList ProfileFolder::names() const
{
    QStringList names;
    for (const QString &file : QDir(m_folder).entryList(QDir::Files | QDir::Hidden)) {
        if (file.endsWith(loginEnding, Qt::CaseInsensitive)) {
            names << file.chopped(loginEnding.size());
        }
    }
    std::sort(names.begin(), names.end(), [](const QString &left, const QString &right) {
        const int order = left.compare(right, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : left < right;
    });
    return names;
}

QString ProfileFolder::pathFor(const QString &name) const
{
    return joinPath(m_folder, name + loginEnding);
}

std::optional<QString> ProfileFolder::find(const QString &name) const
{
    if (name.isEmpty() || name.contains(u'/') || name.contains(QChar(0))) {
        return std::nullopt;
    }
    if (QFileInfo(pathFor(name)).isFile()) {
        return pathFor(name);
    }
    for (const QString &file : QDir(m_folder).entryList(QDir::Files | QDir::Hidden)) {
        if (file.compare(name + loginEnding, Qt::CaseInsensitive) == 0) {
            return joinPath(m_folder, file);
        }
    }
    return std::nullopt;
}

int ProfileFolder::read(const QString &name, ProfileFields &fields) const
{
    const auto path = find(name);
    const auto login = path ? contentOf(*path) : std::nullopt;
    if (!login) {
        return 0;
    }
    return decodeProfile({ *login, contentOf(sidePath(*path)).value_or(QByteArray()) }, fields);
}

tl::expected<void, QString> ProfileFolder::write(const QString &name,
                                                 const ProfileFields &fields) const
{
    if (name.isEmpty() || name.contains(u'/') || name.contains(QChar(0))) {
        return tl::unexpected(u"Der Name der Verbindung ist nicht erlaubt: %1"_s.arg(name));
    }
    const QString path = find(name).value_or(pathFor(name));
    const ProfileBytes bytes = encodeProfile(fields);
    // The side file first: without it the other one could be misread, while one that does not
    // belong to it is noticed.
    const auto sideBefore = contentOf(sidePath(path));
    if (!bytes.side.isEmpty()) {
        if (const auto written = replaceFile(sidePath(path), bytes.side); !written) {
            return written;
        }
    }
    if (const auto written = replaceFile(path, bytes.login); !written) {
        if (!bytes.side.isEmpty()) {
            restore(sidePath(path), sideBefore);
        }
        return written;
    }
    if (bytes.side.isEmpty() && !removeFile(sidePath(path))) {
        return tl::unexpected(
            u"Eine veraltete Datei konnte nicht gelöscht werden: %1"_s.arg(sidePath(path)));
    }
    return {};
}

bool ProfileFolder::remove(const QString &name) const
{
    const auto path = find(name);
    return path && removeFile(*path) && removeFile(sidePath(*path));
}

// Intended: the other folder stays as the connection has it, not as its pane shows it: one button
// replaces one folder.
tl::expected<void, QString> rememberLocal(Globals &globals, const QString &folder)
{
    globals.connection.LocalDir = folder;
    globals.session.CurrentLocalDir = folder;
    return ProfileFolder(globals.folders.profiles)
        .write(globals.session.Lastconnect, fieldsOf(globals.connection));
}

tl::expected<void, QString> rememberRemote(Globals &globals, const QString &folder)
{
    globals.connection.RemoteDir = folder;
    globals.session.CurrentRemoteDir = folder;
    return ProfileFolder(globals.folders.profiles)
        .write(globals.session.Lastconnect, fieldsOf(globals.connection));
}
