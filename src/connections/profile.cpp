#include "connections/profile.h"

#include "common/codepage.h"
#include "common/globals.h"
#include "common/mo_standard.h"

#include <QStringList>

#include <algorithm>
#include <iterator>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype fixedLines = 10; ///< lines that every profile has; the rest is remarks
const QString lineEnd = QStringLiteral("\r\n");

/// One line of the file: a break inside would move all lines behind it.
QString oneLine(QString text) { return text.replace(u'\r', u' ').replace(u'\n', u' '); }

/// Whether a line comes back as it was written: the reader trims it, other readers stop at NUL.
bool survives(const QString &line)
{
    return trimBlanks(line) == line && !line.contains(u'\r') && !line.contains(u'\n')
        && !line.contains(QChar(0));
}

/// The UTF-16 units in hexadecimal digits: survives everywhere, whatever they are.
QByteArray toHex(const QString &text)
{
    QByteArray digits;
    for (const QChar character : text) {
        digits += QByteArray::number(character.unicode(), 16).rightJustified(4, '0');
    }
    return digits;
}

QString fromHex(const QByteArray &digits)
{
    QString text;
    for (qsizetype at = 0; at + 4 <= digits.size(); at += 4) {
        text += QChar(digits.mid(at, 4).toUShort(nullptr, 16));
    }
    return text;
}

/// What the side file says, each part only when it is there.
struct SideValues {
    std::optional<int> encryption;
    std::optional<QString> scrambledPassword;
};

SideValues readSide(const QByteArray &side)
{
    SideValues values;
    for (const QByteArray &line : side.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        const QByteArray key = line.left(equals).trimmed();
        const QByteArray value = equals < 0 ? QByteArray() : line.mid(equals + 1).trimmed();
        if (key == "Encryption") {
            const int number = value.toInt();
            values.encryption = number >= 0 && number <= 2 ? number : -1;
        } else if (key == "Password") {
            values.scrambledPassword = fromHex(value);
        }
    }
    return values;
}

/// Lines of a profile. CR LF alone separates when that makes enough lines, because a scrambled
/// password may hold either of them; otherwise any line end does.
QStringList linesOf(const QString &text)
{
    QStringList lines = text.split(lineEnd);
    if (lines.size() < fixedLines) {
        QString anyEnd = text;
        lines = anyEnd.replace(lineEnd, u"\n"_s).replace(u'\r', u'\n').split(u'\n');
    }
    if (lines.last().isEmpty()) {
        lines.removeLast(); // behind the last line end
    }
    return lines;
}

/// Takes a password with line ends inside out of the text, when it is the one of the side file.
/// @return the text with an ordinary third line in its place; nothing when they do not belong
/// together
std::optional<QString> withoutPassword(const QString &text, const QString &scrambled)
{
    const qsizetype second = text.indexOf(lineEnd);
    const qsizetype third = second < 0 ? -1 : text.indexOf(lineEnd, second + 2);
    if (third < 0 || !text.mid(third + 2).startsWith(scrambled + lineEnd)) {
        return std::nullopt;
    }
    return text.left(third + 2) + text.mid(third + 2 + scrambled.size());
}

using Taker = void (*)(ProfileFields &, const QString &);

/// The first ten lines, in order.
constexpr Taker takers[] = {
    [](ProfileFields &fields, const QString &line) { fields.RemoteHost = line; },
    [](ProfileFields &fields, const QString &line) { fields.UserName = line; },
    [](ProfileFields &fields, const QString &line) {
        fields.Password = ScramblePassword(line, false);
    },
    [](ProfileFields &fields, const QString &line) { fields.LocalDir = line; },
    [](ProfileFields &fields, const QString &line) { fields.RemoteDir = line; },
    [](ProfileFields &fields, const QString &line) { fields.Timeout = line; },
    [](ProfileFields &fields, const QString &line) { fields.RemotePort = line; },
    [](ProfileFields &fields, const QString &line) { fields.Passive = lenientNumber(line) != 0.0; },
    [](ProfileFields &fields, const QString &line) {
        const qint64 position = lenientInteger(line);
        fields.TransferPosition = position == 1 || position == 2 ? static_cast<int>(position) : 0;
    },
    [](ProfileFields &fields, const QString &line) { fields.Account = line; },
};
static_assert(std::size(takers) == fixedLines);

} // namespace

