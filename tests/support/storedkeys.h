#pragma once

#include "common/settingsstore.h"

#include <QStringList>

/// Notes the keys of a section in the order in which they are saved, for as long as it lives.
class StoredKeys {
public:
    StoredKeys(SettingsStore &store, const QString &section)
        : m_store(store)
    {
        m_store.onSet = [this, section](const QString &where, const QString &key) {
            if (where == section) {
                keys.append(key);
            }
        };
    }
    ~StoredKeys() { m_store.onSet = {}; }
    StoredKeys(const StoredKeys &) = delete;
    StoredKeys &operator=(const StoredKeys &) = delete;

    QStringList keys;

private:
    SettingsStore &m_store;
};
