#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <ostream>

// Found by gtest through the arguments' namespace: failed comparisons show readable text.

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray &bytes, std::ostream *out)
{
    *out << '"' << bytes.toPercentEncoding(" !\"#$&'()*+,/:;<=>?@[]").toStdString() << '"';
}