int swappedTransferType(int type) { return type == 0 ? 1 : type == 1 ? 0 : 2; }

ProfileFields fieldsOf(const ConnectionProfile &connection)
{
    ProfileFields fields;
    fields.RemoteHost = connection.RemoteHost;
    fields.UserName = connection.UserName;
    fields.Password = connection.Password;
    fields.LocalDir = connection.LocalDir;
    fields.RemoteDir = connection.RemoteDir;
    fields.Timeout = QString::number(connection.Timeout);
    fields.RemotePort = QString::number(connection.RemotePort);
    fields.Passive = connection.Passive;
    fields.TransferPosition = swappedTransferType(connection.TransferType);
    fields.Account = connection.Account;
    fields.Bemerkungen = connection.Bemerkungen;
    fields.encryption = connection.encryption;
    return fields;
}

ProfileBytes encodeProfile(const ProfileFields &fields)
{
    const QString scrambled = ScramblePassword(fields.Password, true);
    QString remarks = fields.Bemerkungen;
    remarks.replace(lineEnd, u"\n"_s).replace(u'\r', u'\n').replace(u"\n"_s, u"<br>"_s);
    const QStringList lines { oneLine(fields.RemoteHost),
                              oneLine(fields.UserName),
                              scrambled,
                              oneLine(fields.LocalDir),
                              oneLine(fields.RemoteDir),
                              oneLine(fields.Timeout),
                              oneLine(fields.RemotePort),
                              fields.Passive ? u"1"_s : u"0"_s,
                              QString::number(fields.TransferPosition),
                              oneLine(fields.Account),
                              remarks };
    ProfileBytes bytes;
    bytes.login = CodePage::encodeFile(lines.join(lineEnd) + lineEnd);
    if (fields.encryption >= 0) {
        bytes.side += "Encryption=" + QByteArray::number(fields.encryption) + "\n";
    }
    if (!survives(scrambled)) {
        bytes.side += "Password=" + toHex(scrambled) + "\n";
    }
    return bytes;
}

int decodeProfile(const ProfileBytes &bytes, ProfileFields &fields)
{
    const SideValues side = readSide(bytes.side);
    QString text = CodePage::decodeFile(bytes.login);
    std::optional<QString> shortened;
    if (side.scrambledPassword) {
        shortened = withoutPassword(text, *side.scrambledPassword);
        text = shortened.value_or(text);
    }
    if (text.isEmpty()) {
        return 0;
    }
    const QStringList lines = linesOf(text);
    fields.encryption = side.encryption.value_or(-1);
    const qsizetype present = std::min(lines.size(), fixedLines);
    for (qsizetype at = 0; at < present; ++at) {
        const bool account = at == fixedLines - 1;
        takers[at](fields, account ? lines.at(at) : trimBlanks(lines.at(at)));
    }
    if (shortened && present > 2) {
        fields.Password = ScramblePassword(*side.scrambledPassword, false);
    }
    if (present < fixedLines) {
        return static_cast<int>(present);
    }
    fields.Bemerkungen = lines.mid(fixedLines).join(QString()).replace(u"<br>"_s, lineEnd);
    return static_cast<int>(fixedLines) + 1;
}

QString FilterProfileNameKey(const QString &text)
{
    QString name = text;
    for (QChar &character : name) {
        const char16_t unit = character.unicode();
        const bool kept = (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z')
            || (unit >= u'a' && unit <= u'z') || unit == u'_';
        character = kept ? character : QChar(u'_');
    }
    return name;
}
