#pragma once

#include <QObject>
#include <memory>

class QWidget;
class frm_hilfe;

/// Opens the help at the page of the window, dialog or pane that F1 was pressed in. One instance,
/// installed on the application for as long as it lives.
class HelpKeyFilter : public QObject {
    Q_OBJECT
public:
    explicit HelpKeyFilter(QObject *parent = nullptr);
    ~HelpKeyFilter() override;

    /// Opens the help at a page; raises the window that is there already.
    void openHelp(const QString &page);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::unique_ptr<frm_hilfe> m_window;
};

/// Sends the F1 key to a widget, as the help menu does; without one to where the focus is.
void sendHelpKey(QWidget *target = nullptr);

/// Page for F1 in a widget: the first of the widget and its parents (beyond window borders) that
/// has a page of its own; a window's is its open tab's when that has one. The contents page for
/// none.
[[nodiscard]] QString helpPageFor(const QWidget *widget);
