#include "actions.h"

#include "lookup.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPalette>
#include <QPixmap>
#include <QScreen>
#include <QTest>
#include <QThread>
#include <QToolBar>
#include <functional>
#include <map>

namespace {

using Action = std::function<QJsonObject(const QJsonObject &)>;

QString string(const QJsonObject &request, const char *key)
{
    return request.value(QLatin1String(key)).toString();
}

/// Runs something from the event loop, after the answer has gone and before the next request is
/// read: unlike a timer, an event comes before the socket's turn.
QJsonObject later(QObject *context, const std::function<void()> &what)
{
    QMetaObject::invokeMethod(context, what, Qt::QueuedConnection);
    return {};
}

/// The open menu, or else the modal dialog on top.
QWidget *top()
{
    QWidget *popup = QApplication::activePopupWidget();
    QWidget *found = popup != nullptr ? popup : lookup::modal();
    if (found == nullptr) {
        throw DriverError { QStringLiteral("neither a menu nor a dialog is open") };
    }
    return found;
}

QWidget *named(const QJsonObject &request)
{
    const QString name = string(request, "object");
    return name == QLatin1String("top") ? top() : lookup::widget(name);
}

QAbstractItemView *view(const QJsonObject &request)
{
    auto *result = qobject_cast<QAbstractItemView *>(named(request));
    if (result == nullptr) {
        throw DriverError { QStringLiteral("no item view: ") + string(request, "object") };
    }
    return result;
}

void requireUsable(const QWidget *widget)
{
    if (!widget->isVisible() || !widget->isEnabled()) {
        throw DriverError { widget->objectName()
                            + (widget->isVisible() ? QStringLiteral(" is disabled")
                                                   : QStringLiteral(" is not visible")) };
    }
}

/// The button of an action in a tool bar; null when it has none.
QWidget *toolButton(QAction *action)
{
    const QList<QObject *> places = action->associatedObjects();
    for (QObject *place : places) {
        if (auto *bar = qobject_cast<QToolBar *>(place); bar != nullptr && bar->isVisible()) {
            return bar->widgetForAction(action);
        }
    }
    return nullptr;
}

QJsonObject click(const QJsonObject &request)
{
    if (QAction *action = lookup::action(string(request, "object"))) {
        if (!action->isEnabled()) {
            throw DriverError { action->objectName() + QStringLiteral(" is disabled") };
        }
        if (QWidget *button = toolButton(action)) {
            return later(button, [button] { QTest::mouseClick(button, Qt::LeftButton); });
        }
        return later(action, [action] { action->trigger(); }); // an entry of a menu
    }
    QWidget *widget = named(request);
    requireUsable(widget);
    return later(widget, [widget] { QTest::mouseClick(widget, Qt::LeftButton); });
}

QModelIndex rowNamed(const QAbstractItemView *view, const QString &name)
{
    const QAbstractItemModel *model = view->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        if (index.data().toString() == name) {
            return index;
        }
    }
    throw DriverError { view->objectName() + QStringLiteral(" has no row ") + name };
}

QPoint placeOf(QAbstractItemView *view, const QModelIndex &index)
{
    view->scrollTo(index);
    const QRect rect = view->visualRect(index);
    return { rect.left() + qMin(rect.width() / 2, 40), rect.center().y() };
}

QJsonObject select(const QJsonObject &request)
{
    QAbstractItemView *target = view(request);
    requireUsable(target);
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    const QJsonArray names = request.value(QLatin1String("rows")).toArray();
    for (const auto &name : names) {
        const QPoint place = placeOf(target, rowNamed(target, name.toString()));
        QTest::mouseClick(target->viewport(), Qt::LeftButton, modifiers, place);
        modifiers = Qt::ControlModifier;
    }
    return {};
}

