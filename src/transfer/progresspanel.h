#pragma once

#include <QFrame>

class ProgressModel;
class QLabel;
class QProgressBar;
class QPushButton;

/// frame_transfer: file name, bar, amount and the abort button.
class ProgressPanel : public QFrame {
    Q_OBJECT

public:
    explicit ProgressPanel(ProgressModel &model, QWidget *parent = nullptr);

    void setAbortEnabled(bool enabled);

Q_SIGNALS:
    void abortClicked(); ///< cmdAbort was clicked; nothing has been asked yet

private:
    void build();
    void showModel();

    ProgressModel &m_model;
    QProgressBar *Progress = nullptr;
    QLabel *lblFileName = nullptr;
    QLabel *lblRate = nullptr;
    QLabel *lblFileSize = nullptr;
    QPushButton *cmdAbort = nullptr;
};
