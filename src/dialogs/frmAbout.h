#pragma once

#include "dialogs/networkinfo.h"

#include <QDialog>

/// The network information box "Winsock Info".
class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(const NetworkInfo &info = readNetworkInfo(), QWidget *parent = nullptr);
};
