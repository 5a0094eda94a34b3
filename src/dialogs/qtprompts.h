#pragma once

#include "common/prompts.h"

#include <QMessageBox>
#include <QPointer>

/// Questions and messages as modal boxes over the window that is in front.
class QtPrompts : public Prompts {
public:
    /// @param window  parent of the boxes when no other window of the program is active
    explicit QtPrompts(QWidget *window = nullptr);
    /// The same later, for a window that is built after the first box.
    void setWindow(QWidget *window) { m_window = window; }

    void message(const QString &text, const QString &title = {}, Icon icon = Icon::None) override;
    [[nodiscard]] bool confirm(const QString &text, const QString &title = {},
                               const QString &details = {}) override;
    [[nodiscard]] bool confirmLate(const QString &text, const QString &title,
                                   const LateDetails &details) override;
    [[nodiscard]] bool question(const QString &text, const QString &title = {}) override;
    [[nodiscard]] std::optional<QString> input(const QString &text, const QString &proposal,
                                               const QString &title = {}) override;

private:
    [[nodiscard]] QWidget *parent() const;
    void prepareConfirm(QMessageBox &box, const QString &text, const QString &title,
                        const QString &details) const;
    void prepare(QMessageBox &box, const QString &text, const QString &title,
                 const QString &details = {}) const;

    QPointer<QWidget> m_window;
};
