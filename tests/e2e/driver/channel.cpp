#include "channel.h"

#include <QJsonDocument>
#include <QSocketNotifier>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

Channel::Channel(const QByteArray &socketPath, Handler handler, QObject *parent)
    : QObject(parent)
    , m_handler(std::move(handler))
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath.constData(), sizeof(address.sun_path) - 1);
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0) {
        qFatal("driver: cannot connect to %s", socketPath.constData());
    }
    m_notifier = new QSocketNotifier(m_socket, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &Channel::read);
}

Channel::~Channel() { close(m_socket); }

void Channel::read()
{
    char block[65536];
    const ssize_t got = ::read(m_socket, block, sizeof(block));
    if (got <= 0) {
        m_notifier->setEnabled(false); // the script has ended; the program goes on
        return;
    }
    m_buffer.append(block, static_cast<int>(got));
    // A request may open a modal dialog, whose event loop brings us here again.
    for (qsizetype end = 0; (end = m_buffer.indexOf('\n')) >= 0;) {
        const QByteArray line = m_buffer.left(end);
        m_buffer.remove(0, end + 1);
        answer(line);
    }
}

void Channel::answer(const QByteArray &line)
{
    const QJsonObject reply = m_handler(QJsonDocument::fromJson(line).object());
    const QByteArray text = QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n';
    for (qsizetype sent = 0; sent < text.size();) {
        const ssize_t put = ::send(m_socket, text.constData() + sent,
                                   static_cast<size_t>(text.size() - sent), MSG_NOSIGNAL);
        if (put <= 0) {
            return;
        }
        sent += put;
    }
}
