#include "dialogs/frm_hilfe.h"

#include "dialogs/helppages.h"

#include <QBoxLayout>
#include <QColor>
#include <QEvent>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTextBrowser>

using namespace Qt::StringLiterals;

namespace {

constexpr int PageRole = Qt::UserRole;

/// Colour between two others; share 0 is the first, 1 the second.
QColor mixed(const QColor &first, const QColor &second, double share)
{
    const auto channel = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return { channel(first.red(), second.red()), channel(first.green(), second.green()),
             channel(first.blue(), second.blue()) };
}

/// How the pages look, in the colours of the palette.
QString pageStyle(const QPalette &palette)
{
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    return u"h1 { font-size: x-large; font-weight: 600; margin-top: 0px; margin-bottom: 12px; }"
           "h2 { font-size: large; font-weight: 600; margin-top: 18px; margin-bottom: 6px; }"
           "p, ul, ol, pre { margin-top: 6px; margin-bottom: 6px; }"
           "p, li, td { line-height: 125%; }"
           "p.bild { line-height: 100%; }"
           "li { margin-bottom: 3px; }"
           "a { color: %1; text-decoration: none; }"
           "table { border-collapse: collapse; border-color: %2; margin-top: 6px; margin-bottom: "
           "6px; }"
           "td, th { border: 1px solid %2; }"
           "th { background-color: %3; }"_s.arg(palette.color(QPalette::Link).name(),
                                                mixed(base, text, 0.25).name(),
                                                mixed(base, text, 0.08).name());
}

/// Shows pictures that are wider than a page at the page's width, smoothly.
class PageBrowser : public QTextBrowser {
public:
    using QTextBrowser::QTextBrowser;

protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        constexpr int PageWidth = 552;
        const QVariant resource = QTextBrowser::loadResource(type, name);
        if (type != QTextDocument::ImageResource) {
            return resource;
        }
        QImage image = QImage::fromData(resource.toByteArray());
        if (image.width() > PageWidth) {
            image = image.scaledToWidth(qRound(PageWidth * devicePixelRatioF()),
                                        Qt::SmoothTransformation);
            image.setDevicePixelRatio(devicePixelRatioF());
        }
        return image;
    }
};

} // namespace

frm_hilfe::frm_hilfe(QWidget *parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(u"frm_hilfe"_s);
    setAttribute(Qt::WA_QuitOnClose, false); // the program ends with its main window
    setWindowTitle(u"Tarvelo FTP - Hilfe"_s);
    resize(900, 624);
    buildLayout();
    fillList({});

    connect(m_back, &QPushButton::clicked, m_page, &QTextBrowser::backward);
    connect(m_page, &QTextBrowser::backwardAvailable, m_back, &QWidget::setEnabled);
    connect(m_start, &QPushButton::clicked, this, [this] { openPage(contentsPage()); });
    connect(m_search, &QLineEdit::textChanged, this, &frm_hilfe::fillList);
    connect(m_list, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem *item) {
        if (item) {
            openPage(item->data(PageRole).toString());
        }
    });
    // sourceChanged comes too early: source() still names the page before.
    connect(m_page, &QTextBrowser::historyChanged, this, &frm_hilfe::followCurrentPage);
    connect(new QShortcut(QKeySequence::Back, this), &QShortcut::activated, m_page,
            &QTextBrowser::backward);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, m_search,
            qOverload<>(&QWidget::setFocus));
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            &QWidget::close);
    applyPalette();
    openPage(contentsPage());
}

void frm_hilfe::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange) {
        applyPalette();
        m_page->reload();
    }
    QWidget::changeEvent(event);
}

void frm_hilfe::applyPalette() { m_page->document()->setDefaultStyleSheet(pageStyle(palette())); }

void frm_hilfe::buildLayout()
{
    m_back = new QPushButton(u"Zurück"_s);
    m_back->setObjectName(u"cmd_zurueck"_s);
    m_back->setEnabled(false);
    m_start = new QPushButton(u"Inhalt"_s);
    m_start->setObjectName(u"cmd_inhalt"_s);
    m_search = new QLineEdit;
    m_search->setObjectName(u"tx_suche"_s);
    m_search->setPlaceholderText(u"In der Hilfe suchen"_s);
    m_search->setAccessibleName(u"In der Hilfe suchen"_s);
    m_search->setClearButtonEnabled(true);
    m_search->setMaximumWidth(300);
    auto *top = new QHBoxLayout;
    top->setSpacing(6);
    top->addWidget(m_back);
    top->addWidget(m_start);
    top->addStretch();
    top->addWidget(m_search, 1);

    m_list = new QListWidget;
    m_list->setObjectName(u"lst_inhalt"_s);
    m_list->setAccessibleName(u"Inhalt"_s);
    m_list->setSpacing(3);
    m_page = new PageBrowser;
    m_page->setObjectName(u"tx_seite"_s);
    m_page->setAccessibleName(u"Seite"_s);
    m_page->document()->setDocumentMargin(18);
    auto *splitter = new QSplitter;
    splitter->addWidget(m_list);
    splitter->addWidget(m_page);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({ 252, 636 });
    splitter->setChildrenCollapsible(false);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(12);
    layout->addLayout(top);
    layout->addWidget(splitter, 1);
}

void frm_hilfe::openPage(const QString &page)
{
    const QString file = helpFile(page);
    const QUrl source(u"qrc"_s + (file.isEmpty() ? helpFile(contentsPage()) : file));
    if (m_page->source() != source) {
        m_page->setSource(source);
    }
}

void frm_hilfe::openTopic(const QString &page)
{
    m_search->clear();
    openPage(page);
}

QString frm_hilfe::currentPage() const
{
    return QFileInfo(m_page->source().path()).completeBaseName();
}

void frm_hilfe::fillList(const QString &search)
{
    const QSignalBlocker quiet(m_list); // the page stays while the list changes
    m_list->clear();
    for (const HelpPage &page : searchHelp(search)) {
        auto *item = new QListWidgetItem(page.title, m_list);
        item->setData(PageRole, page.name);
    }
    followCurrentPage();
}

void frm_hilfe::followCurrentPage()
{
    const QSignalBlocker quiet(m_list);
    m_list->setCurrentItem(nullptr);
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(PageRole) == currentPage()) {
            m_list->setCurrentRow(row);
        }
    }
}
