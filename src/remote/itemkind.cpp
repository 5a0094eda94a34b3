#include "remote/itemkind.h"

namespace ItemKind {

const QStringList &imageKeys()
{
    static const QStringList keys {
        FolderClose,
        Cdup,
        QStringLiteral("Nope"),
        QStringLiteral("RemoteHost"),
        QStringLiteral("Drive"),
        QStringLiteral("Localhost"),
        QStringLiteral("FolderLinkOpen"),
        File,
        QStringLiteral("FileLink"),
        Link,
        FolderLink,
        ExeFile,
        TextFile,
        ZipFile,
        QStringLiteral("FolderOpen"),
        QStringLiteral("ViewFile"),
        QStringLiteral("DeleteFiles"),
        QStringLiteral("Refresh"),
        QStringLiteral("SelectAll"),
        QStringLiteral("nameFile"),
        HelpFile,
        ImageFile,
    };
    return keys;
}

bool isFolderLike(const QString &kind)
{
    return kind == FolderClose || kind == FolderLink || kind == Link;
}

QString byExtension(const QString &name)
{
    struct Rule {
        QLatin1String extension;
        const QString &kind;
    };
    static const Rule rules[] {
        { QLatin1String(".TXT"), TextFile },  { QLatin1String(".ZIP"), ZipFile },
        { QLatin1String(".ARJ"), ZipFile },   { QLatin1String(".TGZ"), ZipFile },
        { QLatin1String(".TAR"), ZipFile },   { QLatin1String(".LZH"), ZipFile },
        { QLatin1String(".LZA"), ZipFile },   { QLatin1String(".EXE"), ExeFile },
        { QLatin1String(".COM"), ExeFile },   { QLatin1String(".BAT"), ExeFile },
        { QLatin1String(".JPG"), ImageFile }, { QLatin1String(".BMP"), ImageFile },
        { QLatin1String(".IMG"), ImageFile }, { QLatin1String(".GIF"), ImageFile },
        { QLatin1String(".HLP"), HelpFile },
    };
    // Intended: exactly four characters are compared, so "bild.jpeg" is a plain file.
    const QString ending = name.right(4).toUpper();
    for (const Rule &rule : rules) {
        if (ending == rule.extension) {
            return rule.kind;
        }
    }
    return File;
}

} // namespace ItemKind
