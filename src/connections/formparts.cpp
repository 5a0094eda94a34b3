#include "connections/formparts.h"

#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// Selects the whole text on every entry, also by a click, where the edit itself would not.
class SelectOnEntry : public QObject {
public:
    explicit SelectOnEntry(QLineEdit *edit)
        : QObject(edit)
        , m_edit(edit)
    {
        edit->installEventFilter(this);
    }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn) {
            // After the click that brought the focus has placed its caret.
            QTimer::singleShot(0, m_edit, &QLineEdit::selectAll);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QLineEdit *m_edit;
};

class WheelStopper : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Wheel) {
            event->ignore();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

namespace FormParts {

void ignoreWheel(QComboBox *box) { box->installEventFilter(new WheelStopper(box)); }

QLineEdit *lineEdit(const QString &name, bool selectOnEntry)
{
    auto *edit = new QLineEdit;
    edit->setObjectName(name);
    if (selectOnEntry) {
        new SelectOnEntry(edit);
    }
    return edit;
}

QLineEdit *passwordEdit(const QString &name, bool selectOnEntry)
{
    QLineEdit *edit = lineEdit(name, selectOnEntry);
    edit->setEchoMode(QLineEdit::Password);
    return edit;
}

QLineEdit *numberEdit(const QString &name)
{
    QLineEdit *edit = lineEdit(name);
    edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(u"0000000000"_s) + 12);
    return edit;
}

QComboBox *encryptionBox()
{
    auto *box = new QComboBox;
    box->setObjectName(u"cbo_verschluesselung"_s);
    box->addItems(
        { u"Wie in den Programmeinstellungen"_s, u"Automatisch"_s, u"Immer"_s, u"Nie"_s });
    box->setToolTip(u"Automatisch: verschlüsselt, wenn der Server es kann. Immer: nie ohne. "
                    "Nie: alles, auch das Passwort, geht lesbar über das Netz."_s);
    return box;
}

QLabel *addRow(QGridLayout &grid, const QString &label, QWidget *field)
{
    auto *text = new QLabel(label);
    text->setBuddy(field);
    const int row = grid.rowCount();
    grid.addWidget(text, row, 0);
    grid.addWidget(field, row, 1);
    return text;
}

QGridLayout *grid(QWidget *parent)
{
    auto *made = new QGridLayout(parent);
    made->setContentsMargins(12, 12, 12, 12);
    made->setHorizontalSpacing(12);
    made->setVerticalSpacing(6);
    made->setColumnStretch(1, 1);
    return made;
}

} // namespace FormParts
