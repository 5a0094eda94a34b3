#include "servers/servers.h"

#include "servers/certificate.h"
#include "servers/launch.h"
#include "servers/network.h"
#include "servers/process.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace servers {

namespace fs = std::filesystem;

namespace {

std::string contents(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

bool everybodyMayEnter(fs::path folder)
{
    for (;; folder = folder.parent_path()) {
        if ((fs::status(folder).permissions() & fs::perms::others_exec) == fs::perms::none) {
            return false;
        }
        if (folder == folder.parent_path()) {
            return true;
        }
    }
}

/// A new folder that the server's account can reach.
fs::path temporaryFolder()
{
    fs::path parent = fs::temp_directory_path();
    if (!everybodyMayEnter(fs::absolute(parent))) {
        parent = "/tmp";
    }
    // mkdtemp fills in the six X.
    std::string name = parent / "tarvelo-server-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder in " + parent.string());
    }
    fs::permissions(name, fs::perms(0711));
    return name;
}

} // namespace

std::vector<Kind> allKinds()
{
    return { Kind::Vsftpd, Kind::ProFtpd, Kind::PureFtpd, Kind::PyFtpd };
}

std::string name(Kind kind)
{
    switch (kind) {
    case Kind::Vsftpd:
        return "vsftpd";
    case Kind::ProFtpd:
        return "proftpd";
    case Kind::PureFtpd:
        return "pureftpd";
    case Kind::PyFtpd:
        return "pyftpdlib";
    }
    return "unknown";
}

bool canRun(Kind kind, std::string *why)
{
    if (kind == Kind::PyFtpd || isRoot()) {
        return true;
    }
    if (why != nullptr) {
        *why = "NOT RUN: " + name(kind) + " needs root";
    }
    return false;
}

struct Server::Private {
    Kind kind;
    Launch launch;
    Process process;
    bool ownRoot = false;

    void start();
    [[nodiscard]] bool comesUp();
    [[nodiscard]] std::string output() const;
};

std::string Server::Private::output() const
{
    return contents(launch.work / "output.log") + contents(launch.work / "system.log");
}

bool Server::Private::comesUp()
{
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (std::chrono::steady_clock::now() < end) {
        if (isListening(launch.port)) {
            return true;
        }
        if (process.waitForEnd(20)) {
            return false;
        }
    }
    return false;
}

void Server::Private::start()
{
    // The port may be taken by a server that does not listen the usual way: try others.
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (launch.port == 0) {
            launch.port = freePort(launch.options.address);
        }
        process.start(prepare(kind, launch), { "TZ=" + launch.options.timeZone, "LC_ALL=C.UTF-8" },
                      launch.work / "output.log");
        if (comesUp()) {
            return;
        }
        process.stop();
        launch.port = launch.options.port;
        if (launch.port != 0) {
            break;
        }
    }
    throw std::runtime_error(name(kind) + " did not come up:\n" + output());
}

Server::Server(Kind kind, Options options)
    : d(std::make_unique<Private>())
{
    std::string why;
    if (!canRun(kind, &why)) {
        throw std::runtime_error(why);
    }
    d->kind = kind;
    d->launch.account = testAccount();
    d->launch.work = temporaryFolder();
    d->ownRoot = options.root.empty();
    d->launch.root = d->ownRoot ? d->launch.work / "root" : fs::absolute(options.root);
    d->launch.port = options.port;
    d->launch.options = std::move(options);
    try {
        if (d->ownRoot) {
            fs::create_directory(d->launch.root);
            adoptFiles();
        }
        d->launch.certificate = d->launch.work / "certificate.pem";
        if (d->launch.options.tls || d->launch.options.tlsOnly) {
            const Certificate made = makeCertificate();
            std::ofstream(d->launch.certificate) << made.key << made.certificate;
        }
        d->start();
    } catch (...) {
        d->process.stop();
        fs::remove_all(d->launch.work);
        throw;
    }
}

Server::~Server()
{
    stop();
    std::error_code ignored; // nothing to do about a folder that cannot be removed
    fs::remove_all(d->launch.work, ignored);
}

std::uint16_t Server::port() const { return d->launch.port; }

fs::path Server::root() const { return d->launch.root; }

std::string Server::user() const { return d->launch.account.name; }

std::string Server::password() const { return d->launch.account.password; }

fs::path Server::certificate() const { return d->launch.certificate; }

std::string Server::log() const { return d->output() + contents(d->launch.protocol()); }

void Server::adoptFiles() const
{
    if (!isRoot()) {
        return;
    }
    const Account &account = d->launch.account;
    const auto adopt = [&](const fs::path &path) {
        if (lchown(path.c_str(), account.uid, account.gid) != 0) {
            throw std::runtime_error("cannot give away " + path.string());
        }
    };
    adopt(d->launch.root);
    for (const auto &entry : fs::recursive_directory_iterator(d->launch.root)) {
        adopt(entry.path());
    }
}

void Server::stop() { d->process.stop(); }

void Server::restart()
{
    stop();
    d->start();
}

} // namespace servers
