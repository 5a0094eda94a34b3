#!/bin/bash
# Makes the FTP servers and proxies of the tests ready: unpacks their packages into the cache folder
# and, as root, makes the account and the PAM service that vsftpd and the others log in with. May be
# called any number of times, also by several processes at once.   usage: tests/servers/setup.sh
set -eu
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../../tools/packages.sh"

account=tarvelo-test # also in tests/servers/account.cpp
target=$TARVELO_CACHE/servers
mkdir -p "$target"
exec 9>"$target/.lock"
flock 9

install_packages "${PACKAGES_SERVERS_LIBRARIES[@]}" python3-pyftpdlib python3-openssl openssl

servers_there()
{
    [ -x "$target/root/usr/sbin/vsftpd" ] && [ -x "$target/root/usr/sbin/pure-ftpd" ] &&
        [ -x "$target/root/usr/sbin/proftpd" ] && [ -e "$target/root/usr/lib/proftpd/mod_tls.so" ]
}

proxies_there()
{
    [ -x "$target/proxies/usr/sbin/danted" ] && [ -x "$target/proxies/usr/bin/microsocks" ] &&
        [ -x "$target/proxies/usr/sbin/ftp-proxy" ]
}

# unpack FOLDER PACKAGE..: downloads packages and unpacks them into a folder of the cache.
unpack()
{
    local folder=$1
    shift
    echo "Unpacking (not installing) packages: $*"
    rm -rf "$target/debs" "$target/new"
    mkdir -p "$target/debs" "$target/new"
    (cd "$target/debs" && apt-get download -qq -o APT::Sandbox::User=root "$@")
    for package in "$target"/debs/*.deb; do
        dpkg-deb -x "$package" "$target/new"
    done
    rm -rf "${target:?}/$folder"
    mv "$target/new" "$target/$folder"
    rm -rf "$target/debs"
}

if ! servers_there; then
    unpack root "${PACKAGES_SERVERS_UNPACKED[@]}"
    servers_there
fi
if ! proxies_there; then
    unpack proxies "${PACKAGES_PROXIES_UNPACKED[@]}"
    proxies_there
fi

# The servers that change to the account of the user who logs in need a real one. It is expired,
# so that nobody gets in with the well-known password except through the PAM service below, which
# only test servers ask.
if [ "$(id -u)" = 0 ]; then
    if ! id "$account" >/dev/null 2>&1; then
        useradd --system --no-create-home --home-dir / --shell /usr/sbin/nologin \
            --expiredate 1 --password "$(openssl passwd -6 geheim)" "$account"
    fi
    service=/etc/pam.d/$account
    if [ ! -e "$service" ]; then
        cat > "$service.new" <<'PAM'
auth required pam_unix.so nodelay
account required pam_permit.so
session required pam_permit.so
PAM
        mv "$service.new" "$service"
    fi
    mkdir -p /run/vsftpd/empty
fi