QJsonObject open(const QJsonObject &request)
{
    QAbstractItemView *target = view(request);
    requireUsable(target);
    const QPoint place = placeOf(target, rowNamed(target, string(request, "row")));
    QTest::mouseClick(target->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    return later(target, [target, place] {
        QTest::mouseDClick(target->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    });
}

/// Where a row, or with no row the free space below the rows, is on the screen.
QJsonObject place(const QJsonObject &request)
{
    QAbstractItemView *target = view(request);
    requireUsable(target);
    QPoint inside(60, target->viewport()->height() - 8);
    if (request.contains(QLatin1String("row"))) {
        inside = placeOf(target, rowNamed(target, string(request, "row")));
    }
    const QPoint point = target->viewport()->mapToGlobal(inside);
    return { { QStringLiteral("x"), point.x() }, { QStringLiteral("y"), point.y() } };
}

QJsonObject describeRow(const QAbstractItemView *view, int row)
{
    const QAbstractItemModel *model = view->model();
    const QModelIndex first = model->index(row, 0);
    QJsonArray cells;
    for (int column = 0; column < model->columnCount(); ++column) {
        cells.append(model->index(row, column).data().toString());
    }
    QJsonObject result { { QStringLiteral("cells"), cells },
                         { QStringLiteral("selected"),
                           view->selectionModel()->isSelected(first) } };
    const QHash<int, QByteArray> roles = model->roleNames();
    for (auto role = roles.cbegin(); role != roles.cend(); ++role) {
        if (role.key() >= Qt::UserRole) {
            result[QString::fromLatin1(role.value())]
                = QJsonValue::fromVariant(first.data(role.key()));
        }
    }
    return result;
}

QJsonObject rows(const QJsonObject &request)
{
    const QAbstractItemView *target = view(request);
    QJsonArray list;
    for (int row = 0; row < target->model()->rowCount(); ++row) {
        list.append(describeRow(target, row));
    }
    return { { QStringLiteral("rows"), list } };
}

QJsonObject headers(const QJsonObject &request)
{
    const QAbstractItemModel *model = view(request)->model();
    QJsonArray list;
    for (int column = 0; column < model->columnCount(); ++column) {
        list.append(model->headerData(column, Qt::Horizontal).toString());
    }
    return { { QStringLiteral("headers"), list } };
}

void type(QWidget *field, const QString &text)
{
    field->setFocus();
    QTest::keySequence(field, QKeySequence::SelectAll);
    QTest::keyClick(field, Qt::Key_Delete);
    // QTest knows no keys but those of ASCII.
    for (const QChar letter : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(letter));
        QCoreApplication::sendEvent(field, &press);
    }
}

/// Types into a field, in place of what it holds.
QJsonObject enter(const QJsonObject &request)
{
    QWidget *widget = named(request);
    requireUsable(widget);
    if (auto *combo = qobject_cast<QComboBox *>(widget); combo != nullptr && combo->isEditable()) {
        widget = combo->lineEdit();
    }
    type(widget, string(request, "text"));
    return {};
}

/// Types a new name into the row that is being edited, and ends it with Enter.
QJsonObject caption(const QJsonObject &request)
{
    auto *editor = view(request)->viewport()->findChild<QLineEdit *>();
    if (editor == nullptr) {
        throw DriverError { QStringLiteral("no row is being edited") };
    }
    type(editor, string(request, "text"));
    // No click: between press and release the editor goes away.
    return later(editor, [editor] {
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(editor, &enter);
    });
}

/// Chooses an entry of a combo box as the user does: by going to it, so that all signals come.
QJsonObject choose(const QJsonObject &request)
{
    auto *combo = qobject_cast<QComboBox *>(named(request));
    const int index = combo == nullptr ? -1 : combo->findText(string(request, "text"));
    if (index < 0) {
        throw DriverError { string(request, "object") + QStringLiteral(" has no entry ")
                            + string(request, "text") };
    }
    requireUsable(combo);
    return later(combo, [combo, index] {
        combo->setCurrentIndex(index);
        Q_EMIT combo->activated(index);
        Q_EMIT combo->textActivated(combo->currentText());
    });
}

QJsonObject key(const QJsonObject &request)
{
    QWidget *widget
        = request.contains(QLatin1String("object")) ? named(request) : QApplication::focusWidget();
    if (widget == nullptr) {
        throw DriverError { QStringLiteral("nothing has the focus") };
    }
    const QKeySequence keys(string(request, "key"));
    if (keys.isEmpty()) {
        throw DriverError { QStringLiteral("no key: ") + string(request, "key") };
    }
    return later(widget, [widget, keys] { QTest::keySequence(widget, keys); });
}

QJsonObject text(const QJsonObject &request)
{
    return { { QStringLiteral("text"), lookup::text(named(request)) } };
}

QJsonObject describe(const QJsonObject &request)
{
    if (const QAction *action = lookup::action(string(request, "object"))) {
        return { { QStringLiteral("text"), action->text() },
                 { QStringLiteral("enabled"), action->isEnabled() },
                 { QStringLiteral("visible"), action->isVisible() } };
    }
    return lookup::describe(named(request));
}

QJsonObject property(const QJsonObject &request)
{
    const QVariant value = named(request)->property(string(request, "property").toLatin1());
    return { { QStringLiteral("value"), QJsonValue::fromVariant(value) } };
}

QString withoutMnemonic(QString text) { return text.remove(QLatin1Char('&')); }

QJsonObject box(const QJsonObject &)
{
    QWidget *modal = lookup::modal();
    if (modal == nullptr) {
        return {};
    }
    QJsonObject result = lookup::describe(modal);
    QJsonArray buttons;
    const QList<QAbstractButton *> all = modal->findChildren<QAbstractButton *>();
    for (const QAbstractButton *button : all) {
        if (button->isVisible() && !button->text().isEmpty()) {
            buttons.append(withoutMnemonic(button->text()));
        }
    }
    result[QStringLiteral("buttons")] = buttons;
    if (const auto *message = qobject_cast<const QMessageBox *>(modal)) {
        result[QStringLiteral("informative")] = message->informativeText();
    }
    return { { QStringLiteral("box"), result } };
}

QJsonObject answer(const QJsonObject &request)
{
    const QWidget *modal = lookup::modal();
    if (modal == nullptr) {
        throw DriverError { QStringLiteral("no box is open") };
    }
    const QString wanted = string(request, "button");
    const QList<QAbstractButton *> all = modal->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : all) {
        if (withoutMnemonic(button->text()) == wanted || button->objectName() == wanted) {
            requireUsable(button);
            return later(button, [button] { QTest::mouseClick(button, Qt::LeftButton); });
        }
    }
    throw DriverError { QStringLiteral("the box has no button ") + wanted };
}

