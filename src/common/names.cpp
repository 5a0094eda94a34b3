#include "common/names.h"

#include <algorithm>

bool isSafeName(const QString &name)
{
    if (name.isEmpty() || name == QStringLiteral(".") || name == QStringLiteral("..")) {
        return false;
    }
    return std::none_of(name.begin(), name.end(), [](QChar character) {
        return character == u'/' || character == u'\0' || character == u'\r' || character == u'\n';
    });
}
