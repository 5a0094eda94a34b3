#include "common/settingsstore.h"

#include "common/mo_standard.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

/// Makes the folder and an empty file for the owner alone, so that no later write can be read by
/// others, not even for a moment.
QString preparedFile(const QString &file)
{
    const QString folder = QFileInfo(file).absolutePath();
    if (!QFileInfo::exists(folder) && QDir().mkpath(folder)) {
        QFile::setPermissions(folder, ownerOnly | QFile::ExeOwner);
    }
    if (QFile made(file); !QFileInfo::exists(file)) {
        (void)made.open(QIODevice::WriteOnly | QIODevice::NewOnly, ownerOnly);
    } else if (QFileInfo(file).isFile() && made.permissions() != ownerOnly) {
        made.setPermissions(ownerOnly);
    }
    return file;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Copies a file to ".defekt", ".defekt2" and so on beside it, unless it was copied before. The
/// next save drops the lines that are no entries; whoever wrote them finds them there.
void keepBroken(const QString &file)
{
    constexpr int mostCopies = 99;
    const QByteArray content = contentOf(file);
    for (int number = 1; number <= mostCopies; ++number) {
        const QString copy
            = file + u".defekt"_s + (number > 1 ? QString::number(number) : QString());
        if (!QFileInfo::exists(copy)) {
            (void)QFile::copy(file, copy); // a folder that takes no copy takes no save either
            return;
        }
        if (contentOf(copy) == content) {
            return;
        }
    }
}

std::optional<double> wholeTextAsNumber(const QString &text)
{
    static const QRegularExpression form(
        u"^ *[+-]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][+-]?[0-9]+)? *$"_s);
    if (!form.match(text).hasMatch()) {
        return std::nullopt;
    }
    return lenientNumber(text);
}

} // namespace

QString SettingsError::text() const
{
    if (whileSaving) {
        return u"Die Einstellungen konnten nicht gespeichert werden: %1"_s.arg(file);
    }
    if (key.isEmpty()) {
        return u"Die Datei mit den Einstellungen kann nicht gelesen werden:\n%1"_s.arg(file);
    }
    return u"In der Datei mit den Einstellungen steht ein Wert, der nicht gelesen werden kann.\n"
           "Datei: %1\nEintrag: %2\nWert: %3"_s.arg(file, key, value);
}

QString SettingsStore::defaultFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/Tarvelo FTP/Tarvelo FTP.ini"_s;
}

SettingsStore::SettingsStore(const QString &file)
    : m_file(preparedFile(file))
    , m_settings(std::make_unique<QSettings>(m_file, QSettings::IniFormat))
{
    (void)m_settings->allKeys(); // sections are only parsed when somebody asks
    if (m_settings->status() == QSettings::FormatError) {
        keepBroken(m_file);
    }
}

SettingsResult<void> SettingsStore::readable() const
{
    // A file that does not exist and cannot be made is an empty store.
    if (QFileInfo::exists(m_file) && !QFile(m_file).open(QIODevice::ReadOnly)) {
        return tl::unexpected(SettingsError { m_file, {}, {} });
    }
    return {};
}

QString SettingsStore::path(const QString &section, const QString &key) const
{
    // The file's own spelling wins over the caller's, for sections and keys alike.
    const QString wanted = section + u'/' + key;
    const QStringList known = m_settings->allKeys();
    for (const QString &candidate : known) {
        if (candidate.compare(wanted, Qt::CaseInsensitive) == 0) {
            return candidate;
        }
    }
    return wanted;
}

SettingsError SettingsStore::error(const QString &section, const QString &key) const
{
    return { m_file, section + u'/' + key, text(section, key) };
}

QString SettingsStore::text(const QString &section, const QString &key,
                            const QString &byDefault) const
{
    const QVariant value = m_settings->value(path(section, key));
    if (!value.isValid()) {
        return byDefault;
    }
    // Typed by hand, a comma without quotes makes a list of the line.
    return value.metaType().id() == QMetaType::QStringList ? value.toStringList().join(u", "_s)
                                                           : value.toString();
}

SettingsResult<int> SettingsStore::integer(const QString &section, const QString &key,
                                           int byDefault) const
{
    if (!m_settings->contains(path(section, key))) {
        return byDefault;
    }
    const QString stored = text(section, key);
    const auto number = wholeTextAsNumber(stored);
    if (!number || std::abs(*number) > std::numeric_limits<int>::max()) {
        return tl::unexpected(error(section, key));
    }
    return static_cast<int>(lenientInteger(stored));
}

SettingsResult<bool> SettingsStore::boolean(const QString &section, const QString &key,
                                            bool byDefault) const
{
    if (!m_settings->contains(path(section, key))) {
        return byDefault;
    }
    const QString stored = text(section, key);
    const QString word = trimBlanks(stored);
    if (word.compare("True"_L1, Qt::CaseInsensitive) == 0) {
        return true;
    }
    if (word.compare("False"_L1, Qt::CaseInsensitive) == 0) {
        return false;
    }
    if (const auto number = wholeTextAsNumber(stored)) {
        return *number != 0.0;
    }
    return tl::unexpected(error(section, key));
}

QByteArray SettingsStore::bytes(const QString &section, const QString &key) const
{
    return m_settings->value(path(section, key)).toByteArray();
}

QString SettingsStore::fromBoolean(bool value) { return value ? u"True"_s : u"False"_s; }

void SettingsStore::setText(const QString &section, const QString &key, const QString &value)
{
    if (onSet) {
        onSet(section, key);
    }
    m_settings->setValue(path(section, key), value);
}

void SettingsStore::setInteger(const QString &section, const QString &key, int value)
{
    setText(section, key, QString::number(value));
}

void SettingsStore::setBytes(const QString &section, const QString &key, const QByteArray &value)
{
    m_settings->setValue(path(section, key), value);
}

SettingsResult<void> SettingsStore::save(const QString &section, const SettingsValues &values)
{
    for (const auto &[key, value] : values) {
        setText(section, key, value);
    }
    return sync();
}

SettingsResult<void> SettingsStore::sync()
{
    if (m_settings->status() == QSettings::AccessError) {
        // It never forgets an error. Another one on the same file shares what is still to be
        // written; the file has to be the owner's before.
        preparedFile(m_file);
        m_settings = std::make_unique<QSettings>(m_file, QSettings::IniFormat);
    }
    m_settings->sync();
    if (m_settings->status() == QSettings::AccessError) {
        return tl::unexpected(SettingsError { m_file, {}, {}, true });
    }
    return {};
}
