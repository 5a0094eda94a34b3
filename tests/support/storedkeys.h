#pragma once

#include <QFile>
#include <QStringList>

/// The keys of a section in the order in which they stand in a settings file; a file that was empty
/// before has them in the order in which they were saved.
inline QStringList storedKeys(const QString &file, const QString &section)
{
    QFile in(file);
    QStringList keys;
    bool here = false;
    if (in.open(QIODevice::ReadOnly)) {
        const QStringList lines = QString::fromUtf8(in.readAll()).split(u'\n');
        for (const QString &line : lines) {
            if (line.startsWith(u'[')) {
                here = line.trimmed() == u'[' + section + u']';
            } else if (here && line.contains(u'=')) {
                keys.append(line.section(u'=', 0, 0));
            }
        }
    }
    return keys;
}
