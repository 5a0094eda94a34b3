#include "servers/launch.h"

#include <crypt.h>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace servers {

namespace fs = std::filesystem;

namespace {

std::string program(const std::string &path) { return unpackedProgram("root/" + path); }

fs::path write(const fs::path &path, const std::string &text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    return path;
}

std::string lines(const std::vector<std::string> &list)
{
    std::string text;
    for (const std::string &line : list) {
        text += line + "\n";
    }
    return text;
}

std::string yesNo(bool yes) { return yes ? "YES" : "NO"; }

std::string hash(const std::string &password)
{
    crypt_data data {};
    const char *text = crypt_r(password.c_str(), "$6$rounds=1000$tarvelo$", &data);
    return text != nullptr ? text : "*";
}

std::string ids(const Account &account)
{
    return std::to_string(account.uid) + ":" + std::to_string(account.gid);
}

std::vector<std::string> vsftpd(const Launch &l)
{
    const Options &o = l.options;
    const bool six = o.address.find(':') != std::string::npos;
    std::vector<std::string> text {
        std::string(six ? "listen=NO\nlisten_ipv6=YES\nlisten_address6="
                        : "listen=YES\nlisten_address=")
            + o.address,
        "background=NO",
        "listen_port=" + std::to_string(l.port),
        "pam_service_name=" + l.account.name,
        "local_enable=YES",
        "anonymous_enable=NO",
        "write_enable=YES",
        "check_shell=NO",
        "chroot_local_user=YES",
        "allow_writeable_chroot=YES",
        "local_root=" + l.root.string(),
        "local_umask=022",
        "max_clients=0",
        "max_per_ip=" + std::to_string(o.maxPerIp),
        "max_login_fails=20",
        "delay_failed_login=0",
        "utf8_filesystem=YES",
        "force_dot_files=" + yesNo(o.listHidden),
        "seccomp_sandbox=NO",
        "secure_chroot_dir=/run/vsftpd/empty",
        "xferlog_enable=" + yesNo(o.logCommands),
        "log_ftp_protocol=" + yesNo(o.logCommands),
        "vsftpd_log_file=" + l.protocol().string(),
    };
    if (o.tls || o.tlsOnly) {
        text.insert(text.end(),
                    { "ssl_enable=YES", "ssl_tlsv1=YES", "ssl_sslv2=NO", "ssl_sslv3=NO",
                      "ssl_ciphers=HIGH", "rsa_cert_file=" + l.certificate.string(),
                      "rsa_private_key_file=" + l.certificate.string(), "require_ssl_reuse=YES",
                      "force_local_logins_ssl=" + yesNo(o.tlsOnly),
                      "force_local_data_ssl=" + yesNo(o.tlsOnly) });
    }
    text.insert(text.end(), o.extra.begin(), o.extra.end());
    return { program("usr/sbin/vsftpd"), write(l.work / "vsftpd.conf", lines(text)) };
}

std::vector<std::string> proftpd(const Launch &l)
{
    const Options &o = l.options;
    const fs::path users = write(l.work / "users",
                                 l.account.name + ":" + hash(l.account.password) + ":"
                                     + ids(l.account) + "::" + l.root.string() + ":/bin/sh\n");
    const fs::path groups
        = write(l.work / "groups", l.account.name + ":x:" + std::to_string(l.account.gid) + ":\n");
    const fs::path modules = fs::path(program("usr/lib/proftpd/mod_tls.so")).parent_path();
    std::vector<std::string> text {
        "ModulePath " + modules.string(),
        "ServerName test",
        "ServerType standalone",
        std::string("UseIPv6 ") + (o.address.find(':') != std::string::npos ? "on" : "off"),
        "DefaultAddress " + o.address,
        "SocketBindTight on",
        "Port " + std::to_string(l.port),
        "UseReverseDNS off",
        "User nobody",
        "Group nogroup",
        "AuthOrder mod_auth_file.c",
        "AuthUserFile " + users.string(),
        "AuthGroupFile " + groups.string(),
        "RequireValidShell off",
        "DefaultRoot ~",
        "Umask 022",
        "AllowOverwrite on",
        "AllowStoreRestart on",
        "AllowRetrieveRestart on",
        "UseEncoding UTF-8 UTF-8",
        std::string("TimesGMT ") + (o.timeZone == "UTC" ? "on" : "off"), // off: lists by its clock
        "MaxInstances none",
        "MaxLoginAttempts 20",
        "MaxClientsPerHost " + (o.maxPerIp > 0 ? std::to_string(o.maxPerIp) : "none"),
        "PidFile " + (l.work / "pid").string(),
        "ScoreboardFile " + (l.work / "scoreboard").string(),
        "DelayEngine off",
        "WtmpLog off",
        "TransferLog none",
        "SystemLog " + (l.work / "system.log").string(),
    };
    if (o.listHidden) {
        text.emplace_back("ListOptions \"-a\"");
    }
    if (o.logCommands) {
        text.emplace_back("LogFormat dialogue \"%r -> %s %S\"");
        text.emplace_back("ExtendedLog " + l.protocol().string() + " ALL dialogue");
    }
    if (o.tls || o.tlsOnly) {
        text.insert(text.end(),
                    { "LoadModule mod_tls.c", "TLSEngine on", "TLSProtocol TLSv1.2 TLSv1.3",
                      "TLSECCertificateFile " + l.certificate.string(),
                      "TLSECCertificateKeyFile " + l.certificate.string(),
                      std::string("TLSRequired ") + (o.tlsOnly ? "on" : "off"),
                      "TLSLog " + (l.work / "tls.log").string() });
    }
    text.insert(text.end(), o.extra.begin(), o.extra.end());
    return { program("usr/sbin/proftpd"), "-n", "-q", "-c",
             write(l.work / "proftpd.conf", lines(text)) };
}

std::vector<std::string> pureftpd(const Launch &l)
{
    const Options &o = l.options;
    const fs::path users
        = write(l.work / "users",
                l.account.name + ":" + hash(l.account.password) + ":" + ids(l.account)
                    + "::" + l.root.string() + "/./::::::::::::\n");
    const fs::path database = l.work / "users.pdb";
    const std::string command = "'" + program("usr/bin/pure-pw") + "' mkdb '" + database.string()
        + "' -f '" + users.string() + "'";
    if (std::system(command.c_str()) != 0) { // before any test thread starts
        throw std::runtime_error("failed: " + command);
    }
    std::vector<std::string> words { program("usr/sbin/pure-ftpd"),
                                     "-S",
                                     o.address + "," + std::to_string(l.port),
                                     "-l",
                                     "puredb:" + database.string(),
                                     "-g",
                                     l.work / "pid",
                                     "-u",
                                     "1", // lowest account number that may log in
                                     "-U",
                                     "133:022",
                                     "-c",
                                     "500",
                                     "-L",
                                     "1000000:50", // most entries of a listing, depth
                                     "-E",
                                     "-A",
                                     "-H" };
    if (o.maxPerIp > 0) {
        words.insert(words.end(), { "-C", std::to_string(o.maxPerIp) });
    }
    if (o.listHidden) {
        words.emplace_back("-D");
    }
    if (o.tls || o.tlsOnly) {
        words.insert(words.end(), { "-Y", o.tlsOnly ? "2" : "1", "-2", l.certificate.string() });
    }
    words.insert(words.end(), o.extra.begin(), o.extra.end());
    return words;
}

std::vector<std::string> pyftpdlib(const Launch &l)
{
    const Options &o = l.options;
    std::vector<std::string> words { "/usr/bin/python3", PYSERVER,
                                     "--address",        o.address,
                                     "--port",           std::to_string(l.port),
                                     "--root",           l.root.string(),
                                     "--user",           l.account.name,
                                     "--password",       l.account.password,
                                     "--max-per-ip",     std::to_string(o.maxPerIp) };
    if (isRoot()) {
        words.insert(
            words.end(),
            { "--uid", std::to_string(l.account.uid), "--gid", std::to_string(l.account.gid) });
    }
    if (!o.logCommands) {
        words.emplace_back("--quiet");
    }
    if (o.tls || o.tlsOnly) {
        words.insert(words.end(), { "--certificate", l.certificate.string() });
    }
    if (o.tlsOnly) {
        words.emplace_back("--tls-only");
    }
    words.insert(words.end(), o.extra.begin(), o.extra.end());
    return words;
}

} // namespace

std::string unpackedProgram(const std::string &path)
{
    const char *cache = std::getenv("TARVELO_CACHE");
    const fs::path whole = fs::path(cache != nullptr ? cache : DEFAULT_CACHE) / "servers" / path;
    if (!fs::exists(whole)) {
        throw std::runtime_error(whole.string() + " is missing; run tests/servers/setup.sh");
    }
    return whole;
}

std::vector<std::string> prepare(Kind kind, const Launch &launch)
{
    switch (kind) {
    case Kind::Vsftpd:
        return vsftpd(launch);
    case Kind::ProFtpd:
        return proftpd(launch);
    case Kind::PureFtpd:
        return pureftpd(launch);
    case Kind::PyFtpd:
        return pyftpdlib(launch);
    }
    throw std::runtime_error("unknown server");
}

} // namespace servers
