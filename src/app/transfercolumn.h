#pragma once

#include <QWidget>

class QButtonGroup;
class QToolButton;
class QVBoxLayout;

/// The column between the panes: connection lights, transfer arrows, transfer mode.
class TransferColumn : public QWidget {
    Q_OBJECT

public:
    explicit TransferColumn(QWidget *parent = nullptr);

    void setGreen(bool green); ///< which light is shown
    /// Selects the option of a transfer type without reporting it.
    void setTransferType(int type);

Q_SIGNALS:
    void uploadClicked();
    void downloadClicked();
    void greenClicked();
    void redClicked();
    void transferTypeChosen(int type); ///< FtpTransferType

private:
    QToolButton *addLight(QVBoxLayout *column, const QString &name, const QString &toolTip);
    QToolButton *addArrow(QVBoxLayout *column, const QString &name, const QString &toolTip);
    QWidget *modeGroup();

    QToolButton *img_ampel_gruen = nullptr;
    QToolButton *img_ampel_rot = nullptr;
    QButtonGroup *op_transfer = nullptr;
};
