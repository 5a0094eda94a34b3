#include "remote/icons.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

/// The icons lie in a static library, whose resources nobody would link without being asked.
static void initialiseIcons() { Q_INIT_RESOURCE(icons); }

namespace {

/// Draws another icon at half strength, at whatever size is asked for.
class GhostEngine final : public QIconEngine {
public:
    explicit GhostEngine(QIcon source)
        : m_source(std::move(source))
    {
    }
    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        painter->save();
        painter->setOpacity(painter->opacity() * 0.45);
        m_source.paint(painter, rect, Qt::AlignCenter, mode, state);
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return result;
    }
    [[nodiscard]] QIconEngine *clone() const override { return new GhostEngine(m_source); }

private:
    QIcon m_source;
};

QHash<QString, QIcon> &cache(bool ghosted)
{
    static QHash<QString, QIcon> plain;
    static QHash<QString, QIcon> faded;
    return ghosted ? faded : plain;
}

} // namespace

QIcon Icons::icon(const QString &name)
{
    static const bool initialised = (initialiseIcons(), true);
    Q_UNUSED(initialised);
    QIcon &entry = cache(false)[name];
    if (entry.isNull()) {
        if (const QString file = QStringLiteral(":/icons/") + name + QStringLiteral(".svg");
            QFile::exists(file)) {
            entry = QIcon(file);
        }
    }
    return entry;
}

QIcon Icons::ghosted(const QString &name)
{
    QIcon &entry = cache(true)[name];
    if (entry.isNull()) {
        if (const QIcon source = icon(name); !source.isNull()) {
            entry = QIcon(new GhostEngine(source));
        }
    }
    return entry;
}
