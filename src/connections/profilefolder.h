#pragma once

#include "connections/profile.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <tl/expected.hpp>

struct Globals;

/// The folder that holds the profiles: one ".login" file each, and beside it a ".extra" file for
/// what its eleven lines cannot hold. Names match without regard to case.
class ProfileFolder {
public:
    /// @param folder  without a separator at the end
    explicit ProfileFolder(const QString &folder);

    /// Names of all profiles, sorted.
    [[nodiscard]] QStringList names() const;
    /// Path of a profile's file; nothing when there is none of that name.
    [[nodiscard]] std::optional<QString> find(const QString &name) const;

    /// Reads a profile into the fields. A missing or unreadable file changes nothing, a short one
    /// changes the fields that it has. @return the number of fields read, 11 for all
    int read(const QString &name, ProfileFields &fields) const;
    /// Writes a profile as a whole or not at all, for its owner alone.
    /// @return a German sentence when that failed; then the profile is as it was, unless the
    /// sentence names an outdated file that could not be deleted
    [[nodiscard]] tl::expected<void, QString> write(const QString &name,
                                                    const ProfileFields &fields) const;
    /// Removes a profile's files. @return whether it is gone
    [[nodiscard]] bool remove(const QString &name) const;

private:
    [[nodiscard]] QString pathFor(const QString &name) const;

    QString m_folder;
};

/// Writes the local pane's folder into the profile that the current connection came from and makes
/// it the connection's. @return a German sentence when it could not be written
[[nodiscard]] tl::expected<void, QString> rememberLocal(Globals &globals, const QString &folder);
/// The same with the server pane's folder.
[[nodiscard]] tl::expected<void, QString> rememberRemote(Globals &globals, const QString &folder);
