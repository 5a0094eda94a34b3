#!/bin/bash
# Builds the package and proves it: lintian, desktop file, AppStream data and man pages are clean; on
# a root of its own (debootstrap; as root) it installs with its dependencies, starts, and leaves nothing
# behind when it is purged.
#
#   packaging/test.sh [--no-root]     --no-root leaves out the part that needs root and the network
set -euo pipefail
cd "$(dirname "$0")/.."
top=$PWD
build=$top/build/release

step() { printf '\n== %s\n' "$*"; }
fail() { printf 'FAILED: %s\n' "$*" >&2; exit 1; }

step "Build the package"
cmake --preset release >/dev/null
nice cmake --build --preset release --parallel "${TARVELO_JOBS:-$(nproc)}"
(cd "$build" && rm -f ./*.deb && cpack >/dev/null)
package=$(echo "$build"/tarvelo-ftp_*.deb)
[ -f "$package" ] || fail "no package"
dpkg-deb --info "$package"

step "Check its contents"
lintian --allow-root --fail-on error,warning "$package"
desktop-file-validate packaging/tarvelo-ftp.desktop
appstreamcli validate --no-net packaging/tarvelo-ftp.metainfo.xml
for page in packaging/man/tarvelo-ftp.1 packaging/man/de/tarvelo-ftp.1; do
    warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "$page: $warnings"
done

step "Run the packaged program from a folder of its own"
alone=$(mktemp -d)
cleanup() { rm -rf "$alone"; }
trap cleanup EXIT
dpkg-deb --extract "$package" "$alone/root"
cp "$alone/root/usr/bin/tarvelo-ftp" "$alone/"
# Runs a command and expects that it is still running after seven seconds, when the info screen has made
# way for the main window, and has said nothing. Qt's offscreen platform says what it cannot do.
stays_up() {
    local log=$alone/log code=0 words
    timeout 7 "$@" >"$log" 2>&1 || code=$?
    [ "$code" = 124 ] || fail "$* ended with $code: $(cat "$log")"
    words=$(grep -v '^This plugin does not support' "$log" || true)
    [ -z "$words" ] || fail "$* complained: $words"
}
own=(env -i PATH=/usr/bin LANG=C.UTF-8 HOME="$alone/home" TEMP="$alone" XDG_RUNTIME_DIR="$alone/run"
     QT_QPA_PLATFORM=offscreen)
mkdir -m 700 "$alone/home" "$alone/run"
stays_up "${own[@]}" "$alone/tarvelo-ftp"
[ "$("${own[@]}" "$alone/tarvelo-ftp" --version)" = "Tarvelo FTP 2.20" ] || fail "--version"

if [ "${1:-}" = --no-root ]; then
    printf '\nAll well; not installed (--no-root).\n'
    exit 0
fi
[ "$(id -u)" = 0 ] || fail "installing on a clean root needs root; leave it out with --no-root"

step "Install it on a clean Debian"
root=$alone/debian
cleanup() { umount -ql "$root/proc" || true; rm -rf "$alone"; }
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' | head -1)
debootstrap --variant=minbase bookworm "$root" "${mirror:?no package source is configured}" >"$alone/debootstrap.log" \
    || { tail "$alone/debootstrap.log"; fail "debootstrap"; }
mount -t proc proc "$root/proc"
cp "$package" "$root/tarvelo-ftp.deb"
inside=(env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive
        chroot "$root")
"${inside[@]}" apt-get -q -y --no-install-recommends install /tarvelo-ftp.deb >"$alone/apt.log" 2>&1 \
    || { tail -20 "$alone/apt.log"; fail "install"; }
"${inside[@]}" dpkg --list tarvelo-ftp | tail -1

step "Start it there, as a user"
"${inside[@]}" useradd --create-home anna
"${inside[@]}" install -d -o anna -m 700 /tmp/anna
as_anna=(env -i PATH=/usr/bin:/bin LANG=C.UTF-8 HOME=/home/anna XDG_RUNTIME_DIR=/tmp/anna
         QT_QPA_PLATFORM=offscreen "$(command -v chroot)" --userspec=anna:anna "$root")
[ "$("${as_anna[@]}" tarvelo-ftp --version)" = "Tarvelo FTP 2.20" ] || fail "--version"
stays_up "${as_anna[@]}" tarvelo-ftp
stays_up "${as_anna[@]}" tarvelo-ftp ftp://anna@server.example/html/
stays_up "${as_anna[@]}" tarvelo-ftp ftpes://anna@server.example/html/
for page in man1/tarvelo-ftp.1.gz de/man1/tarvelo-ftp.1.gz; do
    gzip --test "$root/usr/share/man/$page" || fail "$page"
done

# take_away VERB: removes or purges it there
take_away() {
    "${inside[@]}" apt-get -q -y "$1" tarvelo-ftp >"$alone/apt.log" 2>&1 \
        || { tail -20 "$alone/apt.log"; fail "$1"; }
}
step "Remove it: what the administrator may have changed stays"
take_away remove
[ ! -e "$root/usr/bin/tarvelo-ftp" ] || fail "the program is still there"
[ -f "$root/etc/tarvelo-ftp/addresses.ini" ] || fail "the addresses are gone"

step "Purge it: nothing stays"
take_away purge
left=$(find "$root/usr" "$root/etc" "$root/var/lib/dpkg/info" -name '*tarvelo*')
[ -z "$left" ] || fail "left behind: $left"
printf '\nAll well.\n'
