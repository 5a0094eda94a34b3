#pragma once

class FilePane;
class QMainWindow;
class QueueView;
class SettingsStore;
struct MainLayout;

/// The parts of the window whose sizes are kept.
struct RememberedParts {
    QMainWindow &window;
    const MainLayout &layout;
    FilePane &local;
    FilePane &remote;
    QueueView &queue;
};

/// Keeps size and place of the window, its splitters and its columns in the settings, in a group
/// of their own.
class WindowMemory {
public:
    explicit WindowMemory(SettingsStore &store)
        : m_store(store)
    {
    }

    void save(const RememberedParts &parts) const;
    /// What was never saved gets a sensible first size.
    void restore(const RememberedParts &parts) const;

private:
    void restoreColumns(FilePane &pane) const;

    SettingsStore &m_store;
};
