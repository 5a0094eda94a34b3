#include "dialogs/frm_info.h"

#include "common/prompts.h"
#include "dialogs/bgbild.h"
#include "dialogs/supportmail.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>
#include <chrono>

using namespace Qt::StringLiterals;

namespace {

constexpr qint16 LastTick = 25;
constexpr std::chrono::milliseconds TickLength { 200 };

bool isEscapeOrSpace(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Escape || event->key() == Qt::Key_Space;
}

/// A plain cross in the given colour.
QIcon closeIcon(const QColor &colour)
{
    QIcon icon;
    for (const int size : { 16, 32 }) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 16.0, size / 16.0);
        painter.setPen(QPen(colour, 1.5, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QLineF(4.5, 4.5, 11.5, 11.5));
        painter.drawLine(QLineF(11.5, 4.5, 4.5, 11.5));
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace

frm_info::frm_info(Globals &globals, Addresses addresses, Prompts &prompts,
                   std::function<int(const QString &)> vorschau, QWidget *parent)
    : QDialog(parent)
    , m_globals(globals)
    , m_addresses(std::move(addresses))
    , m_prompts(prompts)
    , m_vorschau(std::move(vorschau))
{
    setObjectName(u"frm_info"_s);
    setWindowTitle(u"Tarvelo FTP"_s);
    m_globals.ProgramVersion = 220;

    buildLayout();
    m_timer.setParent(this);
    m_timer.setObjectName(u"Timer1"_s);
    m_timer.setInterval(TickLength);
    connect(&m_timer, &QTimer::timeout, this, &frm_info::Timer1_Timer);
    connect(this, &QDialog::finished, this, [this] {
        m_timer.stop();
        emit closed();
    });
}

void frm_info::buildLayout()
{
    auto *picture = new bgbild;
    connect(picture, &bgbild::clicked, this, &QDialog::reject);

    auto *version = new QLabel(u"V 2.20"_s);
    version->setObjectName(u"lbl_version"_s);
    auto *hint = new QLabel(u"Drücken Sie eine Taste oder klicken Sie auf das Bild."_s);
    hint->setObjectName(u"lbl_hinweis"_s);
    auto *texts = new QHBoxLayout;
    texts->setContentsMargins(12, 0, 12, 0);
    texts->addWidget(hint);
    texts->addStretch();
    texts->addWidget(version);

    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(12, 0, 12, 12);
    buttons->setSpacing(6);
    buttons->addWidget(addButton(0, u"Morlanda Online"_s, u"Besuchen Sie unsere Homepage"_s));
    buttons->addWidget(
        addButton(1, u"E-Mail (Support)"_s, u"e-Mail bei Problemen, Anregungen, Fragen"_s));
    buttons->addWidget(addButton(3, u"Auf Update prüfen"_s, {}));
    buttons->addStretch();
    // Intended: 4 and 5 only stop the timer; 5 stands for Esc and Space. Nobody can press them.
    addButton(4, {}, {})->hide();
    addButton(5, {}, {})->hide();
    QPushButton *close = addButton(6, {}, {});
    close->setIcon(closeIcon(palette().color(QPalette::ButtonText)));
    close->setAccessibleName(u"Schließen"_s);
    buttons->addWidget(close);
    close->setFocus();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(picture);
    layout->addLayout(texts);
    layout->addLayout(buttons);
}

QPushButton *frm_info::addButton(int index, const QString &caption, const QString &toolTip)
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(u"cmd_auswahl_"_s + QString::number(index));
    button->setToolTip(toolTip);
    button->setAutoDefault(false);
    button->setMinimumHeight(30);
    button->installEventFilter(this);
    connect(button, &QPushButton::clicked, this, [this, index] { cmd_auswahl_Click(index); });
    return button;
}

void frm_info::cmd_auswahl_Click(int index)
{
    m_timer.stop();
    switch (index) {
    case 0:
        m_vorschau(m_addresses.secondHomePage);
        break;
    case 1:
        m_prompts.message(supportHint());
        m_vorschau(officeMailUrl(m_addresses, m_globals));
        break;
    case 3:
        m_vorschau(m_addresses.update);
        break;
    case 6:
        reject();
        break;
    default:
        break;
    }
}

void frm_info::Timer1_Timer()
{
    if (const QWidget *front = QApplication::activeModalWidget();
        front != nullptr && front != this) {
        return; // a box over the screen would lose its parent
    }
    if (++m_ticks >= LastTick) {
        m_timer.stop();
        reject();
    }
}

bool frm_info::eventFilter(QObject *watched, QEvent *event)
{
    // The form sees the keys before its buttons do: a Space must not press the focused one.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (isEscapeOrSpace(key)) {
            key->type() == QEvent::KeyPress ? keyPressEvent(key) : keyReleaseEvent(key);
            return true;
        }
        // No button is the default one; a key must press the focused one all the same.
        if (key->type() == QEvent::KeyPress
            && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
            static_cast<QPushButton *>(watched)->click();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frm_info::keyPressEvent(QKeyEvent *event)
{
    // Intended: Esc does not close the screen.
    if (!isEscapeOrSpace(event)) {
        QDialog::keyPressEvent(event);
    }
}

void frm_info::keyReleaseEvent(QKeyEvent *event)
{
    // Intended: although the screen invites a key press, releasing one only stops the timer.
    if (isEscapeOrSpace(event)) {
        cmd_auswahl_Click(5);
    } else {
        QDialog::keyReleaseEvent(event);
    }
}

void frm_info::showEvent(QShowEvent *event)
{
    if (!event->spontaneous()) { // not when it comes back from the task bar
        m_ticks = 0;
        m_timer.start();
    }
    QDialog::showEvent(event);
}
