#include "transfer/conflictwindows.h"

#include "transfer/frmRename.h"
#include "transfer/frmTransfer.h"

ConflictReply WindowConflictDialogs::askTransfer(const ConflictQuestion &question)
{
    frmTransfer dialog(question, m_window);
    dialog.exec();
    return dialog.reply();
}

std::optional<QString> WindowConflictDialogs::askNewName(const QString &existing)
{
    frmRename dialog(existing, m_prompts, m_window);
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.newName();
}
