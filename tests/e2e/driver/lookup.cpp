#include "lookup.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSpinBox>
#include <QTextEdit>

namespace lookup {

namespace {

/// How near a widget is to the user: dialogs that stand one over the other share button names.
int nearness(const QWidget *widget)
{
    const bool inFront = widget->window() == QApplication::activeModalWidget();
    return widget->isVisible() ? (inFront ? 2 : 1) : 0;
}

} // namespace

QWidget *widget(const QString &name)
{
    QWidget *found = nullptr;
    const QWidgetList all = QApplication::allWidgets();
    for (QWidget *candidate : all) {
        if (candidate->objectName() == name
            && (found == nullptr || nearness(candidate) > nearness(found))) {
            found = candidate;
        }
    }
    if (found == nullptr) {
        throw DriverError { QStringLiteral("no widget named ") + name };
    }
    return found;
}

QAction *action(const QString &name)
{
    const qsizetype bar = name.indexOf(QLatin1Char('/'));
    if (bar > 0) {
        const QList<QAction *> actions = widget(name.left(bar))->actions();
        for (QAction *candidate : actions) {
            if (candidate->objectName() == name.mid(bar + 1)) {
                return candidate;
            }
        }
        return nullptr;
    }
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        if (auto *found = window->findChild<QAction *>(name)) {
            return found;
        }
    }
    return nullptr;
}

QString text(const QWidget *widget)
{
    if (const auto *box = qobject_cast<const QMessageBox *>(widget)) {
        return box->text();
    }
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget)) {
        return button->text();
    }
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        return label->text();
    }
    if (const auto *line = qobject_cast<const QLineEdit *>(widget)) {
        return line->text();
    }
    if (const auto *combo = qobject_cast<const QComboBox *>(widget)) {
        return combo->currentText();
    }
    if (const auto *edit = qobject_cast<const QTextEdit *>(widget)) {
        return edit->toPlainText();
    }
    if (const auto *plain = qobject_cast<const QPlainTextEdit *>(widget)) {
        return plain->toPlainText();
    }
    if (const auto *group = qobject_cast<const QGroupBox *>(widget)) {
        return group->title();
    }
    if (const auto *spin = qobject_cast<const QSpinBox *>(widget)) {
        return spin->text();
    }
    if (const auto *progress = qobject_cast<const QProgressBar *>(widget)) {
        return QString::number(progress->value());
    }
    return widget->windowTitle();
}

QWidget *modal() { return QApplication::activeModalWidget(); }

QJsonObject describe(const QWidget *widget)
{
    QJsonObject result {
        { QStringLiteral("name"), widget->objectName() },
        { QStringLiteral("class"), QString::fromLatin1(widget->metaObject()->className()) },
        { QStringLiteral("text"), text(widget) },
        { QStringLiteral("visible"), widget->isVisible() },
        { QStringLiteral("enabled"), widget->isEnabled() },
    };
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget);
        button != nullptr && button->isCheckable()) {
        result[QStringLiteral("checked")] = button->isChecked();
    }
    if (widget->isWindow()) {
        result[QStringLiteral("title")] = widget->windowTitle();
    }
    return result;
}

QJsonArray all()
{
    QJsonArray result;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        if (!widget->objectName().isEmpty()
            && !widget->objectName().startsWith(QStringLiteral("qt_"))) {
            result.append(describe(widget));
        }
        const QList<QAction *> actions
            = widget->findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly);
        for (const QAction *action : actions) {
            if (!action->objectName().isEmpty()) {
                result.append(QJsonObject { { QStringLiteral("name"), action->objectName() },
                                            { QStringLiteral("class"), QStringLiteral("QAction") },
                                            { QStringLiteral("text"), action->text() },
                                            { QStringLiteral("visible"), action->isVisible() },
                                            { QStringLiteral("enabled"), action->isEnabled() } });
            }
        }
    }
    return result;
}

} // namespace lookup
