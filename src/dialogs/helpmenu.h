#pragma once

#include "common/addresses.h"
#include "common/globals.h"

#include <QObject>
#include <functional>

class Prompts;
class QMenu;

/// The help menu's items m_h_0 .. m_h_10. Lives as a child of the menu that it fills.
class HelpMenu : public QObject {
    Q_OBJECT
public:
    /// What the items need of the main window.
    struct Actions {
        std::function<void()> sendF1; ///< sendHelpKey(), see helpkeyfilter.h
        std::function<void()> showInfo; ///< frm_info, modally
        std::function<void()> showAbout; ///< frmAbout, modally
        std::function<int(const QString &)> vorschau;
    };

    /// Appends the items to menu. globals and prompts must outlive it.
    HelpMenu(QMenu &menu, const Globals &globals, Addresses addresses, Prompts &prompts,
             Actions actions);

private:
    void m_h_Click(int index);

    const Globals &m_globals;
    const Addresses m_addresses;
    Prompts &m_prompts;
    const Actions m_actions;
};
