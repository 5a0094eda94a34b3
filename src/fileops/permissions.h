#pragma once

#include "fileops/workplace.h"

#include <functional>
#include <optional>

/// The nine permission bits as three digits 0..7.
struct PermissionDigits {
    int owner = 0, group = 0, others = 0;
};

/// Digits of a mode that is written as a decimal number (755); negative modes count as 0.
[[nodiscard]] PermissionDigits digitsOf(int mode);
/// The decimal number of three digits, without leading zeros.
[[nodiscard]] int modeOf(const PermissionDigits &digits);
/// Intended: a decimal clamp to 0..777, not an octal one.
[[nodiscard]] int clampMode(qint64 mode);

/// Sends SITE chmod for the selected remote rows.
class PermissionCommand {
public:
    /// @param dialog  shows frm_rechte modally; its answer is in Globals::permissions
    PermissionCommand(const Workplace &work, std::function<void()> dialog)
        : m_work(work)
        , m_dialog(std::move(dialog))
    {
    }

    void mnu_rechte_Click();

private:
    [[nodiscard]] QStringList setModes(const QString &mode);
    [[nodiscard]] std::optional<QString> setMode(const MarkedItem &item, const QString &mode);
    [[nodiscard]] std::optional<QString> setModesInside(const MarkedItem &item);

    Workplace m_work;
    std::function<void()> m_dialog;
};
