#include "common/names.h"

#include <algorithm>

using namespace Qt::StringLiterals;

bool isSafeName(const QString &name)
{
    if (name.isEmpty() || name == u"."_s || name == u".."_s) {
        return false;
    }
    return std::none_of(name.begin(), name.end(), [](QChar character) {
        return character == u'/' || character == u'\0' || character == u'\r' || character == u'\n';
    });
}
