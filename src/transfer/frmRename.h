#pragma once

#include <QDialog>
#include <QLineEdit>

class Prompts;

/// "Umbenennen": asks for the new name of the existing file.
class frmRename : public QDialog {
    Q_OBJECT

public:
    frmRename(const QString &existing, Prompts &prompts, QWidget *parent = nullptr);

    /// The name, without blanks at its ends; valid when the dialog was accepted.
    [[nodiscard]] QString newName() const { return txtRename->text(); }

private:
    void build();
    void cmdOK_Click();

    Prompts &m_prompts;
    QLineEdit *txtRename = nullptr;
};
