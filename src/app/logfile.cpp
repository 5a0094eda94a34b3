#include "app/logfile.h"

#include "common/codepage.h"

#include <QFile>
#include <QSaveFile>

#include <limits>

using namespace Qt::StringLiterals;

namespace LogFile {

std::optional<QString> nextName(const std::function<bool(const QString &)> &exists)
{
    QString name = u"log.txt"_s;
    for (int number = 1; exists(name); ++number) {
        if (number > std::numeric_limits<qint16>::max()) {
            return std::nullopt;
        }
        name = u"log%1.txt"_s.arg(number);
    }
    return name;
}

QString completeName(const QString &typed)
{
    return typed.endsWith(".txt"_L1, Qt::CaseInsensitive) ? typed : typed + u".txt"_s;
}

bool write(const QString &path, const QString &text)
{
    // Written beside and renamed: a full disk leaves an older log of that name as it was.
    QSaveFile file(path);
    const QByteArray bytes = CodePage::encodeFile(text + u"\r\n"_s);
    return file.open(QIODevice::WriteOnly)
        && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace LogFile
