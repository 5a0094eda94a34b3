#include "common/codepage.h"

#include <QStringDecoder>
#include <array>

namespace CodePage {
namespace {

// Codes 80 to 9F; below and above the code page equals Latin-1.
constexpr std::array<char16_t, 32> upperControls {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

QChar characterOf(int code)
{
    const auto byte = static_cast<unsigned char>(code);
    return byte >= 0x80 && byte < 0xA0 ? QChar(upperControls[byte - 0x80])
                                       : QChar(char16_t { byte });
}

int codeOf(QChar character)
{
    const char16_t unit = character.unicode();
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
        return unit;
    }
    for (std::size_t i = 0; i < upperControls.size(); ++i) {
        if (upperControls[i] == unit) {
            return static_cast<int>(0x80 + i);
        }
    }
    return -1;
}

QString decode(const QByteArray &bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        text += characterOf(static_cast<unsigned char>(byte));
    }
    return text;
}

std::optional<QByteArray> encode(const QString &text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar character : text) {
        const int code = codeOf(character);
        if (code < 0) {
            return std::nullopt;
        }
        bytes += static_cast<char>(code);
    }
    return bytes;
}

namespace {
const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");
}

QByteArray encodeFile(const QString &text)
{
    const auto bytes = encode(text);
    // A text whose bytes begin like the mark would be read as UTF-8, so it is written as UTF-8.
    return bytes && !bytes->startsWith(byteOrderMark) ? *bytes : byteOrderMark + text.toUtf8();
}

QString decodeFile(const QByteArray &bytes)
{
    if (!bytes.startsWith(byteOrderMark)) {
        return decode(bytes);
    }
    // A further mark is a character of the text, which QString::fromUtf8 would drop.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return utf8(bytes.mid(byteOrderMark.size()));
}

} // namespace CodePage
