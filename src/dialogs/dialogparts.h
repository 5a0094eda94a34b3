#pragma once

#include <QLabel>
#include <QPushButton>

/// Pieces that dialogs are made of. Header only, so that every room may use them.
namespace DialogParts {

/// A button with its object name. It never takes Enter: that is for the dialog's default button.
[[nodiscard]] inline QPushButton *button(const QString &name, const QString &caption,
                                         const QString &toolTip = {})
{
    auto *made = new QPushButton(caption);
    made->setObjectName(name);
    made->setToolTip(toolTip);
    made->setAutoDefault(false);
    return made;
}

/// A field's label, whose access key leads to the field.
[[nodiscard]] inline QLabel *labelFor(QWidget *field, const QString &text)
{
    auto *label = new QLabel(text);
    label->setBuddy(field);
    return label;
}

} // namespace DialogParts
