#pragma once

#include <QByteArray>
#include <QPair>
#include <QSettings>
#include <QString>
#include <functional>
#include <memory>
#include <tl/expected.hpp>

/// A stored value that cannot be read as what it should be, or a file that cannot be read at all.
struct SettingsError {
    QString file; ///< path of the settings file
    QString key; ///< section and key, "Settings/Timeout"; empty when the file itself is the problem
    QString value; ///< what stands there
    bool whileSaving = false; ///< the file could not be written

    /// German sentence naming file and key, for a message box or the log.
    [[nodiscard]] QString text() const;
};

template <class T> using SettingsResult = tl::expected<T, SettingsError>;

/// Goes on although the settings could not be saved; the reason stands where it is called.
inline void ignoreError(const SettingsResult<void> &, const char * /*reason*/) { }

/// Keys and values of one section, in the order in which they are saved.
using SettingsValues = QList<QPair<QString, QString>>;

/// Sections of our own beside "Settings" and "Properties".
namespace OwnSettings {
inline const QString Security = QStringLiteral("Security"); ///< Encryption, Connections
inline const QString Connection = QStringLiteral("Connection"); ///< Encryption of the current one
} // namespace OwnSettings

/// The user's settings: text values addressed by section and key, in one INI file.
///
/// Sections and keys match without regard to case; text comes back exactly as it was saved. The
/// program's own two sections are "Settings" (current connection) and "Properties" (program
/// settings); window geometry and the like go into further ones. Nothing is ever deleted or
/// repaired; a file with lines that are no entries is copied to ".defekt" beside it before anything
/// is saved. The file is readable for its owner only and replaced as a whole.
class SettingsStore {
public:
    /// $XDG_CONFIG_HOME/Tarvelo FTP/Tarvelo FTP.ini
    [[nodiscard]] static QString defaultFile();

    explicit SettingsStore(const QString &file = defaultFile());

    [[nodiscard]] QString file() const { return m_file; }
    /// Why the file itself cannot be used (no permission, a folder in its place); empty key.
    [[nodiscard]] SettingsResult<void> readable() const;

    [[nodiscard]] QString text(const QString &section, const QString &key,
                               const QString &byDefault = {}) const;
    /// Whole number; a fraction is rounded half to even. Fails for anything else than a number.
    [[nodiscard]] SettingsResult<int> integer(const QString &section, const QString &key,
                                              int byDefault) const;
    /// True and False in any case, or a number (not zero is true). Fails for anything else.
    [[nodiscard]] SettingsResult<bool> boolean(const QString &section, const QString &key,
                                               bool byDefault) const;
    /// Raw bytes such as a window's geometry; empty when missing.
    [[nodiscard]] QByteArray bytes(const QString &section, const QString &key) const;

    /// Text form of a truth value: the words True and False.
    [[nodiscard]] static QString fromBoolean(bool value);

    /// Hears of every text, number and truth value that is set, in their order; may be empty.
    std::function<void(const QString &section, const QString &key)> onSet;

    void setText(const QString &section, const QString &key, const QString &value);
    void setInteger(const QString &section, const QString &key, int value);
    void setBytes(const QString &section, const QString &key, const QByteArray &value);

    /// Sets the values one after the other and writes the file.
    /// @return the file as the error when it could not be written; the values hold all the same
    [[nodiscard]] SettingsResult<void> save(const QString &section, const SettingsValues &values);
    /// Writes what was set and not yet written; also once more what could not be written before.
    [[nodiscard]] SettingsResult<void> sync();

private:
    [[nodiscard]] QString path(const QString &section, const QString &key) const;
    [[nodiscard]] SettingsError error(const QString &section, const QString &key) const;

    QString m_file;
    std::unique_ptr<QSettings> m_settings; ///< never null
};
