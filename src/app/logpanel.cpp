#include "app/logpanel.h"

#include "app/logfile.h"
#include "common/globals.h"
#include "common/intime.h"
#include "common/mo_standard.h"
#include "common/prompts.h"
#include "remote/icons.h"

#include <QClipboard>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QToolButton *addButton(QHBoxLayout *row, const QString &name, const QString &text,
                       const QString &toolTip)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setText(text);
    button->setIcon(Icons::icon(name));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    row->addWidget(button);
    return button;
}

/// Characters of a line from which on wrapping it takes too long; only a hostile server sends such.
constexpr qsizetype longestWrappedLine = 10000;

bool hasOverlongLine(const QString &text)
{
    qsizetype begin = 0;
    for (qsizetype end = 0; end >= 0 && text.size() - begin > longestWrappedLine; begin = end + 1) {
        end = text.indexOf(u'\n', begin);
        if (end < 0 || end - begin > longestWrappedLine) {
            return true;
        }
    }
    return false;
}

} // namespace

LogPanel::LogPanel(const ProgramSettings &settings, Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_prompts(prompts)
    , m_txtLog(new QPlainTextEdit)
{
    m_txtLog->setObjectName(u"txtLog"_s);
    m_txtLog->setAccessibleName(u"Log"_s);
    m_txtLog->setReadOnly(true);
    m_txtLog->setUndoRedoEnabled(false); // an undo stack would hold the log a second time
    m_txtLog->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    auto *label = new QLabel(u"Log"_s);
    label->setBuddy(m_txtLog);
    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(label);
    row->addStretch();
    auto *copy = addButton(row, u"cmd_log_clipboard"_s, u"Kopieren"_s,
                           u"Inhalt des Logfensters in die Zwischenablage kopieren"_s);
    auto *wipe
        = addButton(row, u"cmd_log_loeschen"_s, u"Leeren"_s, u"Inhalt des Logfensters löschen"_s);
    auto *save = addButton(row, u"cmd_log_speichern"_s, u"Speichern"_s,
                           u"Inhalt des Logfensters in eine Datei speichern"_s);
    connect(copy, &QToolButton::clicked, this, &LogPanel::copyToClipboard);
    connect(wipe, &QToolButton::clicked, this, &LogPanel::clearLog);
    connect(save, &QToolButton::clicked, this, &LogPanel::saveLog);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addLayout(row);
    column->addWidget(m_txtLog);
}

void LogPanel::AppendLog(const QString &text)
{
    if (text.isEmpty()) {
        return;
    }
    const qsizetype lastLine = m_txtLog->document()->lastBlock().length();
    if (lastLine > longestWrappedLine || hasOverlongLine(text)) {
        m_txtLog->setLineWrapMode(QPlainTextEdit::NoWrap);
    }
    QTextCursor caret = m_txtLog->textCursor();
    caret.movePosition(QTextCursor::End);
    // The document takes CR LF as one break only when it sees both at once.
    const bool secondHalf = m_endsInCr && text.startsWith(u'\n');
    caret.insertText(secondHalf ? text.mid(1) : text);
    m_endsInCr = text.endsWith(u'\r');
    m_txtLog->setTextCursor(caret);
}

void LogPanel::clear()
{
    m_txtLog->clear();
    m_txtLog->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_endsInCr = false;
}

QString LogPanel::text() const
{
    // The raw text: toPlainText() would turn no-break spaces into blanks.
    QString text = m_txtLog->document()->toRawText();
    return text.replace(QChar::ParagraphSeparator, u"\r\n"_s);
}

void LogPanel::copyToClipboard()
{
    QGuiApplication::clipboard()->setText(text());
    AppendLog(u"\r\nDer Inhalt des Logfensters wurde in die Zwischenablage kopiert.\r\n"_s);
    m_txtLog->setFocus();
}

void LogPanel::clearLog()
{
    clear();
    m_txtLog->setFocus();
}

void LogPanel::saveLog()
{
    // Intended: one more separator, even when the folder ends in one.
    const QString folder = m_settings.LogFolder + LocalSeparator;
    const bool there = isFolderInTime(folder);
    std::optional<QString> name;
    if (m_settings.LogName) {
        name = LogFile::nextName(
            [&](const QString &taken) { return there && QFileInfo::exists(folder + taken); });
    } else {
        const auto typed = m_prompts.input(u"Geben Sie einen Dateinamen für das LOG-Protokol an."_s,
                                           u"log.txt"_s);
        if (!typed || typed->isEmpty()) {
            return;
        }
        name = LogFile::completeName(*typed);
    }
    if (name && there) {
        // Intended: a failed save is not told; the line below appears all the same.
        LogFile::write(folder + *name, text());
    }
    AppendLog(u"\r\nDie Logdatei wurde nach "_s + folder + name.value_or(u"log.txt"_s)
              + u" gespeichert.\r\n"_s);
    m_txtLog->setFocus();
}
