#!/bin/bash
# Builds everything, runs all tests, then the engine and its parsers once more with the address and
# undefined-behaviour sanitizers. Does all of its own set-up on Debian 12.
#
#   ./test.sh [ctest arguments]        for example ./test.sh -R Download
#
# TARVELO_JOBS=N  at most N compilers and 2 N tests at a time (default: one per processor)
# TARVELO_CACHE=F where unpacked FTP servers are kept (default: ~/.cache/tarvelo-ftp)
set -eu
cd "$(dirname "$0")"
. tools/packages.sh
jobs=${TARVELO_JOBS:-$(nproc)}

install_packages "${PACKAGES_BUILD[@]}" "${PACKAGES_DEMO[@]}" "${PACKAGES_TEST[@]}"
tests/servers/setup.sh

# build_and_test PRESET [ctest arguments]
build_and_test()
{
    local preset=$1
    shift
    echo "== $preset: configure and build"
    cmake --preset "$preset"
    cmake --build --preset "$preset" --parallel "$jobs"
    if [ "$(id -u)" != 0 ]; then
        echo "NOT RUN as $(id -un), who is not root: tests against vsftpd, proftpd, pureftpd" \
            "(reported below as skipped)"
    fi
    echo "== $preset: test"
    ctest --test-dir "build/$preset" --parallel $((2 * jobs)) --output-on-failure "$@"
}

build_and_test dev "$@"
build_and_test asan-engine "$@"
