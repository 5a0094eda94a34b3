#include "app/traynotifier.h"

#include "remote/icons.h"

#include <QSystemTrayIcon>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
constexpr int ShownFor = 10000; ///< milliseconds
}

TrayNotifier::TrayNotifier() = default;

TrayNotifier::~TrayNotifier() = default;

void TrayNotifier::notify(const QString &title, const QString &text)
{
    if (!QSystemTrayIcon::isSystemTrayAvailable() || !QSystemTrayIcon::supportsMessages()) {
        return;
    }
    // The icon stands only as long as the message: the program does not live in the tray.
    m_icon = std::make_unique<QSystemTrayIcon>(Icons::icon(u"tarvelo-ftp"_s));
    m_icon->setToolTip(title);
    m_icon->show();
    m_icon->showMessage(title, text, QSystemTrayIcon::Information, ShownFor);
    QTimer::singleShot(ShownFor, m_icon.get(), &QSystemTrayIcon::hide);
}
