#include "dialogs/helppages.h"

#include <QFile>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// The order of the contents.
constexpr const char16_t *pageNames[] = {
    u"index",
    u"ersteschritte",
    u"wennesnichtklappt",
    u"sicherheit",
    u"frm_tarvelo",
    u"lokal",
    u"server",
    u"liste",
    u"protokoll",
    u"uebertragen",
    u"ordnen",
    u"loeschen",
    u"frm_rechte",
    u"frmConnect",
    u"proxy",
    u"frm_zertifikat",
    u"frmTransfer",
    u"frmRename",
    u"frm_einstellungen",
    u"frm_get_folder",
    u"frm_info",
    u"frmAbout",
    u"frm_hilfe",
    u"tastatur",
    u"begriffe",
    u"orte",
    u"kommandozeile",
};

struct LoadedPage {
    HelpPage page;
    QString text; ///< without mark-up, lower case, for the search
};

QString readPage(const QString &name)
{
    QFile file(helpFile(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString titleOf(const QString &html)
{
    static const QRegularExpression title(u"<title>(.*?)</title>"_s);
    return QTextDocumentFragment::fromHtml(title.match(html).captured(1)).toPlainText();
}

const QList<LoadedPage> &loadedPages()
{
    static const QList<LoadedPage> pages = [] {
        QList<LoadedPage> all;
        for (const char16_t *name : pageNames) {
            const QString html = readPage(QString::fromUtf16(name));
            all.append({ { QString::fromUtf16(name), titleOf(html) },
                         QTextDocumentFragment::fromHtml(html).toPlainText().toLower() });
        }
        return all;
    }();
    return pages;
}

bool containsAll(const QString &text, const QStringList &words)
{
    return std::all_of(words.begin(), words.end(),
                       [&text](const QString &word) { return text.contains(word); });
}

// Controls whose page is not their window's own; a name marked with "*" stands for all that
// begin so.
struct ControlPage {
    const char16_t *control;
    const char16_t *page;
};

constexpr ControlPage controlPages[] = {
    { u"mnuHelp", u"index" }, // the help menu opens the help at its beginning
    { u"pane_lokal", u"lokal" },
    { u"pane_server", u"server" },
    { u"cmd_download", u"uebertragen" },
    { u"cmd_upload", u"uebertragen" },
    { u"op_transfer_*", u"uebertragen" },
    { u"lvwStatus", u"liste" },
    { u"Progress", u"liste" },
    { u"cmdAbort", u"liste" },
    { u"txtLog", u"protokoll" },
    { u"cmd_log_*", u"protokoll" },
    { u"tab_proxy", u"proxy" },
    { u"cbo_profil", u"frmConnect" }, // whatever tab is open below them
    { u"cmd_profil_*", u"frmConnect" },
};

} // namespace

const QList<HelpPage> &helpPages()
{
    static const QList<HelpPage> pages = [] {
        QList<HelpPage> all;
        for (const LoadedPage &loaded : loadedPages()) {
            all += loaded.page;
        }
        return all;
    }();
    return pages;
}

QString contentsPage() { return QString::fromUtf16(pageNames[0]); }

QString helpFile(const QString &page)
{
    Q_INIT_RESOURCE(dialogs);
    const QString file = u":/tarveloftp.hlp/"_s + page + u".html"_s;
    return QFile::exists(file) ? file : QString();
}

QString helpPageOfControl(const QString &objectName)
{
    for (const ControlPage &entry : controlPages) {
        const QString control = QString::fromUtf16(entry.control);
        if (control.endsWith(u'*') ? objectName.startsWith(control.chopped(1))
                                   : objectName == control) {
            return QString::fromUtf16(entry.page);
        }
    }
    return helpFile(objectName).isEmpty() ? QString() : objectName;
}

QList<HelpPage> searchHelp(const QString &text)
{
    struct Hit {
        double weight;
        HelpPage page;
    };
    const QStringList words = text.toLower().split(u' ', Qt::SkipEmptyParts);
    QList<Hit> hits;
    for (const LoadedPage &loaded : loadedPages()) {
        if (!containsAll(loaded.text, words)) {
            continue;
        }
        // Hits for their page's length, so that long pages do not always win; the title beats them
        // all.
        double weight = containsAll(loaded.page.title.toLower(), words) ? 1 : 0;
        for (const QString &word : words) {
            weight += double(loaded.text.count(word)) / double(loaded.text.size());
        }
        hits.append({ weight, loaded.page });
    }
    // Stable: equal pages keep the order of the contents; so do all without a search text.
    if (!words.isEmpty()) {
        std::stable_sort(hits.begin(), hits.end(),
                         [](const Hit &a, const Hit &b) { return a.weight > b.weight; });
    }
    QList<HelpPage> pages;
    for (const Hit &hit : hits) {
        pages += hit.page;
    }
    return pages;
}
