#include "ftp/quirks.h"

namespace ftp {
namespace {

struct Known {
    std::string_view name; ///< as a greeting holds it
    Quirks quirks;
};

constexpr Known servers[] = {
    { "icrosoft FTP Service", { .losesPipelined = true } },
    { "MadGoat", { .losesPipelined = true } },
    { "MikroTik", { .losesPipelined = true } },
    { "NetWare", { .diesOfUnknown = true } },
    { "ProFTPD", { .keepsOrder = true } },
    { "Pure-FTPd", { .keepsOrder = true, .singleTelnetIac = true } },
    { "pyftpdlib", { .noLookAhead = true } },
    { "vsFTPd", { .keepsOrder = true, .singleTelnetIac = true } },
};

} // namespace

Quirks quirksOf(std::string_view greeting)
{
    Quirks all;
    for (const auto &[name, quirks] : servers) {
        if (greeting.find(name) != std::string_view::npos) {
            all.losesPipelined |= quirks.losesPipelined;
            all.keepsOrder |= quirks.keepsOrder;
            all.noLookAhead |= quirks.noLookAhead;
            all.singleTelnetIac |= quirks.singleTelnetIac;
            all.diesOfUnknown |= quirks.diesOfUnknown;
        }
    }
    return all;
}

} // namespace ftp
