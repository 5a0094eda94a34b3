#include "common/mo_standard.h"

#include "common/codepage.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

#include <cmath>
#include <limits>

QString trimBlanks(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text.at(begin) == u' ') {
        ++begin;
    }
    while (end > begin && text.at(end - 1) == u' ') {
        --end;
    }
    return text.mid(begin, end - begin);
}

double lenientNumber(const QString &text)
{
    static const QRegularExpression number(
        QStringLiteral("^ *([+-]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][+-]?[0-9]+)?)"));
    const auto match = number.match(text);
    return match.hasMatch() ? match.captured(1).toDouble() : 0.0;
}

qint64 lenientInteger(const QString &text)
{
    static const QRegularExpression plain(QStringLiteral("^ *([+-]?[0-9]+)(?![.0-9eE])"));
    if (const auto match = plain.match(text); match.hasMatch()) {
        bool fits = false;
        const qint64 value = match.captured(1).toLongLong(&fits); // exact beyond 2^53
        if (fits) {
            return value;
        }
    }
    const double value = lenientNumber(text);
    constexpr double limit = 9223372036854775807.0;
    if (value >= limit) {
        return std::numeric_limits<qint64>::max();
    }
    if (value <= -limit) {
        return std::numeric_limits<qint64>::min();
    }
    const double below = std::floor(value);
    const double rest = value - below;
    const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(below, 2.0) != 0.0);
    return static_cast<qint64>(up ? below + 1 : below);
}

int lenientInt(const QString &text)
{
    constexpr qint64 lowest = std::numeric_limits<int>::min();
    constexpr qint64 highest = std::numeric_limits<int>::max();
    return static_cast<int>(qBound(lowest, lenientInteger(text), highest));
}

QString ScramblePassword(const QString &text, bool scramble)
{
    QString result;
    result.reserve(text.size());
    const int shift = static_cast<int>(text.size() % 256);
    for (const QChar character : text) {
        const int code = CodePage::codeOf(character);
        result += code < 0 ? character
                           : CodePage::characterOf((code + (scramble ? 256 - shift : shift)) % 256);
    }
    return result;
}

bool EnsureFolder(const QString &path, bool create, QChar separator)
{
    if (!create) {
        return QFileInfo(path).isDir();
    }
    // Position 3, counted from 1, skips a drive prefix such as "c:\".
    for (qsizetype at = path.indexOf(separator, 2); at >= 0; at = path.indexOf(separator, at + 1)) {
        if (const QString left = path.left(at); !QFileInfo(left).isDir()) {
            QDir().mkdir(left);
        }
    }
    return true;
}

QString joinPath(const QString &folder, const QString &name, QChar separator)
{
    return folder.endsWith(separator) ? folder + name : folder + separator + name;
}

QString withSeparator(const QString &path, QChar separator)
{
    return path.endsWith(separator) ? path : path + separator;
}

QString withoutSeparator(const QString &path, QChar separator)
{
    return path.size() > 1 && path.endsWith(separator) ? path.chopped(1) : path;
}

QString NormalizeFolderPath(QString &path, QChar separator)
{
    const qsizetype open = path.indexOf(u'[');
    const qsizetype close = path.indexOf(u']');
    if (open >= 0 && close >= 0) {
        // Intended: nothing checks that "[" comes before "]".
        path = path.left(open) + path.mid(close + 1);
    }
    path = withSeparator(trimBlanks(path), separator);
    return path;
}

QString LocalUpPath(const QString &folder, QChar separator)
{
    const qsizetype last = folder.chopped(folder.isEmpty() ? 0 : 1).lastIndexOf(separator);
    return last < 0 ? folder : folder.left(last + 1);
}

QString FormatSize(qint64 bytes)
{
    if (bytes <= 0) {
        return {};
    }
    // Intended: the limit of KB is 1000 while the divisor is 1024.
    if (bytes <= 1000) {
        return QString::number(bytes) + QStringLiteral(" B");
    }
    const bool mega = bytes > 1048576;
    const double size = static_cast<double>(bytes) / (mega ? 1048576.0 : 1024.0);
    const double rounded = std::floor(size * 10.0 + 0.5) / 10.0; // half away from zero
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(rounded, 'f', 1)
        + (mega ? QStringLiteral(" MB") : QStringLiteral(" KB"));
}
