#include "ftp/feat.h"

#include <algorithm>
#include <string_view>

namespace ftp {
namespace {

std::string upper(std::string_view text)
{
    std::string result(text);
    for (char &c : result) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return result;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Facts of "size*;modify*;UNIX.mode;": a star marks those that are sent now, but a server that
/// knows a fact sends it when asked, so both count.
std::vector<std::string> readFacts(std::string_view list)
{
    std::vector<std::string> facts;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(';'), list.size());
        std::string_view fact = trimmed(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
        if (!fact.empty() && fact.back() == '*') {
            fact.remove_suffix(1);
        }
        if (!fact.empty()) {
            std::string &lower = facts.emplace_back(fact);
            for (char &c : lower) {
                c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
            }
        }
    }
    return facts;
}

/// Parameters of AUTH are joined by blanks, commas or semicolons, depending on the server.
bool namesTls(std::string_view parameters)
{
    constexpr std::string_view separators = " \t,;";
    while (!parameters.empty()) {
        const std::size_t end = std::min(parameters.find_first_of(separators), parameters.size());
        const std::string_view word = parameters.substr(0, end);
        if (word == "TLS" || word == "TLS-C" || word == "SSL") {
            return true;
        }
        parameters.remove_prefix(std::min(end + 1, parameters.size()));
    }
    return false;
}

void readFeature(std::string_view line, Features &features)
{
    const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
    const std::string name = upper(line.substr(0, end));
    const std::string_view rawParameters = trimmed(line.substr(end));
    const std::string parameters = upper(rawParameters);
    if (name == "UTF8") {
        features.utf8 = true;
    } else if (name == "MLST" || name == "MLSD") {
        features.mlst = true;
        if (!rawParameters.empty()) {
            features.mlstFacts = readFacts(rawParameters);
        }
    } else if (name == "REST") {
        features.restStream = features.restStream || parameters.starts_with("STREAM");
    } else if (name == "SIZE") {
        features.size = true;
    } else if (name == "MDTM") {
        features.mdtm = true;
    } else if (name == "MFMT") {
        features.mfmt = true;
    } else if (name == "EPSV") {
        features.epsv = true;
    } else if (name == "AUTH") {
        features.authTls = features.authTls || namesTls(parameters);
    } else if (name == "TVFS") {
        features.tvfs = true;
    }
}

} // namespace

bool Features::mlstUnixMode() const
{
    return std::find(mlstFacts.begin(), mlstFacts.end(), "unix.mode") != mlstFacts.end();
}

Features parseFeat(const Reply &reply)
{
    Features features;
    if (!reply.done()) {
        return features;
    }
    features.known = true;
    const std::string code = std::to_string(reply.code);
    for (std::size_t i = 1; i + 1 < reply.lines.size(); ++i) {
        std::string_view line = reply.lines[i];
        // Some servers repeat the code in front of each feature.
        if (line.size() > 3 && line.starts_with(code) && (line[3] == '-' || line[3] == ' ')) {
            line.remove_prefix(4);
        }
        if (line = trimmed(line); !line.empty()) {
            readFeature(line, features);
        }
    }
    return features;
}

} // namespace ftp
