#!/bin/bash
# Builds the program, makes a sample web space with an FTP server on this machine, and opens the
# program logged in to it. Without a display it works on a virtual one: it uploads and downloads a
# file and a folder with the real buttons, compares the bytes, and saves screenshots in build/demo.
# Does all of its own set-up on Debian 12.
#
#   ./demo.sh               on the display if there is one
#   ./demo.sh --headless    without a display in any case
#
# TARVELO_JOBS=N  at most N compilers at a time (default: one per processor)
set -eu
cd "$(dirname "$0")"
. tools/packages.sh
jobs=${TARVELO_JOBS:-$(nproc)}

install_packages "${PACKAGES_BUILD[@]}" "${PACKAGES_DEMO[@]}"
cmake --preset release
cmake --build --preset release --parallel "$jobs" --target tarvelo-ftp
program=$PWD/build/release/bin/tarvelo-ftp

if [ "${1:-}" != --headless ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec /usr/bin/python3 tests/e2e/byhand.py --program "$program"
fi
cmake -S tests/e2e/driver -B build/e2e-driver -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build build/e2e-driver --parallel "$jobs"
exec /usr/bin/python3 tests/e2e/transfer.py --program "$program" \
    --driver "$PWD/build/e2e-driver/libe2e_driver.so" --output "$PWD/build/demo"
