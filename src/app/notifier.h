#pragma once

#include <QString>

/// Tells the user something outside the window; tests put a stand-in in its place.
class Notifier {
public:
    virtual ~Notifier() = default;
    virtual void notify(const QString &title, const QString &text) = 0;
};
