#include "ftp/address.h"

#include <array>

namespace ftp {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// One number of up to five digits at the begin of text, which is shortened by it.
std::optional<unsigned> takeNumber(std::string_view &text)
{
    unsigned value = 0;
    std::size_t digits = 0;
    while (digits < text.size() && isDigit(text[digits])) {
        if (digits == 5) {
            return std::nullopt;
        }
        value = value * 10 + static_cast<unsigned>(text[digits++] - '0');
    }
    if (digits == 0) {
        return std::nullopt;
    }
    text.remove_prefix(digits);
    return value;
}

/// Length of the digits, commas and blanks behind commas at the begin of text.
std::size_t runLength(std::string_view text)
{
    std::size_t length = 0;
    while (length < text.size()
           && (isDigit(text[length]) || text[length] == ','
               || (text[length] == ' ' && length > 0 && text[length - 1] == ','))) {
        ++length;
    }
    return length;
}

/// Reads "h1,h2,h3,h4,p1,p2" and nothing else.
std::optional<HostPort> readSix(std::string_view run)
{
    std::array<unsigned, 6> numbers {};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0) {
            if (run.empty() || run.front() != ',') {
                return std::nullopt;
            }
            run.remove_prefix(run.size() > 1 && run[1] == ' ' ? 2 : 1);
        }
        const std::optional<unsigned> number = takeNumber(run);
        if (!number || *number > 255) {
            return std::nullopt;
        }
        numbers[i] = *number;
    }
    const unsigned port = numbers[4] * 256 + numbers[5];
    // A comma at the end belongs to the sentence, a seventh number does not.
    if (port == 0 || (!run.empty() && run != "," && run != ", ")) {
        return std::nullopt;
    }
    HostPort result;
    for (std::size_t i = 0; i < 4; ++i) {
        result.host += (i > 0 ? "." : "") + std::to_string(numbers[i]);
    }
    result.port = static_cast<std::uint16_t>(port);
    return result;
}

/// Reads what stands between the brackets of a 229: delimiter, protocol, address, port. The
/// middle two are empty by RFC 2428; a server that fills them means itself.
std::optional<std::uint16_t> readEpsvBody(std::string_view body)
{
    if (body.size() < 5 || body.front() < 33 || body.front() > 126 || body.back() != body.front()) {
        return std::nullopt;
    }
    const char delimiter = body.front();
    std::size_t portBegin = 3;
    if (body[1] != delimiter || body[2] != delimiter) {
        const std::size_t second = body.find(delimiter, 1);
        const std::size_t third
            = second == std::string_view::npos ? second : body.find(delimiter, second + 1);
        if (third == std::string_view::npos || third + 2 >= body.size()) {
            return std::nullopt;
        }
        portBegin = third + 1;
    }
    std::string_view digits = body.substr(portBegin, body.size() - 1 - portBegin);
    const std::optional<unsigned> port = takeNumber(digits);
    if (!port || !digits.empty() || *port == 0 || *port > 65535) {
        return std::nullopt;
    }
    return static_cast<std::uint16_t>(*port);
}

} // namespace

std::optional<HostPort> parsePasv(std::string_view replyText)
{
    std::size_t at = 0;
    while (at < replyText.size()) {
        if (!isDigit(replyText[at])) {
            ++at;
            continue;
        }
        const std::size_t length = runLength(replyText.substr(at));
        if (std::optional<HostPort> found = readSix(replyText.substr(at, length))) {
            return found;
        }
        at += length;
    }
    return std::nullopt;
}

std::optional<std::uint16_t> parseEpsv(std::string_view replyText)
{
    std::size_t open = replyText.find('(');
    while (open != std::string_view::npos) {
        const std::size_t close = replyText.find(')', open + 1);
        if (close == std::string_view::npos) {
            return std::nullopt;
        }
        if (const auto port = readEpsvBody(replyText.substr(open + 1, close - open - 1))) {
            return port;
        }
        open = replyText.find('(', open + 1);
    }
    return std::nullopt;
}

std::string formatPort(std::string_view ipv4, std::uint16_t port)
{
    std::string result(ipv4);
    for (char &c : result) {
        c = c == '.' ? ',' : c;
    }
    return result + ',' + std::to_string(port / 256) + ',' + std::to_string(port % 256);
}

std::string formatEprt(std::string_view address, std::uint16_t port)
{
    const bool ipv6 = address.find(':') != std::string_view::npos;
    return (ipv6 ? "|2|" : "|1|") + std::string(address) + '|' + std::to_string(port) + '|';
}

} // namespace ftp
