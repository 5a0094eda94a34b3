#!/bin/bash
# Which lines of src/ the tests run: runs all tests of the dev build with a breakpoint on every line, and
# prints what was missed by file. GCC's own way does not do: gcov leaves out the bodies of coroutines, in
# which half of the engine stands.
#
#   tools/coverage/run.sh [ctest arguments]
#   tools/coverage/run.sh --report     only the table, of what was run before
set -eu
cd "$(dirname "$0")/../.."
. tools/packages.sh
jobs=${TARVELO_JOBS:-$(nproc)}
build=build/dev
export LINEWATCH=$PWD/build/lines

programs()
{
    find "$build/tests" "$build/bin" -maxdepth 1 -type f -executable \( -name '*_tests' -o -name tarvelo-ftp \) \
        ! -name servers_tests
}

if [ "${1:-}" != --report ]; then
    install_packages "${PACKAGES_BUILD[@]}" "${PACKAGES_DEMO[@]}" "${PACKAGES_TEST[@]}"
    tests/servers/setup.sh
    cmake --preset dev
    cmake --build --preset dev --parallel "$jobs"
    rm -rf "$LINEWATCH"
    mkdir -p "$LINEWATCH"
    cc -O1 -Wall -Wextra -shared -fPIC -o "$LINEWATCH/linewatch.so" tools/coverage/linewatch.c
    # shellcheck disable=SC2046  # no blanks in these names
    tools/coverage/lines.py list "$LINEWATCH" $(programs)
    LD_PRELOAD=$LINEWATCH/linewatch.so \
        ctest --test-dir "$build" --parallel "$jobs" --output-on-failure "$@"
fi
# shellcheck disable=SC2046
tools/coverage/lines.py report "$LINEWATCH" $(programs)
