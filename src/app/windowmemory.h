#pragma once

class FilePane;
class QMainWindow;
class SettingsStore;
struct MainLayout;

/// Keeps size and place of the window, its splitters and its columns in the settings, in a group
/// of their own.
class WindowMemory {
public:
    explicit WindowMemory(SettingsStore &store)
        : m_store(store)
    {
    }

    void save(const QMainWindow &window, const MainLayout &layout, FilePane &local,
              FilePane &remote) const;
    /// What was never saved gets a sensible first size.
    void restore(QMainWindow &window, const MainLayout &layout, FilePane &local,
                 FilePane &remote) const;

private:
    void restoreColumns(FilePane &pane) const;

    SettingsStore &m_store;
};