QJsonObject windows(const QJsonObject &)
{
    QJsonArray list;
    const QWidgetList all = QApplication::topLevelWidgets();
    for (const QWidget *window : all) {
        if (window->isVisible()) {
            list.append(lookup::describe(window));
        }
    }
    return { { QStringLiteral("windows"), list } };
}

/// How many event loops are running inside each other: one when no command and no dialog waits.
QJsonObject loops(const QJsonObject &)
{
    return { { QStringLiteral("loops"), QThread::currentThread()->loopLevel() } };
}

QJsonObject tree(const QJsonObject &) { return { { QStringLiteral("widgets"), lookup::all() } }; }

QJsonObject close(const QJsonObject &request)
{
    QWidget *window = named(request)->window();
    return later(window, [window] { window->close(); });
}

QJsonObject resize(const QJsonObject &request)
{
    named(request)->resize(request.value(QLatin1String("width")).toInt(),
                           request.value(QLatin1String("height")).toInt());
    return {};
}

/// Saves a picture of one widget, or of the whole screen when none is named.
QJsonObject grab(const QJsonObject &request)
{
    const QPixmap picture = request.contains(QLatin1String("object"))
        ? named(request)->grab()
        : QApplication::primaryScreen()->grabWindow(0);
    if (!picture.save(string(request, "file"))) {
        throw DriverError { QStringLiteral("cannot write ") + string(request, "file") };
    }
    return {};
}

/// Opens a menu of the menu bar, or the context menu of a field or of a view's row.
QJsonObject menu(const QJsonObject &request)
{
    QWidget *widget = named(request);
    if (auto *own = qobject_cast<QMenu *>(widget)) {
        auto *bar = qobject_cast<QMenuBar *>(own->parentWidget());
        return later(own, [own, bar] { bar->setActiveAction(own->menuAction()); });
    }
    QPoint at = widget->rect().center();
    if (auto *rows = qobject_cast<QAbstractItemView *>(widget)) {
        at = placeOf(rows, rowNamed(rows, string(request, "row")));
    }
    if (auto *area = qobject_cast<QAbstractScrollArea *>(widget)) {
        widget = area->viewport();
    }
    return later(widget, [widget, at] {
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, widget->mapToGlobal(at));
        QCoreApplication::sendEvent(widget, &event);
    });
}

/// The colours of a dark desktop.
QJsonObject dark(const QJsonObject &)
{
    QPalette palette(QColor(0x31, 0x33, 0x38), QColor(0x2b, 0x2d, 0x31));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
    palette.setColor(QPalette::AlternateBase, QColor(0x27, 0x29, 0x2d));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xd0));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xa8, 0xff));
    QApplication::setPalette(palette);
    return {};
}

const std::map<QString, Action> &actions()
{
    static const std::map<QString, Action> table {
        { QStringLiteral("answer"), answer },     { QStringLiteral("box"), box },
        { QStringLiteral("caption"), caption },   { QStringLiteral("choose"), choose },
        { QStringLiteral("click"), click },       { QStringLiteral("close"), close },
        { QStringLiteral("dark"), dark },         { QStringLiteral("place"), place },
        { QStringLiteral("describe"), describe }, { QStringLiteral("enter"), enter },
        { QStringLiteral("grab"), grab },         { QStringLiteral("headers"), headers },
        { QStringLiteral("key"), key },           { QStringLiteral("loops"), loops },
        { QStringLiteral("menu"), menu },         { QStringLiteral("open"), open },
        { QStringLiteral("property"), property }, { QStringLiteral("resize"), resize },
        { QStringLiteral("rows"), rows },         { QStringLiteral("select"), select },
        { QStringLiteral("text"), text },         { QStringLiteral("tree"), tree },
        { QStringLiteral("windows"), windows },
    };
    return table;
}

} // namespace

QJsonObject carryOut(const QJsonObject &request)
{
    const auto action = actions().find(string(request, "do"));
    try {
        if (action == actions().end()) {
            throw DriverError { QStringLiteral("unknown request: ") + string(request, "do") };
        }
        return action->second(request);
    } catch (const DriverError &error) {
        return { { QStringLiteral("error"), error.text } };
    }
}
