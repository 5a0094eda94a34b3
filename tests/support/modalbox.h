#pragma once

#include <QApplication>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

/// Waits for the next modal window of a type and does something with it, for example press a
/// button. Create it before the call that opens the window; the window must have come by the time
/// this object goes away.
template <class Window> class WhenModalOpens {
public:
    explicit WhenModalOpens(std::function<void(Window &)> action)
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this, action] {
            auto *window = qobject_cast<Window *>(QApplication::activeModalWidget());
            if (window != nullptr && window->isActiveWindow()) {
                m_timer.stop();
                m_opened = true;
                action(*window);
            }
        });
        m_timer.start(1);
    }
    ~WhenModalOpens() { EXPECT_TRUE(m_opened) << "the expected window never opened"; }
    WhenModalOpens(const WhenModalOpens &) = delete;
    WhenModalOpens &operator=(const WhenModalOpens &) = delete;

    [[nodiscard]] bool opened() const { return m_opened; }

private:
    QTimer m_timer;
    bool m_opened = false;
};
