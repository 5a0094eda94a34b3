#pragma once

#include "common/addresses.h"
#include "common/globals.h"

#include <QDialog>
#include <QTimer>
#include <functional>

class Prompts;
class QPushButton;

/// The info screen: splash at start (show) and "&Info" of the help menu (exec). Loading it sets
/// Globals::ProgramVersion. It closes by its picture, its close button, the window frame and by
/// itself after 25 ticks of Timer1, and emits closed() once per showing in every case.
class frm_info : public QDialog {
    Q_OBJECT
public:
    /// @param vorschau  opens a web or mail address; its result code is not needed here
    frm_info(Globals &globals, Addresses addresses, Prompts &prompts,
             std::function<int(const QString &)> vorschau, QWidget *parent = nullptr);

signals:
    void closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildLayout();
    QPushButton *addButton(int index, const QString &caption, const QString &toolTip);
    void cmd_auswahl_Click(int index);
    void Timer1_Timer();

    Globals &m_globals;
    const Addresses m_addresses;
    Prompts &m_prompts;
    const std::function<int(const QString &)> m_vorschau;
    QTimer m_timer;
    qint16 m_ticks = 0;
};
