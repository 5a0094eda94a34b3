// The line to the script: JSON objects, one a line, over a Unix socket.
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <functional>

class QSocketNotifier;

/// Connects to a socket that the script listens on, and answers every request that comes.
class Channel : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<QJsonObject(const QJsonObject &)>;

    Channel(const QByteArray &socketPath, Handler handler, QObject *parent);
    ~Channel() override;

private:
    void read();
    void answer(const QByteArray &line);

    Handler m_handler;
    int m_socket = -1;
    QByteArray m_buffer;
    QSocketNotifier *m_notifier = nullptr;
};
