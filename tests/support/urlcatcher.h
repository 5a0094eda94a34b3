#pragma once

#include <QDesktopServices>
#include <QList>
#include <QObject>
#include <QUrl>

/// Stands in for the desktop's opener.
class UrlCatcher : public QObject {
    Q_OBJECT

public:
    explicit UrlCatcher(const QString &scheme = QStringLiteral("https"))
        : m_scheme(scheme)
    {
        QDesktopServices::setUrlHandler(m_scheme, this, "open");
    }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(m_scheme); }
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }

private:
    QString m_scheme;
};
