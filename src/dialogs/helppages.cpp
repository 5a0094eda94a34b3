#include "dialogs/helppages.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QTextDocumentFragment>

using namespace Qt::StringLiterals;

namespace {

// The order of the contents.
constexpr const char16_t *pageNames[] = {
    u"index",
    u"frm_info",
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

// Controls of the main window whose page is not the window's own.
const QHash<QString, QString> &pagesOfControls()
{
    static const QHash<QString, QString> pages {};
    return pages;
}

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
    const QString alias = pagesOfControls().value(objectName);
    if (!alias.isEmpty()) {
        return alias;
    }
    return helpFile(objectName).isEmpty() ? QString() : objectName;
}

QList<HelpPage> searchHelp(const QString &text)
{
    const QStringList words = text.toLower().split(u' ', Qt::SkipEmptyParts);
    QList<HelpPage> inTitle, inText;
    for (const LoadedPage &loaded : loadedPages()) {
        if (containsAll(loaded.page.title.toLower(), words)) {
            inTitle += loaded.page;
        } else if (containsAll(loaded.text, words)) {
            inText += loaded.page;
        }
    }
    return inTitle + inText;
}
