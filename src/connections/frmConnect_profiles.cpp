// The connection dialog's profiles: choosing, naming, saving and deleting them.
#include "connections/frmConnect.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/prompts.h"
#include "common/settingsstore.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

void frmConnect::fillProfiles()
{
    {
        const QSignalBlocker quiet(m_cbo_profil);
        m_cbo_profil->addItems(m_profiles.names());
        m_cbo_profil->setCurrentIndex(-1);
        m_cbo_profil->clearEditText();
    }
    m_cbo_profil->setCurrentIndex(m_cbo_profil->findText(
        m_globals.session.Lastconnect, Qt::MatchExactly | Qt::MatchCaseSensitive));
}

/// The entry of a profile's name. The exact one counts first, as with the files: two profiles may
/// differ in case only.
int frmConnect::entryOf(const QString &name) const
{
    const int exact = m_cbo_profil->findText(name, Qt::MatchExactly | Qt::MatchCaseSensitive);
    return exact >= 0 ? exact : m_cbo_profil->findText(name, Qt::MatchFixedString);
}

void frmConnect::filterName(const QString &typed)
{
    const QString filtered = FilterProfileNameKey(typed);
    if (filtered != typed) {
        QLineEdit *edit = m_cbo_profil->lineEdit();
        const int caret = edit->cursorPosition();
        edit->setText(filtered);
        edit->setCursorPosition(caret);
    }
}

void frmConnect::onChosen(int index)
{
    if (index >= 0) {
        m_cbo_profil->lineEdit()->home(false);
        ReadProfile();
    }
}

void frmConnect::ReadProfile()
{
    const QString name = m_cbo_profil->currentText();
    ProfileFields shown = fields();
    if (m_profiles.read(name, shown) == 0) {
        return;
    }
    // A short file fills some fields only; the others keep what they show and what they were.
    ProfileFields unchanged = m_unchanged;
    m_profiles.read(name, unchanged);
    setFields(unchanged);
    showFields(shown);
}

bool frmConnect::WriteProfile()
{
    const QString name = m_cbo_profil->currentText();
    if (trimBlanks(name).isEmpty()) {
        m_services.prompts.message(
            u"Geben Sie einen Namen an, unter dem Sie die Verbindung speichern möchten."_s);
        m_cbo_profil->setFocus();
        return false;
    }
    if (const auto written = m_profiles.write(name, fields()); !written) {
        m_services.prompts.message(written.error());
        return false;
    }
    m_unchanged = fields();
    const QSignalBlocker quiet(m_cbo_profil);
    // A name in other case is the same profile, whose own spelling stays.
    if (entryOf(name) < 0) {
        m_cbo_profil->insertItem(static_cast<int>(m_profiles.names().indexOf(name)), name);
    }
    m_cbo_profil->setCurrentIndex(entryOf(name));
    m_cbo_profil->lineEdit()->home(false); // the beginning of a long name is what tells it apart
    return true;
}

void frmConnect::onNew()
{
    {
        const QSignalBlocker quiet(m_cbo_profil);
        m_cbo_profil->setCurrentIndex(-1);
        m_cbo_profil->clearEditText();
    }
    const ProfileFields before = fields();
    ProfileFields fresh;
    // Intended: account and remarks stay.
    fresh.Account = before.Account;
    fresh.Bemerkungen = before.Bemerkungen;
    showFields(fresh);
    m_cbo_profil->setFocus();
}

/// Without a profile there is nothing to remember folders in: they would bring the deleted one
/// back, password included.
void frmConnect::forgetCurrent(const QString &deleted)
{
    QString &current = m_globals.session.Lastconnect;
    if (current.compare(deleted, Qt::CaseInsensitive) == 0) {
        current.clear();
        ignoreError(m_services.store.save(u"Settings"_s, { { u"Lastconnect"_s, {} } }),
                    "the next start then selects no profile, since there is none of that name");
    }
}

void frmConnect::onDelete()
{
    const QString name = m_cbo_profil->currentText();
    if (trimBlanks(name).isEmpty()) {
        m_services.prompts.message(u"Sie müssen eine Verbindung aus der Liste wählen"_s);
        return;
    }
    if (!m_profiles.find(name)
        || !m_services.prompts.question(
            u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s)) {
        return;
    }
    if (!m_profiles.remove(name)) {
        m_services.prompts.message(u"Die Verbindung konnte nicht gelöscht werden."_s);
        return;
    }
    forgetCurrent(name);
    const QSignalBlocker quiet(m_cbo_profil);
    m_cbo_profil->removeItem(entryOf(name));
    m_cbo_profil->setCurrentIndex(-1);
    m_cbo_profil->clearEditText();
}
