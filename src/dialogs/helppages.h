#pragma once

#include <QList>
#include <QString>

/// One page of the help.
struct HelpPage {
    QString name; ///< file name without ".html"; a form's page bears the form's name
    QString title;
};

/// All pages in the order of the contents.
[[nodiscard]] const QList<HelpPage> &helpPages();

/// Name of the first page.
[[nodiscard]] QString contentsPage();

/// Path of a page's HTML inside the program; empty for a name without a page.
[[nodiscard]] QString helpFile(const QString &page);

/// Page of a form, pane or control by its object name; empty when it has none of its own.
[[nodiscard]] QString helpPageOfControl(const QString &objectName);

/// Pages that contain every word of the search text, those with a hit in the title first; all pages
/// for a blank text. Upper and lower case do not matter.
[[nodiscard]] QList<HelpPage> searchHelp(const QString &text);
