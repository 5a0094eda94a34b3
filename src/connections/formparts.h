#pragma once

#include <QString>

class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QWidget;

/// Pieces that the tabs of the connection dialog are made of.
namespace FormParts {

/// The wheel over a box that only stands in its way must not change the entry.
void ignoreWheel(QComboBox *box);

/// A line edit with its object name; entering it selects its whole text when asked for.
[[nodiscard]] QLineEdit *lineEdit(const QString &name, bool selectOnEntry = false);
/// A line edit that shows dots.
[[nodiscard]] QLineEdit *passwordEdit(const QString &name, bool selectOnEntry = false);
/// A line edit just wide enough for a number.
[[nodiscard]] QLineEdit *numberEdit(const QString &name);
/// The choice of encryption; its first entry defers to the program settings.
[[nodiscard]] QComboBox *encryptionBox();

/// Label and field side by side in a row of a grid; the label's access key leads to the field.
QLabel *addRow(QGridLayout &grid, const QString &label, QWidget *field);
/// Empty grid with the dialog's distances, fields in a column that takes what room there is.
[[nodiscard]] QGridLayout *grid(QWidget *parent);

} // namespace FormParts
