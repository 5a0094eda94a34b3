#pragma once

#include <QFrame>
#include <QTimer>

class ProgressModel;
class QLabel;
class QProgressBar;
class QPushButton;

/// frame_transfer: file name, bar, amount and the abort button.
class ProgressPanel : public QFrame {
    Q_OBJECT

public:
    explicit ProgressPanel(ProgressModel &model, QWidget *parent = nullptr);

    /// What the commands themselves say about cmdAbort.
    void setAbortEnabled(bool enabled);
    /// A command begins or ends. Whatever it does, it can be aborted once it keeps the user
    /// waiting.
    void followCommand(bool runs);
    /// How long a command may last before that. @param milliseconds  for the next command
    void setPatience(int milliseconds) { m_patience.setInterval(milliseconds); }

Q_SIGNALS:
    void abortClicked(); ///< cmdAbort was clicked; nothing has been asked yet

private:
    void build();
    void showModel();
    void showAbort();

    ProgressModel &m_model;
    QProgressBar *Progress = nullptr;
    QLabel *lblFileName = nullptr;
    QLabel *lblRate = nullptr;
    QLabel *lblFileSize = nullptr;
    QPushButton *cmdAbort = nullptr;
    QTimer m_patience;
    bool m_abortWanted = false;
    bool m_commandRuns = false;
    bool m_commandIsSlow = false;
};
