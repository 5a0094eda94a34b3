#pragma once

#include <QWidget>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
struct ConnectionProfile;
struct ProfileFields;

/// Tab "Verbindung": server, login and remarks.
class VerbindungTab : public QWidget {
    Q_OBJECT

public:
    explicit VerbindungTab(QWidget *parent = nullptr);

    void show(const ProfileFields &fields);
    void collect(ProfileFields &fields) const;
    void lock(); ///< a connection stands: server and login cannot change

private:
    QLineEdit *m_txtRemoteHost, *m_txtUserName, *m_txtPassword;
    QPlainTextEdit *m_txt_bemerkungen;
};

/// Tab "Erweiterte Einstellungen": how to connect, and the start folders.
class ErweitertTab : public QWidget {
    Q_OBJECT

public:
    explicit ErweitertTab(QWidget *parent = nullptr);

    void show(const ProfileFields &fields);
    void collect(ProfileFields &fields) const;
    void lock();
    [[nodiscard]] QLineEdit *txtLocalDir() const { return m_txtLocalDir; }
    [[nodiscard]] QLineEdit *txtTimeout() const { return m_txtTimeout; }

Q_SIGNALS:
    void browsePressed();
    void resetPressed();

private:
    QLineEdit *m_txtRemotePort, *m_txtTimeout, *m_txtLocalDir, *m_txtRemoteDir, *m_txtAccount;
    QComboBox *m_lstTransferType, *m_cbo_verschluesselung;
    QCheckBox *m_chkPassive;
    QPushButton *m_Command1, *m_cmd_reset;
};

/// Tab "Proxy / Firewall"; belongs to the current connection, not to the profile.
class ProxyTab : public QWidget {
    Q_OBJECT

public:
    explicit ProxyTab(QWidget *parent = nullptr);

    void show(const ConnectionProfile &connection);
    /// Takes the five proxy values into a connection.
    void collect(ConnectionProfile &connection) const;

private:
    QButtonGroup *m_op_proxy;
    QLineEdit *m_txtProxyHost, *m_txtProxyUsername, *m_txtProxyPasswort, *m_txtProxyPort;
};
