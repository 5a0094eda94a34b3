#pragma once

#include <QWidget>

class QLineEdit;
class QListWidget;
class QPushButton;
class QTextBrowser;

/// The help window: contents or search hits on the left, the page on the right. The pages are
/// compiled in.
class frm_hilfe : public QWidget {
    Q_OBJECT
public:
    explicit frm_hilfe(QWidget *parent = nullptr);

    /// Opens a page by its name without ".html", for example "frmConnect"; an unknown name opens
    /// the contents page.
    void openPage(const QString &page);
    /// The same for who comes from outside: an earlier search is over, the contents show where the
    /// page stands.
    void openTopic(const QString &page);
    /// Name of the page shown.
    [[nodiscard]] QString currentPage() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyPalette();
    void buildLayout();
    void fillList(const QString &search);
    void followCurrentPage();

    QPushButton *m_back = nullptr;
    QPushButton *m_start = nullptr;
    QLineEdit *m_search = nullptr;
    QListWidget *m_list = nullptr;
    QTextBrowser *m_page = nullptr;
};
