#include "ftp/ftplocalnames.h"

#include "ftp/text.h"

#include <QStringDecoder>
#include <QUtf8StringView>

#include <algorithm>
#include <sys/stat.h>

namespace {

/// Number of bytes that a character beginning with this one has in UTF-8.
qsizetype lengthOf(char lead)
{
    const auto byte = static_cast<unsigned char>(lead);
    return byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : byte >= 0xc0 ? 2 : 1;
}

/// QString::fromUtf8 would drop a byte order mark, which is a character of a name like others.
QString fromUtf8(QByteArrayView text)
{
    if (!text.startsWith("\xEF\xBB\xBF")) {
        return QString::fromUtf8(text);
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(text);
}

bool isRawByte(QChar character)
{
    return character.unicode() >= 0xdc80 && character.unicode() <= 0xdcff;
}

/// Hands the text over in pieces: whole characters as they are, raw bytes one by one.
template <class Text, class Byte> void inPieces(QStringView text, Text takeText, Byte takeByte)
{
    qsizetype begin = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text.at(at).isHighSurrogate()) {
            ++at; // the pair is one character
        } else if (isRawByte(text.at(at))) {
            takeText(text.mid(begin, at - begin));
            takeByte(static_cast<char>(text.at(at).unicode() & 0xff));
            begin = at + 1;
        }
    }
    takeText(text.mid(begin));
}

} // namespace

QString textOfName(QByteArrayView name)
{
    if (QUtf8StringView(name.data(), name.size()).isValidUtf8()) {
        return fromUtf8(name);
    }
    QString text;
    for (qsizetype at = 0; at < name.size();) {
        const qsizetype size = std::min(lengthOf(name.at(at)), name.size() - at);
        const QByteArrayView character = name.sliced(at, size);
        // A character that is cut short is not valid either.
        if (QUtf8StringView(character.data(), size).isValidUtf8()) {
            text += fromUtf8(character);
            at += size;
        } else {
            text += QChar(0xdc00 | static_cast<unsigned char>(name.at(at)));
            ++at;
        }
    }
    return text;
}

QByteArray bytesOfName(const QString &text)
{
    QByteArray bytes;
    inPieces(
        text, [&](QStringView part) { bytes += part.toUtf8(); }, [&](char byte) { bytes += byte; });
    return bytes;
}

bool holdsRawBytes(QStringView text)
{
    bool found = false;
    inPieces(
        text, [](QStringView) {}, [&found](char) { found = true; });
    return found;
}

QString shownName(const QString &text)
{
    QString shown;
    inPieces(
        text, [&](QStringView part) { shown += part; },
        [&](char) { shown += QChar(QChar::ReplacementCharacter); });
    return shown;
}

QString nameForServer(const QString &name)
{
    return holdsRawBytes(name)
        ? QString::fromStdString(ftp::toUtf8(bytesOfName(name).toStdString()))
        : name;
}

QUrl urlOfPath(const QString &path)
{
    return holdsRawBytes(path)
        ? QUrl::fromEncoded("file://" + bytesOfName(path).toPercentEncoding("/"))
        : QUrl::fromLocalFile(path);
}

QString pathOfUrl(const QUrl &url)
{
    if (!url.isLocalFile()) {
        return {};
    }
    const QString path = url.toLocalFile();
    // Qt reads bytes that are no UTF-8 as the replacement character.
    return path.contains(QChar::ReplacementCharacter)
        ? textOfName(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()))
        : path;
}

LocalEntry localEntry(const QString &path)
{
    struct stat status { };
    LocalEntry entry;
    if (::stat(bytesOfName(path).constData(), &status) == 0) {
        entry.exists = true;
        entry.isFolder = S_ISDIR(status.st_mode);
        entry.isFile = S_ISREG(status.st_mode);
        entry.size = entry.isFile ? static_cast<qint64>(status.st_size) : 0;
    }
    return entry;
}

bool makeLocalFolder(const QString &path)
{
    return ::mkdir(bytesOfName(path).constData(), 0777) == 0;
}
