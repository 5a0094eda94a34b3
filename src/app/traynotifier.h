#pragma once

#include "app/notifier.h"

#include <memory>

class QSystemTrayIcon;

/// A bubble of the desktop's tray. Where there is no tray nothing happens.
class TrayNotifier : public Notifier {
public:
    TrayNotifier();
    ~TrayNotifier() override;
    void notify(const QString &title, const QString &text) override;

private:
    std::unique_ptr<QSystemTrayIcon> m_icon; ///< only once there was something to tell
};
