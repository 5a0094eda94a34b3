// Starts one test server in the foreground, for use by hand and for measurements:
//
//   ftp-server KIND [--root FOLDER] [--port N] [--address A] [--tls | --tls-only]
//              [--max-per-ip N] [--list-hidden] [--log] [--extra TEXT]...
//
// KIND is vsftpd, proftpd, pureftpd or pyftpdlib. Ends, and with it the server, on Ctrl+C.
#include "servers/servers.h"

#include <csignal>
#include <iostream>
#include <stdexcept>

namespace {

using servers::Options;

servers::Kind kindOf(const std::string &text)
{
    for (const servers::Kind kind : servers::allKinds()) {
        if (servers::name(kind) == text) {
            return kind;
        }
    }
    throw std::runtime_error("no such server: " + text);
}

Options parse(const std::vector<std::string> &words)
{
    Options options;
    options.logCommands = false;
    for (std::size_t i = 2; i < words.size(); ++i) {
        const auto value = [&] { return words.at(++i); };
        if (words[i] == "--root") {
            options.root = value();
        } else if (words[i] == "--port") {
            options.port = static_cast<std::uint16_t>(std::stoi(value()));
        } else if (words[i] == "--address") {
            options.address = value();
        } else if (words[i] == "--max-per-ip") {
            options.maxPerIp = std::stoi(value());
        } else if (words[i] == "--extra") {
            options.extra.push_back(value());
        } else if (words[i] == "--tls") {
            options.tls = true;
        } else if (words[i] == "--tls-only") {
            options.tlsOnly = true;
        } else if (words[i] == "--list-hidden") {
            options.listHidden = true;
        } else if (words[i] == "--log") {
            options.logCommands = true;
        } else {
            throw std::runtime_error("unknown option: " + words[i]);
        }
    }
    return options;
}

} // namespace

int main(int argc, char **argv)
{
    // Blocked before the server starts, so that none is lost.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    try {
        const std::vector<std::string> words(argv, argv + argc);
        const servers::Server server(kindOf(words.at(1)), parse(words));
        std::cout << "ftp://" << server.user() << ":" << server.password()
                  << "@localhost:" << server.port() << "/ serves " << server.root().string()
                  << std::endl;
        int received = 0;
        sigwait(&signals, &received);
        std::cout << server.log();
        return 0;
    } catch (const std::out_of_range &) {
        std::cerr
            << "usage: ftp-server vsftpd|proftpd|pureftpd|pyftpdlib [OPTION].., see its source\n";
    } catch (const std::exception &error) {
        std::cerr << error.what() << '\n';
    }
    return 2;
}
