# The Debian packages that this project uses, in one place; sourced by test.sh, demo.sh, .ci/run and
# tests/servers/setup.sh. Package names are those of Debian 12.
# shellcheck shell=bash
# shellcheck disable=SC2034  # the lists are for the scripts that source this file

# To build the program.
PACKAGES_BUILD=(g++ cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-svg-dev qt6-translations-l10n
    libgl1-mesa-dev libasio-dev libssl-dev libexpected-dev)

# To run it, also without a display, and to serve a sample web space.
PACKAGES_DEMO=(python3 python3-pyftpdlib python3-openssl openssl xvfb xauth
    libqt6svg6 qt6-qpa-plugins fonts-dejavu-core)

# To build and run the tests.
PACKAGES_TEST=(googletest libgtest-dev libgmock-dev nlohmann-json3-dev procps util-linux git xdotool)

# To check the source.
PACKAGES_STYLE=(clang-format-16)

# To run the fuzz targets.
PACKAGES_FUZZ=(clang-16 libclang-rt-16-dev)

# FTP servers for the tests. These packages conflict with one another, so they are downloaded and
# unpacked side by side (tests/servers/setup.sh); only the libraries they need are installed.
PACKAGES_SERVERS_UNPACKED=(vsftpd pure-ftpd proftpd-core proftpd-mod-crypto)
# Proxies for the tests, unpacked in the same way.
PACKAGES_PROXIES_UNPACKED=(dante-server microsocks ftp-proxy)
PACKAGES_SERVERS_LIBRARIES=(libacl1 libcap2 libcrypt1 libhiredis0.14 libidn2-0 libldap-2.5-0
    libmemcached11
    libmemcachedutil2 libncursesw6 libpam0g libpam-modules libpcre2-8-0 libpcre2-posix3
    libsodium23 libssl3 libtinfo6 libwrap0 netbase zlib1g)

# The words to put before a command that needs root's rights: none or sudo.
as_root()
{
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "This needs root's rights, and there is no sudo: $*" >&2
        return 1
    fi
}

# install_packages NAME..: installs what is missing and says what that is.
install_packages()
{
    local missing=() name
    for name in "$@"; do
        # shellcheck disable=SC2016  # the form is dpkg's
        if ! dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q '^install ok installed$'; then
            missing+=("$name")
        fi
    done
    if [ ${#missing[@]} = 0 ]; then
        return 0
    fi
    echo "Installing packages: ${missing[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq || true
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
        "${missing[@]}"
}

# Where unpacked servers and other things that are made once are kept.
: "${TARVELO_CACHE:=${HOME:-/tmp}/.cache/tarvelo-ftp}"
export TARVELO_CACHE
