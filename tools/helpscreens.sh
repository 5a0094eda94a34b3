#!/bin/bash
# Makes the pictures of the help (resources/help/bilder) and of the README (docs/screenshot.png) anew, from
# the real program on a virtual display. Run it after a window has changed, look at the result, commit.
set -eu
cd "$(dirname "$0")/.."
. tools/packages.sh
install_packages "${PACKAGES_BUILD[@]}" "${PACKAGES_DEMO[@]}"
cmake --preset "${PRESET:=release}" >/dev/null
cmake --build --preset "$PRESET" --target tarvelo-ftp
cmake -S tests/e2e/driver -B build/e2e-driver -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/e2e-driver
exec /usr/bin/python3 tools/helpscreens.py --program "$PWD/build/$PRESET/bin/tarvelo-ftp" \
    --driver "$PWD/build/e2e-driver/libe2e_driver.so"
