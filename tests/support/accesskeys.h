#pragma once

#include <QAbstractButton>
#include <QKeySequence>
#include <QLabel>
#include <QMap>
#include <QWidget>

/// What shares an access key with another visible part of a dialog, as "text / text": Alt and that
/// letter would only go to and fro between them.
[[nodiscard]] inline QStringList sharedAccessKeys(const QWidget &dialog)
{
    QMap<QKeySequence, QString> owners;
    QStringList shared;
    const auto take = [&](const QString &text, bool visible) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (key.isEmpty() || !visible) {
            return;
        }
        if (owners.contains(key)) {
            shared << owners.value(key) + QStringLiteral(" / ") + text;
        }
        owners.insert(key, text);
    };
    for (const auto *button : dialog.findChildren<QAbstractButton *>()) {
        take(button->text(), button->isVisibleTo(&dialog));
    }
    for (const auto *label : dialog.findChildren<QLabel *>()) {
        take(label->text(), label->buddy() != nullptr && label->isVisibleTo(&dialog));
    }
    return shared;
}
