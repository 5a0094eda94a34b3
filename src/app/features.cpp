#include "app/features.h"

#include "fileops/frm_rechte.h"

Features::Features(const Workplace &workplace, QWidget *window)
    : work(workplace)
    , disk(work.ftp, work.shell)
    , dialogs(work.prompts, window)
    , transfers({ work, progress, dialogs, disk })
    , space(work.prompts, work.shell)
    , remove(work)
    , newFolder(work)
    , rename(work)
    , putBack(work, progress)
    , view(work, progress, putBack)
    , rights(work, [this, window] { frm_rechte(work.globals.permissions, window).exec(); })
{
}
