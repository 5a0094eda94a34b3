#pragma once

#include <QWidget>

class Prompts;
class QPlainTextEdit;
struct ProgramSettings;

/// The program's protocol: txtLog with its buttons copy, clear and save.
class LogPanel : public QWidget {
    Q_OBJECT

public:
    /// @param settings  LogFolder and LogName are read at every save; must outlive the panel
    LogPanel(const ProgramSettings &settings, Prompts &prompts, QWidget *parent = nullptr);

    /// Appends at the end, as it stands; CR LF is one line break. Nothing is added or dropped.
    void AppendLog(const QString &text);
    void clear();
    /// The whole log with CR LF line breaks.
    [[nodiscard]] QString text() const;

    [[nodiscard]] QPlainTextEdit *txtLog() const { return m_txtLog; }

public Q_SLOTS:
    void copyToClipboard(); ///< cmd_log_clipboard
    void clearLog(); ///< cmd_log_loeschen
    void saveLog(); ///< cmd_log_speichern

private:
    const ProgramSettings &m_settings;
    Prompts &m_prompts;
    QPlainTextEdit *m_txtLog = nullptr;
    bool m_endsInCr = false; ///< a CR at the very end may be the first half of a CR LF
};
