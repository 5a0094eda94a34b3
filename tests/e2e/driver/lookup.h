// Finds widgets and actions of the running program by their names.
#pragma once

#include <QAction>
#include <QDialog>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QWidget>

/// Why a request cannot be answered; its text goes to the script.
struct DriverError {
    QString text;
};

namespace lookup {

/// The widget with that object name, visible ones first. @throws DriverError when there is none
QWidget *widget(const QString &name);
/// The same for an action; null when there is none. "bar/name" when several bars have one.
QAction *action(const QString &name);
/// What a user would read off a widget: text, title, chosen entry, progress.
QString text(const QWidget *widget);
/// The modal box or dialog on top; null when there is none.
QWidget *modal();
/// Name, class, text and state of a widget.
QJsonObject describe(const QWidget *widget);
/// All named widgets and actions.
QJsonArray all();

} // namespace lookup
