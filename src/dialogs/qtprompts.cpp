#include "dialogs/qtprompts.h"

#include <QApplication>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

QString titleOr(const QString &title) { return title.isEmpty() ? u"Tarvelo FTP"_s : title; }

/// Boxes break lines at LF alone.
QString boxText(QString text) { return text.replace("\r\n"_L1, "\n"_L1); }

/// The button and its text, which Qt would take from its own translations; Alt and its first letter
/// press it.
void addButton(QMessageBox &box, QMessageBox::StandardButton button, const QString &text)
{
    QPushButton *added = box.addButton(button);
    added->setText(text);
    added->setShortcut(QKeySequence(Qt::ALT | static_cast<Qt::Key>(text.at(0).unicode())));
}

/// A box without an icon keeps a gap in its place, so that its margins are not equal.
void closeIconGap(const QMessageBox &box)
{
    auto *grid = qobject_cast<QGridLayout *>(box.layout());
    QLayoutItem *gap = grid != nullptr ? grid->itemAtPosition(0, 0) : nullptr;
    if (gap != nullptr && gap->spacerItem() != nullptr) {
        gap->spacerItem()->changeSize(0, 1, QSizePolicy::Fixed, QSizePolicy::Fixed);
        grid->setColumnStretch(1, 1); // all room is the text's
        QMargins margins = grid->contentsMargins();
        margins.setLeft(margins.left() - grid->horizontalSpacing());
        grid->setContentsMargins(margins);
    }
}

/// Texts hold names from servers, which must not be taken for markup.
void showPlainTexts(QWidget &box)
{
    for (auto *label : box.findChildren<QLabel *>()) {
        label->setTextFormat(Qt::PlainText);
    }
}

void setDetails(QMessageBox &box, const QString &details)
{
    box.setInformativeText(boxText(details)); // lays out the box anew
    closeIconGap(box);
    showPlainTexts(box);
}

} // namespace

QtPrompts::QtPrompts(QWidget *window)
    : m_window(window)
{
}

QWidget *QtPrompts::parent() const
{
    QWidget *active = QApplication::activeModalWidget();
    active = active != nullptr ? active : QApplication::activeWindow();
    return active != nullptr ? active : m_window.data();
}

void QtPrompts::prepare(QMessageBox &box, const QString &text, const QString &title,
                        const QString &details) const
{
    box.setWindowTitle(titleOr(title));
    box.setText(boxText(text));
    setDetails(box, details);
}

void QtPrompts::message(const QString &text, const QString &title, Icon icon)
{
    QMessageBox box(parent());
    prepare(box, text, title);
    if (icon == Icon::Exclamation) {
        box.setIcon(QMessageBox::Warning);
    }
    addButton(box, QMessageBox::Ok, u"OK"_s);
    box.exec();
}

void QtPrompts::prepareConfirm(QMessageBox &box, const QString &text, const QString &title,
                               const QString &details) const
{
    prepare(box, text, title, details);
    addButton(box, QMessageBox::Ok, u"OK"_s);
    addButton(box, QMessageBox::Cancel, u"Abbrechen"_s);
    box.setDefaultButton(QMessageBox::Ok);
    box.setEscapeButton(QMessageBox::Cancel);
}

bool QtPrompts::confirm(const QString &text, const QString &title, const QString &details)
{
    QMessageBox box(parent());
    prepareConfirm(box, text, title, details);
    return box.exec() == QMessageBox::Ok;
}

bool QtPrompts::confirmLate(const QString &text, const QString &title, const LateDetails &details)
{
    QMessageBox box(parent());
    prepareConfirm(box, text, title, details.placeholder);
    QObject::connect(&box, &QDialog::finished, &box, [stop = details.stop] { *stop = true; });
    // The search runs inside the box's loop, which ends behind it when the box was answered.
    QTimer::singleShot(0, &box, [&box, &details] { setDetails(box, details.find()); });
    return box.exec() == QMessageBox::Ok;
}

bool QtPrompts::question(const QString &text, const QString &title)
{
    QMessageBox box(parent());
    prepare(box, text, title);
    addButton(box, QMessageBox::Yes, u"Ja"_s);
    addButton(box, QMessageBox::No, u"Nein"_s);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

std::optional<QString> QtPrompts::input(const QString &text, const QString &proposal,
                                        const QString &title)
{
    QInputDialog box(parent());
    box.setWindowTitle(titleOr(title));
    box.setInputMode(QInputDialog::TextInput);
    box.setLabelText(boxText(text));
    box.setTextValue(proposal);
    box.setOkButtonText(u"OK"_s);
    box.setCancelButtonText(u"Abbrechen"_s);
    box.ensurePolished();
    showPlainTexts(box);
    if (box.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return box.textValue();
}
