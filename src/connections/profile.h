#pragma once

#include <QByteArray>
#include <QString>

struct ConnectionProfile;

/// The fields of a profile as the connection dialog shows them.
struct ProfileFields {
    QString RemoteHost, UserName;
    QString Password; ///< clear text
    QString LocalDir, RemoteDir;
    QString Timeout = QStringLiteral("30"); ///< seconds, as typed
    QString RemotePort = QStringLiteral("21"); ///< as typed
    bool Passive = true;
    int TransferPosition
        = 0; ///< 0 Binary, 1 Ascii, 2 EBCIDIC; differs from ConnectionProfile's coding
    QString Account;
    QString Bemerkungen; ///< line breaks are CR LF
    int encryption = -1; ///< as ConnectionProfile::encryption

    friend bool operator==(const ProfileFields &, const ProfileFields &) = default;
};

/// List position of a transfer type in the control's coding, and back: 0 and 1 are swapped,
/// anything else is 2.
[[nodiscard]] int swappedTransferType(int type);

/// The current connection as fields.
[[nodiscard]] ProfileFields fieldsOf(const ConnectionProfile &connection);

/// The two files of a profile.
struct ProfileBytes {
    /// Eleven lines: server, user, scrambled password, local and remote folder, time-out, port,
    /// passive 1 or 0, list position of the transfer type, account, remarks with <br>.
    QByteArray login;
    QByteArray side; ///< what eleven lines cannot hold; empty when there is nothing
};

[[nodiscard]] ProfileBytes encodeProfile(const ProfileFields &fields);

/// Takes the lines one by one into the fields; a missing line ends it and what was read counts.
/// @return the number of fields read: 11 for a complete file
int decodeProfile(const ProfileBytes &bytes, ProfileFields &fields);

/// A typed or pasted profile name: letters A to Z, digits and underscores stay, every other
/// character becomes an underscore.
[[nodiscard]] QString FilterProfileNameKey(const QString &text);
