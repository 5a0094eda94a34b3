#include "dialogs/helpmenu.h"

#include "common/prompts.h"
#include "dialogs/supportmail.h"

#include <QAction>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

struct Item {
    int index;
    const char16_t *caption; ///< nullptr for a separator
};

// Intended: there is no item 8.
constexpr Item items[] = {
    { 0, u"&Hilfe" },
    { 1, u"&Info" },
    { 2, u"&Winsock Info" },
    { 3, nullptr },
    { 4, u"Morlanda Homepage" },
    { 5, nullptr },
    { 6, u"e-&Mail an Morlanda (Support)" },
    { 7, u"Häufig gestellte &Fragen FAQ" },
    { 9, nullptr },
    { 10, u"Auf Update prüfen" },
};

} // namespace

HelpMenu::HelpMenu(QMenu &menu, const Globals &globals, Addresses addresses, Prompts &prompts,
                   Actions actions)
    : QObject(&menu)
    , m_globals(globals)
    , m_addresses(std::move(addresses))
    , m_prompts(prompts)
    , m_actions(std::move(actions))
{
    for (const Item &item : items) {
        QAction *action
            = item.caption ? menu.addAction(QString::fromUtf16(item.caption)) : menu.addSeparator();
        action->setObjectName(u"m_h_"_s + QString::number(item.index));
        connect(action, &QAction::triggered, this,
                [this, index = item.index] { m_h_Click(index); });
    }
}

void HelpMenu::m_h_Click(int index)
{
    switch (index) {
    case 0:
        m_actions.sendF1();
        break;
    case 1:
        m_actions.showInfo();
        break;
    case 2:
        m_actions.showAbout();
        break;
    case 4:
        m_actions.vorschau(m_addresses.homePage);
        break;
    case 6:
        m_prompts.message(supportHint());
        m_actions.vorschau(supportMailUrl(m_addresses, m_globals));
        break;
    case 7:
        m_actions.vorschau(m_addresses.faq);
        break;
    case 10:
        m_actions.vorschau(m_addresses.update);
        break;
    default: // a separator
        break;
    }
}
